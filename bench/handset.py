# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""A handset in which programs are measured: a home, two buses, and the services if wanted."""

import contextlib
import os
import queue
import signal
import subprocess
import tempfile
import threading
import time
from pathlib import Path

import dbus
import dbus.bus

PATIENCE = 120  # Seconds. This is enough on a slow machine and under valgrind, too.
SIM = "262011111111111"
# The services, their names, and whether they are on the system bus.
SERVICES = {
    "time-daemon": ("com.nimbo.timed", True),
    "notification-service": ("org.freedesktop.Notifications", False),
    "alarm-service": ("com.nimbo.parley.alarm", False),
    "call-history": ("com.nokia.telephony.callhistory", False),
    "telephony": ("org.ofono", True),
}
BUS = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-BUS Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:path={0}</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow user="*"/>
    <allow own="*"/>
    <allow send_destination="*" eavesdrop="true"/>
    <allow receive_sender="*"/>
  </policy>
</busconfig>
"""


class Failure(Exception):
    """A reason why a figure cannot be measured. Its text is shown to the user."""


class Process:
    """A program whose log is read all the time. Each line is stored with the time when it came."""

    def __init__(self, command, environment):
        self._seen = []
        self._unseen = queue.Queue()
        self._started = time.monotonic()
        self._process = subprocess.Popen(
            command, env=environment, stdin=subprocess.DEVNULL, stderr=subprocess.PIPE
        )
        self.pid = self._process.pid
        self._reader = threading.Thread(target=self._read)
        self._reader.start()

    def wait_for(self, line):
        """Waits for the next such line of the log. Returns the seconds from the start to it."""
        try:
            while (entry := self._unseen.get(timeout=PATIENCE)) is not None:
                when, text = entry
                self._seen.append(text)
                if text == line:
                    return when - self._started
        except queue.Empty:
            pass
        log = "\n".join(self._seen)
        raise Failure(f'{self._process.args} did not say "{line}", but:\n{log}')

    def end(self):
        """Ends the program if it still runs, and waits for its end."""
        self._process.terminate()
        self._process.wait()
        self._reader.join()
        self._process.stderr.close()

    def _read(self):
        for line in self._process.stderr:
            self._unseen.put((time.monotonic(), line.decode(errors="replace").rstrip("\n")))
        self._unseen.put(None)


class Handset:
    """A context manager that ends all processes of the handset on exit.

    services: "present", with a SIM and rules for it, "absent", or "no bus".
    """

    def __init__(self, services, handset_program=None):
        self._kind = services
        self._handset_program = handset_program
        self._processes = []
        self._services = {}
        self._programs = []

    def __enter__(self):
        # The path of a socket has to be short, and other users have to reach the folder.
        self._temporary = tempfile.TemporaryDirectory(prefix="bench-")
        self.folder = Path(self._temporary.name)
        self.folder.chmod(0o711)
        (self.folder / "home").mkdir(mode=0o700)
        (self.folder / "dconf-profile").write_text("user-db:user\n")
        self.session = f"unix:path={self.folder}/session"
        self.system = f"unix:path={self.folder}/system"
        try:
            if self._kind != "no bus":
                self._start_bus("session")
                self._start_bus("system")
            if self._kind == "present":
                self._start_services()
        except BaseException:
            self.__exit__(None, None, None)
            raise
        return self

    def __exit__(self, *_):
        for program in self._programs:
            program.end()
        for process in reversed(self._processes):
            process.terminate()
            process.wait()
        self._temporary.cleanup()

    def environment(self):
        """Returns the whole environment of a program, for the same instructions each time."""
        modules = {}
        if self._handset_program:
            modules["QML2_IMPORT_PATH"] = str(self._handset_program.parent.parent / "qml")
        return {
            "PATH": os.environ["PATH"],
            "LC_ALL": "C.UTF-8",
            "HOME": f"{self.folder}/home",
            "XDG_RUNTIME_DIR": f"{self.folder}/home",
            "DCONF_PROFILE": f"{self.folder}/dconf-profile",
            "DBUS_SESSION_BUS_ADDRESS": self.session,
            "DBUS_SYSTEM_BUS_ADDRESS": self.system,
            "QT_QPA_PLATFORM": "offscreen",
            "QT_QUICK_BACKEND": "software",
            "QT_FORCE_STDERR_LOGGING": "1",
            "QT_HASH_SEED": "0",
            **modules,
        }

    def start(self, command):
        """Starts a program whose log is read. The handset ends it at the latest."""
        self._programs.append(Process(command, self.environment()))
        return self._programs[-1]

    def pid(self, service):
        """Returns the process of a service."""
        return self._services[service].pid

    def run(self, command):
        """Runs a program to its end. Returns what it has printed."""
        done = subprocess.run(
            command,
            env=self.environment(),
            stdin=subprocess.DEVNULL,
            capture_output=True,
            text=True,
            timeout=PATIENCE,
            check=False,
        )
        if done.returncode != 0:
            raise Failure(f"{command} has failed:\n{done.stderr}")
        return done.stdout

    @contextlib.contextmanager
    def hung(self, services):
        """Stops these services within the context. They get their messages when they go on."""
        processes = [self._services[one] for one in services]
        try:
            for process in processes:
                process.send_signal(signal.SIGSTOP)
                os.waitid(os.P_PID, process.pid, os.WSTOPPED)
            yield
        finally:
            for process in processes:
                process.send_signal(signal.SIGCONT)

    def _start_bus(self, name):
        configuration = self.folder / f"{name}.conf"
        configuration.write_text(BUS.format(self.folder / name))
        daemon = subprocess.Popen(
            [
                "dbus-daemon",
                "--nofork",
                "--nosyslog",
                "--print-address=1",
                f"--config-file={configuration}",
            ],
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL,
        )
        self._processes.append(daemon)
        if not daemon.stdout.readline():
            raise Failure(
                "dbus-daemon did not start with this configuration:\n" + configuration.read_text()
            )

    def _start_services(self):
        buses = {
            False: dbus.bus.BusConnection(self.session),
            True: dbus.bus.BusConnection(self.system),
        }
        for service in SERVICES:
            self._services[service] = subprocess.Popen(
                [self._handset_program, "--service", service, "--state", str(self.folder)],
                env=self.environment(),
                stdin=subprocess.DEVNULL,
            )
            self._processes.append(self._services[service])
        for name, on_system_bus in SERVICES.values():
            deadline = time.monotonic() + PATIENCE
            while not buses[on_system_bus].name_has_owner(name):
                if time.monotonic() > deadline:
                    raise Failure(f"{name} did not come to the bus")
                time.sleep(0.01)
        telephony = buses[True].get_object("org.ofono", "/", introspect=False)
        control = dbus.Interface(telephony, "com.nimbo.simulator.Telephony")
        control.InsertSim(SIM, "")
        for rules in ("dial", "incoming"):
            control.SetRule(rules, SIM, dbus.UInt32(2))
        for bus in buses.values():
            bus.close()
