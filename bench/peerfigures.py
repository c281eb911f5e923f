#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""Measures the contenders, in the system that has them: bench/peers runs it there. Writes a file
with all figures: for each figure and contender, one for each round."""

import argparse
import collections
import contextlib
import json
import sys
import tempfile
import time
from pathlib import Path

sys.dont_write_bytecode = True

# pylint: disable=wrong-import-position
import contenders
from caller import Caller
from desk import Desk, memory, rest, wakes
from handset import Failure
from windows import NoWindow

IDLE = 60  # Seconds.
LATE = 5  # Seconds: what comes then is idling only if it goes on.
BRIEFLY = 5  # Seconds.
DELAYS = ["never", "start", "request", "frame"]


class Bench:
    """The measurements. Its figures are lists by figure and contender."""

    def __init__(self, desk, pictures=None):
        self.figures = collections.defaultdict(lambda: collections.defaultdict(list))
        self._desk = desk
        self._pictures = pictures

    def add(self, figure, contender, value):
        self.figures[figure][contender].append(value)

    def add_window(self, figure, contender, begin, mapped, drawn):
        """Adds the milliseconds until a window is there, and until it has content."""
        self.add(f"{figure} to window", contender, (mapped - begin) * 1e3)
        self.add(f"{figure} to content", contender, (drawn - begin) * 1e3)

    def start(self, one):
        """Measures a start with the caches that earlier starts have filled, and the memory."""
        if not one.lasts:
            self._start_briefly(one, "start", self._desk.home(one.name))
            return
        with self._desk.running(one.start, self._desk.home(one.name)) as (process, begin):
            mapped, drawn, window = self._desk.windows.appearing(process)
            self.add_window("start", one.name, begin, mapped, drawn)
            self._keep_picture(one, window)
            rest(process.pid)
            shared, own = memory(process.pid)
            self.add("shown: PSS", one.name, shared)
            self.add("shown: unique memory", one.name, own)

    def first_start(self, one):
        """Measures a start without any cache."""
        with tempfile.TemporaryDirectory(dir=self._desk.folder) as home:
            self._desk.forget_files()
            if not one.lasts:
                self._start_briefly(one, "first start ever", home)
                return
            with self._desk.running(one.start, home) as (process, begin):
                mapped, drawn, _ = self._desk.windows.appearing(process)
                self.add_window("first start ever", one.name, begin, mapped, drawn)

    def _start_briefly(self, one, figure, home):
        """Measures a start until there is a window, if that comes before the program's end."""
        with contextlib.suppress(Failure), self._desk.running(one.start, home) as (_, begin):
            mapped = self._desk.windows.mapped(BRIEFLY)
            self.add(f"{figure} to window", one.name, (mapped - begin) * 1e3)

    def requests(self, one):
        """Measures the first request to a process that is ready, and one after it, and the memory
        before them."""
        with self._desk.running(one.ready, self._desk.home(one.name)) as (process, _):
            self._desk.await_name(one.request.name)
            rest(process.pid)
            shared, own = memory(process.pid)
            self.add("ready: PSS", one.name, shared)
            self.add("ready: unique memory", one.name, own)
            for figure in ("first request", "later request"):
                window = self._request(one, figure, process)
                rest(process.pid)
                self._desk.windows.close_window(window)
                rest(process.pid)

    def rings(self, one, caller):
        """Measures the first call that comes to a process that is ready, and one after it, from the
        moment when the modem is told to ring, and the memory before them."""
        with self._desk.running(one.phoning, self._desk.home(one.name)) as (process, _):
            self._desk.await_name(one.request.name)
            rest(process.pid)
            shared, own = memory(process.pid)
            self.add("phoning: PSS", one.name, shared)
            self.add("phoning: unique memory", one.name, own)
            for figure in ("first ring", "later ring"):
                self._desk.windows.forget()
                begin = time.monotonic()
                caller.ring("+4930555123")
                mapped, drawn, window = self._desk.windows.appearing(process)
                self.add_window(figure, one.name, begin, mapped, drawn)
                self._keep_picture(one, window, figure)
                caller.give_up()
                rest(process.pid)
                self._desk.windows.close_window(window)
                rest(process.pid)

    def idle(self, ones):
        """Counts how often the threads of programs that do nothing are given a processor, all of
        them at the same time: those that can be ready without a window, then those with one."""
        ready = {one: one.ready for one in ones if one.ready}
        self._idle("ready", ready, lambda one, _: self._desk.await_name(one.request.name))
        shown = {one: one.start for one in ones if one.lasts}
        self._idle("shown", shown, lambda _, process: self._desk.windows.appearing(process))

    def _idle(self, state, commands, reached):
        with contextlib.ExitStack() as stack:
            processes = {}
            for one, command in commands.items():
                running = self._desk.running(command, self._desk.home(one.name))
                process, _ = stack.enter_context(running)
                try:
                    reached(one, process)
                except NoWindow:
                    if process.poll() is None or one is contenders.OURS:
                        raise
                    tell(f"{one.name} has crashed, and is left out of idling")
                    continue
                processes[one.name] = process.pid
            for pid in processes.values():
                rest(pid)
            time.sleep(LATE)
            before = {name: wakes(pid) for name, pid in processes.items()}
            time.sleep(IDLE)
            for name, pid in processes.items():
                after = wakes(pid)
                woken = sum(count - before[name].get(one, 0) for one, count in after.items())
                self.add(f"{state}: {IDLE} s of idling", name, woken)

    def _request(self, one, figure, process):
        message = one.request.message()
        self._desk.windows.forget()
        begin = time.monotonic()
        self._desk.bus.send_message(message)
        self._desk.bus.flush()
        mapped, drawn, window = self._desk.windows.appearing(process)
        self.add_window(figure, one.name, begin, mapped, drawn)
        self._keep_picture(one, window, figure)
        return window

    def _keep_picture(self, one, window, figure="start"):
        """Keeps what the window showed when it had content for the first time."""
        if self._pictures:
            picture = self._desk.windows.picture(window)
            (self._pictures / f"{one.name} {figure}.png").write_bytes(picture)


def delayed(when):
    """Returns our program with a screen that does nothing for 20 ms then."""
    screen = Path(__file__).resolve().parent / "delayed.qml"
    start = ("parley-ui", "-qml", str(screen), "-busy", when)
    return contenders.Contender(when, "", start, (*start, "-prestart"), contenders.our_opening())


def measure(options):
    """Returns the lists of figures."""
    ones = [delayed(when) for when in DELAYS] if options.self_test else contenders.ALL
    on_x11 = options.window_system == "x11"
    order = collections.deque(one for one in ones if one.lasts or on_x11)
    with Desk(options.window_system) as desk:
        for one in order:  # Fill the caches.
            attempt(Bench(desk).start, one)
        bench = Bench(desk, options.pictures if on_x11 else None)
        for i in range(options.rounds):
            tell(f"{options.window_system}: round {i + 1} of {options.rounds}")
            for one in order:
                attempt(bench.start, one)
            for one in order:
                if one.ready:
                    attempt(bench.requests, one)
            for one in order:
                if not options.self_test:
                    attempt(bench.first_start, one)
            order.rotate()
        if not options.self_test:
            tell(f"{options.window_system}: idling")
            bench.idle(order)
            measure_rings(bench, desk, options)
    return bench.figures


def measure_rings(bench, desk, options):
    """Lets all that can phone be called in turn."""
    order = collections.deque(one for one in contenders.ALL if one.phoning)
    with Caller(desk) as caller:
        for i in range(options.rounds):
            tell(f"{options.window_system}: calls, round {i + 1} of {options.rounds}")
            for one in order:
                attempt(lambda who: bench.rings(who, caller), one)
            order.rotate()


def attempt(step, one):
    """Measures a contender. A peer that fails, as some crash now and then, has a figure less."""
    try:
        step(one)
    except Failure as failure:
        if one not in contenders.PEERS:
            raise
        tell(str(failure).splitlines()[0])


def tell(text):
    print(text, flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--rounds", type=int, default=15)
    parser.add_argument("--window-system", choices=["x11", "wayland"], required=True)
    parser.add_argument("--self-test", action="store_true")
    parser.add_argument("--pictures", type=Path)
    parser.add_argument("output", type=Path)
    options = parser.parse_args()
    options.output.write_text(json.dumps(measure(options)))


if __name__ == "__main__":
    try:
        main()
    except Failure as failure:
        sys.exit(str(failure))
