# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""A handset that phones: oFono on the simulator's modems, and the call UI with the screens that are
installed. What happens is seen where it happens: at the modem, at oFono and in the screens' log."""

import collections
import os
import re
import subprocess
import time
from pathlib import Path

import dbus
import dbus.bus
import dbus.mainloop.glib
from gi.repository import GLib

from handset import PATIENCE, SERVICES, SIM, Failure, Handset

MODEM_SERVICE = "com.nimbo.simulator.modem"
MODEM = "/ril_0"
UI = "com.nimbo.parley.ui"
# Who may answer and end calls in the place of the user.
USER = "com.nimbo.canopy"
BUS = "org.freedesktop.DBus"
# What Qt says off screen whenever a window comes to the front.
RAISE = "This plugin does not support raise()"


class Phone(Handset):
    """A context manager with the whole handset. An event is a text: "modem NUMBER STATE", "modem
    NUMBER ended REASON", "stack added", "stack removed", or a line of the screens, "screen: …"."""

    def __init__(self, build, screens):
        super().__init__("absent", build / "simulator/parley-handset")
        self._ui_command = [build / "app/parley-ui", "-prestart", "-qml", screens]
        self._events = collections.Counter()
        self._times = {}
        self._rest = b""
        self._shown = ""
        self.complaints = []

    def __enter__(self):
        super().__enter__()
        try:
            dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
            self.buses = {
                True: dbus.bus.BusConnection(self.system),
                False: dbus.bus.BusConnection(self.session),
            }
            for service, (name, on_system_bus) in SERVICES.items():
                if service != "telephony":
                    self._start_service(service, name, on_system_bus)
            self._start_service("modem", MODEM_SERVICE, True)
            self._start_service("ofono", MODEM_SERVICE + ".online", True)
            self._follow()
            self._control("Telephony").InsertSim(SIM, MODEM)
            self.wait("modem ready")
            self._start_ui()
        except BaseException:
            self.__exit__(None, None, None)
            raise
        return self

    def environment(self):
        return {**super().environment(), "QT_LOGGING_RULES": "screens.info=true"}

    # What the world does.

    def ring(self, number):
        self._control("Network").Ring(number, MODEM)

    def remote(self, action, number):
        self._control("Network").Remote(action, number)

    def dial(self, number):
        self._tell_ui("dial", number)

    def toggle(self):
        """Answers the call that rings, or ends the one on the screen."""
        return self._tell_ui("toggleCall")

    def answer(self):
        """Answers the call that rings as a program does that has nothing to show."""
        path, _ = self.stack_calls()[0]
        call = self._object(True, "org.ofono", path, "org.ofono.VoiceCall")
        start = time.monotonic()
        call.Answer(ignore_reply=True)
        self.buses[True].flush()
        return start

    # What can be seen.

    def wait(self, *events):
        """Waits until each event has come since it was last waited for. Returns when the first of
        them came."""
        self._iterate_until(lambda: all(self._events[event] for event in events), events)
        self._events.subtract(events)
        return self._times[events[0]]

    def wait_for_rest(self):
        """Waits until the screens show no call, and forgets the events that nobody has waited for."""
        self._iterate_until(lambda: re.match("hidden|dial pad|missed", self._shown), "rest")
        self._events.clear()

    def stack_calls(self):
        """Returns oFono's calls, each with its properties."""
        return self._object(True, "org.ofono", MODEM, "org.ofono.VoiceCallManager").GetCalls()

    def modem_calls(self):
        return self._control("Network").ListCalls()

    def match_rules(self, pid):
        """Returns how many signals the process has asked both buses for."""
        rules = 0
        for bus in self.buses.values():
            daemon = dbus.Interface(bus.get_object(BUS, "/org/freedesktop/DBus"), BUS)
            stats = dbus.Interface(daemon.proxy_object, f"{BUS}.Debug.Stats")
            for name in daemon.ListNames():
                if name.startswith(":") and daemon.GetConnectionUnixProcessID(name) == pid:
                    rules += int(stats.GetConnectionStats(name)["MatchRules"])
        return rules

    def processes(self):
        """Returns the processes to be measured by their names."""
        return {
            "parley-ui": self.ui_pid,
            "the modem": self.pid("modem"),
            "ofonod": self._daemon("ofonod"),
            "the system bus": self._processes[1].pid,
        }

    def _iterate_until(self, condition, wanted):
        deadline = time.monotonic() + PATIENCE
        timer = GLib.timeout_add_seconds(1, lambda: True)  # Wakes the loop for the deadline.
        try:
            while not condition():
                GLib.MainContext.default().iteration(True)
                if time.monotonic() > deadline:
                    seen = ", ".join(sorted(+self._events))
                    raise Failure(
                        f"Not all of {wanted} has come. The screens show {self._shown}.\n"
                        f"Seen: {seen}\nLog: {self.complaints}"
                    )
        finally:
            GLib.source_remove(timer)

    def _start_service(self, service, name, on_system_bus):
        self._services[service] = subprocess.Popen(
            [self._handset_program, "--service", service, "--state", self.folder],
            env=self.environment(),
            stdin=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
        )
        self._processes.append(self._services[service])
        self._await_name(name, on_system_bus)

    def _start_ui(self):
        process = subprocess.Popen(
            self._ui_command,
            env=self.environment(),
            stdin=subprocess.DEVNULL,
            stderr=subprocess.PIPE,
        )
        self._processes.append(process)
        self.ui_pid = process.pid
        os.set_blocking(process.stderr.fileno(), False)
        GLib.io_add_watch(process.stderr, GLib.IO_IN | GLib.IO_HUP, self._read_log)
        self.buses[False].request_name(USER)
        self._await_name(UI, False)
        self.wait("telephony: ready")

    def _await_name(self, name, on_system_bus):
        deadline = time.monotonic() + PATIENCE
        while not self.buses[on_system_bus].name_has_owner(name):
            if time.monotonic() > deadline:
                raise Failure(f"{name} did not come to the bus")
            time.sleep(0.01)

    def _follow(self):
        def follow(handler, **signal):
            self.buses[True].add_signal_receiver(handler, **signal)

        network = {"dbus_interface": "com.nimbo.simulator.Network", "bus_name": MODEM_SERVICE}
        calls = {"dbus_interface": "org.ofono.VoiceCallManager", "bus_name": "org.ofono"}
        follow(
            lambda _, number, state: self._see(f"modem {number} {state}"),
            signal_name="CallChanged",
            **network,
        )
        follow(
            lambda _, number, reason: self._see(f"modem {number} ended {reason}"),
            signal_name="CallEnded",
            **network,
        )
        follow(
            lambda _, number: self._see(f"modem {number} dialled"), signal_name="Dialled", **network
        )
        follow(lambda _: self._see("modem ready"), signal_name="Ready", **network)
        follow(lambda *_: self._see("stack added"), signal_name="CallAdded", **calls)
        follow(lambda *_: self._see("stack removed"), signal_name="CallRemoved", **calls)

    def _see(self, event):
        self._times[event] = time.monotonic()
        self._events[event] += 1

    def _read_log(self, pipe, _):
        data = os.read(pipe.fileno(), 65536)
        *lines, self._rest = (self._rest + data).split(b"\n")
        for line in lines:
            text = line.decode(errors="replace")
            if text.startswith("screens: "):
                self._see(text.removeprefix("screens: "))
                if state := re.match("screens: screen: (?!missed call from)(.*)", text):
                    self._shown = state[1]
            elif text != RAISE:
                self.complaints.append(text)
        return data != b""

    def _tell_ui(self, method, *values):
        interface = self._object(False, UI, "/", UI)
        start = time.monotonic()
        getattr(interface, method)(*values, ignore_reply=True)
        self.buses[False].flush()
        return start

    def _control(self, interface):
        return self._object(True, MODEM_SERVICE, "/", f"com.nimbo.simulator.{interface}")

    def _object(self, on_system_bus, name, path, interface):
        proxy = self.buses[on_system_bus].get_object(name, path, introspect=False)
        return dbus.Interface(proxy, interface)

    def _daemon(self, name):
        """Returns the process of that name that the sandbox of its service runs."""
        parents = [self.pid("ofono")]
        while parents:
            parent = parents.pop()
            if Path(f"/proc/{parent}/comm").read_text().strip() == name:
                return parent
            children = Path(f"/proc/{parent}/task/{parent}/children").read_text()
            parents += map(int, re.findall(r"\d+", children))
        raise Failure(f"{name} does not run")
