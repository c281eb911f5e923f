# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""A desk on which windows come to an X server or a compositor without a screen, and nothing else
runs."""

import contextlib
import os
import re
import subprocess
import time
from pathlib import Path

import dbus
import dbus.bus

from handset import PATIENCE, Failure, Handset
from surfaces import Surfaces
from windows import Windows

SCREEN = "360x640"
# Tiled, as each window is on a handset.
SWAY = f"""output HEADLESS-1 mode {SCREEN}
default_border none
"""
# Where the files of programs are. A program that reads them first finds them in no cache.
FILES = ["/usr/bin", "/usr/lib", "/usr/libexec", "/usr/share", "/etc"]


class Desk(Handset):
    """Two buses without services, and a window system: "x11" or "wayland". A context manager that
    ends all on exit. The attribute windows sees what comes there."""

    def __init__(self, window_system):
        super().__init__("absent")
        self._window_system = window_system
        self._contents = []

    def __enter__(self):
        super().__enter__()
        try:
            if self._window_system == "x11":
                self._start_server()
            else:
                self._start_compositor()
            self.bus = dbus.bus.BusConnection(self.session)
        except BaseException:
            self.__exit__(None, None, None)
            raise
        return self

    def home(self, name):
        """Returns a home that is new unless there is one of that name."""
        folder = self.folder / f"home-{name}"
        folder.mkdir(mode=0o700, exist_ok=True)
        return folder

    def environment(self, home=None):
        """Returns the environment of a program with that home. All draw without a GPU."""
        home = home or self.home("nobody")
        return {
            **super().environment(),
            "HOME": str(home),
            "XDG_RUNTIME_DIR": str(home),
            **self._display,
            "GSK_RENDERER": "cairo",
            "LIBGL_ALWAYS_SOFTWARE": "1",
            "QT_WAYLAND_CLIENT_BUFFER_INTEGRATION": "none",  # Otherwise Qt loads a GL that it needs not.
            "GSETTINGS_BACKEND": "memory",  # There is no dconf service, without which some never rest.
            "NO_AT_BRIDGE": "1",
        }

    @contextlib.contextmanager
    def running(self, command, home):
        """Runs a program within the context. Gives its process, and when it was started."""
        log = self.folder / "log"
        with log.open("w") as output:
            start = time.monotonic()
            process = subprocess.Popen(
                command,
                env=self.environment(home),
                stdin=subprocess.DEVNULL,
                stdout=output,
                stderr=output,
            )
            try:
                yield process, start
            except Exception as error:
                said = log.read_text(errors="replace")[-2000:]
                state = "runs" if process.poll() is None else f"ended with {process.returncode}"
                raise Failure(
                    f"{' '.join(command)}: {error}. It {state}, and said:\n{said}"
                ) from error
            finally:
                process.terminate()
                try:
                    process.wait(5)
                except subprocess.TimeoutExpired:
                    process.kill()
                    process.wait()
        self.windows.forget()

    def await_name(self, name):
        """Waits until a process has the name on the session bus."""
        deadline = time.monotonic() + PATIENCE
        while not self.bus.name_has_owner(name):
            if time.monotonic() > deadline:
                raise Failure(f"{name} did not come to the bus")
            time.sleep(0.01)

    def forget_files(self):
        """Makes the kernel forget the content of all files that no process uses."""
        if not self._contents:
            for folder in FILES:
                self._contents += [file for file in Path(folder).rglob("*") if file.is_file()]
        for file in self._contents:
            descriptor = os.open(file, os.O_RDONLY)
            os.posix_fadvise(descriptor, 0, 0, os.POSIX_FADV_DONTNEED)
            os.close(descriptor)

    def _start_server(self):
        reading, writing = os.pipe()
        server = ["Xvfb", "-displayfd", str(writing), "-screen", "0", f"{SCREEN}x24"]
        self._start_quietly([*server, "-nolisten", "tcp"], pass_fds=[writing])
        os.close(writing)
        with os.fdopen(reading) as number:
            display = f":{number.readline().strip()}"
        if display == ":":
            raise Failure("Xvfb did not start")
        self._display = {"DISPLAY": display, "QT_QPA_PLATFORM": "xcb", "GDK_BACKEND": "x11"}
        self.windows = Windows(display)

    def _start_compositor(self):
        configuration, address = self.folder / "sway", self.folder / "sway.socket"
        configuration.write_text(SWAY)
        environment = {
            **super().environment(),
            "XDG_RUNTIME_DIR": str(self.folder),
            "SWAYSOCK": str(address),
            "WLR_BACKENDS": "headless",
            "WLR_RENDERER": "pixman",
            "WLR_LIBINPUT_NO_DEVICES": "1",
        }
        self._start_quietly(["sway", "-c", str(configuration)], env=environment)
        deadline = time.monotonic() + PATIENCE
        while not (found := [file for file in self.folder.glob("wayland-?") if address.exists()]):
            if time.monotonic() > deadline:
                raise Failure("sway did not start")
            time.sleep(0.01)
        self._display = {
            "WAYLAND_DISPLAY": str(found[0]),
            "QT_QPA_PLATFORM": "wayland",
            "GDK_BACKEND": "wayland",
        }
        self.windows = Surfaces(address)

    def _start_quietly(self, command, **options):
        quiet = {"stdin": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
        self._processes.append(subprocess.Popen(command, **quiet, **options))


def of_threads(pid, name):
    """Returns the contents of the files of that name, by thread. Threads may end meanwhile."""
    found = {}
    for thread in Path(f"/proc/{pid}/task").iterdir():
        with contextlib.suppress(FileNotFoundError, ProcessLookupError):
            found[thread.name] = (thread / name).read_text()
    return found


def used_time(pid):
    """Returns the seconds for which the threads of a process have had a processor."""
    return sum(int(text.split()[0]) for text in of_threads(pid, "schedstat").values()) / 1e9


def wakes(pid):
    """Returns how often each thread of a process was given a processor."""
    return {
        thread: sum(int(n) for n in re.findall(r"ctxt_switches:\s+(\d+)", text))
        for thread, text in of_threads(pid, "status").items()
    }


def rest(pid):
    """Waits until a process does nothing to speak of."""
    deadline = time.monotonic() + PATIENCE
    before = used_time(pid)
    while True:
        time.sleep(0.5)
        now = used_time(pid)
        if now - before < 0.002:
            return
        if time.monotonic() > deadline:
            raise Failure("it does not come to rest")
        before = now


def memory(pid):
    """Returns the memory of a process in KiB: its share of all its pages, and its own pages."""
    rollup = Path(f"/proc/{pid}/smaps_rollup").read_text()
    shared = int(re.search(r"^Pss:\s+(\d+)", rollup, re.MULTILINE)[1])
    return shared, sum(map(int, re.findall(r"^Private_\w+:\s+(\d+)", rollup, re.MULTILINE)))
