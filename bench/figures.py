# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""Measures the figures that docs/performance.md describes, and adds them to a table."""

import collections
import itertools
import math
import os
import re
import subprocess
import time
from pathlib import Path
from statistics import median

import dbus
import dbus.bus

import counting
from handset import PATIENCE, Failure, Handset

START_GOALS = {"present": 1.25, "absent": 1.15, "no bus": 1.15}
CALLS = 100  # The number of calls of one method in a row.
ALARMS = 100  # That have yet to fire while something idles.
COUNTS = 5  # How often the same instructions are counted.


class Programs:
    """The commands to be measured, in the folder of a build. Callgrind writes to counts."""

    def __init__(self, folder, qml_folder, counts):
        self.folder = folder
        self.counts = counts
        self.handset = folder / "simulator/parley-handset"
        self.roundtrips = folder / "bench/roundtrips"
        ui = folder / "app/parley-ui"
        screens = qml_folder / "Screens.qml"
        self.ours = [ui, "-qml", screens]
        self.bare = [folder / "bench/barehost", screens]
        self.native = [ui, "-qml", qml_folder / "nativescreens.qml"]
        self.reminding = [ui, "-qml", qml_folder / "remindingscreens.qml"]
        self.shipped = [ui, "-qml", qml_folder / "shippedscreens.qml"]


def run_until_drawn(handset, command):
    """Returns the seconds until the screens are loaded, and until they are drawn."""
    process = handset.start(command)
    try:
        return process.wait_for("qml: completed"), process.wait_for("qml: drawn")
    finally:
        process.end()


def count_start(handset, programs, command, times=COUNTS):
    """Returns the instructions until the screens are loaded and until they are drawn, each as a
    list of counts. Fills the caches in the home first."""
    run_until_drawn(handset, command)
    output = programs.counts / "start"
    completed, drawn = [], []
    for _ in range(times):
        run_until_drawn(handset, counting.under_callgrind(command, output))
        completed.append(counting.counted(output, 1))
        drawn.append(completed[-1] + counting.counted(output, 2))
    return completed, drawn


def count_shipped_screens(handset, programs, times=COUNTS):
    """Returns the instructions from the start to the first frame of the screens that the project
    ships, and from there until they can phone, each as a list of counts."""

    def run(command):
        process = handset.start(command)
        process.wait_for("qml: ready")
        process.end()

    run(programs.shipped)  # Fills the caches in the home.
    output = programs.counts / "shipped"
    drawn, ready = [], []
    for _ in range(times):
        run(counting.under_callgrind(programs.shipped, output))
        drawn.append(counting.counted(output, 1) + counting.counted(output, 2))
        ready.append(counting.counted(output, 3))
    return drawn, ready


def spread(counts):
    """Returns the range of the counts as a part of their median."""
    return (max(counts) - min(counts)) / median(counts)


def start_instructions(table, programs):
    """Counts the instructions of all threads."""
    for services, goal in START_GOALS.items():
        with Handset(services, programs.handset) as handset:
            bare = count_start(handset, programs, programs.bare)
            for name, command, its_goal in (
                ("", programs.ours, goal),
                (", every native type", programs.native, None),
            ):
                ours = count_start(handset, programs, command)
                for moment, our, yard in zip(("completed", "first frame"), ours, bare):
                    apart = max(spread(our), spread(yard))
                    table.add(
                        f"start to {moment}, services {services}{name}",
                        "M instructions",
                        median(our) / 1e6,
                        median(yard) / 1e6,
                        its_goal,
                        f"± {apart / 2:.2%}",
                    )


def start_times(table, programs, runs):
    """Measures wall time, of the call UI and of the bare host in turn."""
    for services, goal in START_GOALS.items():
        with Handset(services, programs.handset) as handset:
            times = collections.defaultdict(list)
            for command in (programs.bare, programs.ours, programs.native):
                run_until_drawn(handset, command)
            for _ in range(runs):
                for name, command in (
                    ("bare", programs.bare),
                    ("", programs.ours),
                    (", every native type", programs.native),
                ):
                    for moment, taken in zip(
                        ("completed", "first frame"), run_until_drawn(handset, command)
                    ):
                        times[name, moment].append(taken * 1e3)
            for name in ("", ", every native type"):
                for moment in ("completed", "first frame"):
                    table.add(
                        f"start to {moment}, services {services}{name}",
                        "ms",
                        median(times[name, moment]),
                        median(times["bare", moment]),
                        None if name else goal,
                    )


def memory_of(pid):
    """Returns the peak of resident memory, and the memory that is not shared, in KiB."""
    status = Path(f"/proc/{pid}/status").read_text()
    rollup = Path(f"/proc/{pid}/smaps_rollup").read_text()
    peak = int(re.search(r"^VmHWM:\s+(\d+)", status, re.MULTILINE)[1])
    unique = sum(int(size) for size in re.findall(r"^Private_\w+:\s+(\d+)", rollup, re.MULTILINE))
    return peak, unique


def memory(table, programs, runs):
    """Measures the memory after the first frame."""
    with Handset("present", programs.handset) as handset:
        sizes = collections.defaultdict(list)
        for _ in range(runs):
            for name, command in (
                ("bare", programs.bare),
                ("", programs.ours),
                (", every native type", programs.native),
            ):
                process = handset.start(command)
                process.wait_for("qml: drawn")
                for figure, size in zip(("peak memory", "unique memory"), memory_of(process.pid)):
                    sizes[name, figure].append(size)
                process.end()
        for name in ("", ", every native type"):
            for figure, goal in (("peak memory", 1.15), ("unique memory", None)):
                table.add(
                    figure + name,
                    "KiB",
                    median(sizes[name, figure]),
                    median(sizes["bare", figure]),
                    None if name else goal,
                )


def call(handset, programs, runs, *methods, calls=CALLS, options=(), prefix=()):
    """Returns the microseconds for each round and method."""
    printed = handset.run([*prefix, programs.roundtrips, *options, str(runs), str(calls), *methods])
    return [[float(time) for time in line.split()] for line in printed.splitlines()]


def call_medians(*arguments, **options):
    """Returns the median over the rounds for each method."""
    return [median(times) for times in zip(*call(*arguments, **options))]


def dial(table, programs, runs):
    """Measures a call from another process to a QML handler and back, and its instructions."""
    with Handset("present", programs.handset) as handset:
        process = handset.start(programs.native)
        process.wait_for("qml: drawn")
        call(handset, programs, 1, "Ping", "dial")
        ping, dialled = call_medians(handset, programs, runs, "Ping", "dial")
        process.end()
        table.add("dial, there and back", "µs", dialled, ping, 1.3)
        ping, dialled = count_calls(handset, programs, "Ping", "dial")
        table.add("dial, the call UI's part", "k instructions", dialled / 1e3, ping / 1e3)


def count_calls(handset, programs, *methods):
    """Instructions of the call UI for one call of each method, all threads: the mean of many calls,
    and the least of several such means, since a thread that is woken once too often only adds to
    it. Returns a list."""
    output = programs.counts / "calls"
    process = handset.start(counting.under_callgrind(programs.native, output))
    process.wait_for("qml: drawn")
    for method in methods:
        # The first calls settle what is done once. A showOngoing is a moment, and costs something.
        call(handset, programs, 1, method)
        for _ in range(2):
            call(handset, programs, 1, "showOngoing", calls=1)
        for _ in range(COUNTS):
            call(handset, programs, 1, method)
            call(handset, programs, 1, "showOngoing", calls=1)
    process.end()
    counts = []
    for i in range(len(methods)):
        # The start has the moments 1 and 2, and each method has two before its counts.
        before = 2 + i * (2 + COUNTS) + 2
        moment = counting.counted(output, before)
        least = min(counting.counted(output, before + 1 + j) for j in range(COUNTS))
        counts.append((least - moment) / CALLS)
    return counts


def count_request(handset, programs, times=COUNTS):
    """Returns counts of the instructions of the call UI, all threads, from a request to the first
    frame of its window, which was hidden until then. Fills the caches in the home first."""
    command = [*programs.native, "-prestart"]
    output = programs.counts / "request"
    run_until_drawn(handset, programs.native)
    counts = []
    for _ in range(times):
        process = handset.start(counting.under_callgrind(command, output))
        process.wait_for("qml: completed")
        settle(process.pid)
        call(handset, programs, 1, "showOngoing", calls=1)
        process.wait_for("qml: marked")
        call(handset, programs, 1, "show", calls=1)
        process.wait_for("qml: drawn")
        process.end()
        counts.append(counting.counted(output, 3))
    return counts


def request_instructions(table, programs):
    """Counts the instructions for a request that shows the window."""
    with Handset("present", programs.handset) as handset:
        ours = count_request(handset, programs)
        table.add(
            "request to first frame, every native type",
            "M instructions",
            median(ours) / 1e6,
            note=f"± {spread(ours) / 2:.2%}",
        )


def toggle_call(table, programs, runs):
    """Measures the time of each answer, and how often the call UI asks the bus for it."""
    with Handset("present", programs.handset) as handset:
        process = handset.start(programs.native)
        process.wait_for("qml: drawn")
        toggle_as(
            table,
            handset,
            programs,
            runs,
            "by the owner of com.nimbo.canopy",
            options=["--own", "com.nimbo.canopy"],
        )
        if os.geteuid() == 0:
            toggle_as(table, handset, programs, runs, "by root")
            toggle_as(
                table,
                handset,
                programs,
                runs,
                "refused",
                options=["--refused"],
                prefix=["setpriv", "--reuid", "nobody", "--regid", "nogroup", "--clear-groups"],
            )
        else:
            print("Not root: toggleCall is measured for the owner of com.nimbo.canopy alone.")
        process.end()
        toggle_as(table, handset, programs, runs, "by the process itself", options=["--self"])


def toggle_as(table, handset, programs, runs, outcome, options=(), prefix=()):
    how = {"options": options, "prefix": prefix}
    ping, toggled = call_medians(handset, programs, runs, "Ping", "toggleCall", **how)
    asked = count_questions(handset, lambda: call(handset, programs, 1, "toggleCall", **how))
    table.add(f"toggleCall {outcome}", "µs", toggled, ping)
    table.add(f"toggleCall {outcome}: the bus is asked", "times", asked / CALLS)


def count_questions(handset, action):
    """Returns how often the action makes the session bus be asked for a connection's process."""
    log = handset.folder / "monitor"
    with log.open("w") as output:
        monitor = subprocess.Popen(
            ["dbus-monitor", "--address", handset.session, "type='method_call'"],
            stdout=output,
            stderr=subprocess.DEVNULL,
        )
    try:
        see(handset, log, "Begin")
        action()
        see(handset, log, "End")
    finally:
        monitor.terminate()
        monitor.wait()
    return log.read_text(errors="replace").count("member=GetConnectionUnixProcessID")


def see(handset, log, member):
    """Returns when the monitor has seen the member, and thus all messages before it."""
    deadline = time.monotonic() + PATIENCE
    while f"member={member}\n" not in log.read_text(errors="replace"):
        if time.monotonic() > deadline:
            raise Failure("dbus-monitor sees nothing")
        handset.run(
            [
                "dbus-send",
                "--type=method_call",
                f"--bus={handset.session}",
                "--dest=org.freedesktop.DBus",
                "/",
                f"com.nimbo.bench.{member}",
            ]
        )
        time.sleep(0.05)


def threads(pid):
    """Returns how often each thread was given the processor, and its current system call."""
    found = {}
    for thread in Path(f"/proc/{pid}/task").iterdir():
        status = (thread / "status").read_text()
        switches = sum(int(n) for n in re.findall(r"ctxt_switches:\s+(\d+)", status))
        found[thread.name] = (switches, (thread / "syscall").read_text().split())
    return found


def waits_for_ever(syscall):
    """Returns whether the call is a poll(), ppoll() or futex() without a time-out."""
    number, *arguments = syscall
    if number == "7":
        return int(arguments[2], 16) & 0xFFFFFFFF == 0xFFFFFFFF
    return number in ("271", "202") and int(arguments[2 if number == "271" else 3], 16) == 0


def idle(table, programs):
    """Counts wake-ups. A thread that is not given the processor makes no system call: it does not
    read, write or send anything."""
    with Handset("present", programs.handset) as handset:
        process = handset.start(programs.native)
        process.wait_for("qml: drawn")
        settle(process.pid)
        for seconds in (0.1, 1, 60):
            before = threads(process.pid)
            time.sleep(seconds)
            after = threads(process.pid)
            woken = sum(after[one][0] - before.get(one, (0,))[0] for one in after)
            table.add(f"{seconds:g} s of idling", "wake-ups", woken, goal=0)
        timers = sum(not waits_for_ever(syscall) for _, syscall in after.values())
        table.add(
            "idling threads that wait for a time",
            "threads",
            timers,
            goal=0,
            note=f"of {len(after)}",
        )
        process.end()


def idle_with_alarms(table, programs):
    """Counts the wake-ups of what waits for alarms, while there are some."""
    with Handset("present", programs.handset) as handset:
        bus = dbus.bus.BusConnection(handset.system)
        daemon = bus.get_object("com.nimbo.timed", "/com/nimbo/timed", introspect=False)
        for i in range(ALARMS):
            event = (dbus.UInt32(3), dbus.Int64(4102444800 + i), {"TITLE": "Ada"})
            daemon.add_event(event, dbus_interface="com.nimbo.timed")
        bus.close()
        names = ["time-daemon", "alarm-service"]
        for name in names:
            settle(handset.pid(name))
        before = {name: threads(handset.pid(name)) for name in names}
        time.sleep(60)
        for name in names:
            after = threads(handset.pid(name))
            woken = sum(after[one][0] - before[name].get(one, (0,))[0] for one in after)
            table.add(f"60 s of idling with {ALARMS} alarms: {name}", "wake-ups", woken, goal=0)


def settle(pid):
    """Waits until no thread has run for a second: the work after the first frame is done then."""
    deadline = time.monotonic() + PATIENCE
    before = None
    while (now := threads(pid)) != before:
        if time.monotonic() > deadline:
            raise Failure("The call UI does not come to rest")
        before = now
        time.sleep(1)


def growth(table, benchmarks):
    """Adds the last figure of each column, and the exponent over the last decade of sizes."""
    for benchmark in benchmarks:
        print(f"\n{benchmark.name}\n", flush=True)
        printed = subprocess.run([benchmark], check=True, capture_output=True, text=True).stdout
        print(printed, flush=True)
        title, rows = parse_growth(printed)
        last, before = rows[-1], rows[-2]
        decades = math.log10(last[0] / before[0])
        for column, name in enumerate(title):
            if name == "ratio":
                exponent = math.log10(last[column]) / decades
                figure, unit = title[column - 1].rsplit(", ", 1)
                table.add(
                    f"{benchmark.name}: {title[column - 1]}, {last[0]:,.0f} {title[0]}",
                    "",
                    last[column - 1],
                    note=f"exponent {exponent:.2f}",
                    growth={
                        "name": f"{benchmark.name}: {figure}",
                        "unit": unit,
                        "things": title[0],
                        "curve": [[row[0], row[column - 1]] for row in rows],
                    },
                )


def parse_growth(printed):
    """Returns the titles, and the rows of numbers. The first row has None for each ratio."""
    lines = [line for line in printed.splitlines() if line.strip()]
    title = next(line for line in lines if "ratio" in line.split())
    names = re.split(r"\s{2,}", re.sub(r"\bratio\b", "  ratio  ", title).strip())
    rows = [
        [float(value) for value in line.split()]
        for line in lines
        if re.fullmatch(r"[\d\s.]+", line)
    ]
    size, *figures = rows[0]
    rows[0] = [size, *itertools.chain.from_iterable((figure, None) for figure in figures)]
    return names, rows


def profile(programs):
    """Prints the instructions of the start for each library, ours and the bare host's."""
    for services in START_GOALS:
        with Handset(services, programs.handset) as handset:
            counts = []
            for command in (programs.ours, programs.bare):
                count_start(handset, programs, command, 1)
                counts.append(counting.by_library(programs.counts / "start", 1))
        ours, bare = counts
        more = {one: ours[one] - bare[one] for one in ours.keys() | bare.keys()}
        print(
            f"\n| to completed, services {services}: thousand instructions in "
            "| ours | bare host | more |\n| --- | --- | --- | --- |"
        )
        for library in sorted(more, key=lambda one: -abs(more[one]))[:14]:
            print(
                f"| {library} | {ours[library] / 1e3:,.0f} | {bare[library] / 1e3:,.0f} "
                f"| {more[library] / 1e3:+,.0f} |"
            )
        print(
            f"| all | {sum(ours.values()) / 1e3:,.0f} | {sum(bare.values()) / 1e3:,.0f} "
            f"| {sum(more.values()) / 1e3:+,.0f} |"
        )
