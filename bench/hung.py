# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""Measures how long the call UI takes to start and to answer while services hang."""

import collections
import concurrent.futures
import itertools
from statistics import median

import dbus
import dbus.bus

from figures import call, run_until_drawn
from handset import SERVICES, SIM, Failure, Handset
from table import number

WELL = "none"
HANGS = {
    "telephony": ["telephony"],
    "time daemon": ["time-daemon"],
    "notification service": ["notification-service"],
}
ALL_THREE = {"all three": [service for services in HANGS.values() for service in services]}
START_GOAL = 1.1
DIAL_GOAL = 50  # Milliseconds.
# The call UI goes on to the next reminder when the notification service has been silent for 5 s.
WINDOW = 7  # Seconds.
PAUSE = 0.5  # Seconds from one load to the next.
REMINDERS = 5  # The number in each load.
OTHER_SIM = "262012222222222"
# The objects that show and change the state of the services.
CONTROLS = {
    "telephony": ("/", "com.nimbo.simulator.Telephony"),
    "time-daemon": ("/com/nimbo/timed", "com.nimbo.simulator.TimeDaemon"),
    "notification-service": (
        "/org/freedesktop/Notifications",
        "com.nimbo.simulator.NotificationService",
    ),
}


class Controls:
    """What a handset does with its services and its call UI apart from the measured calls. A
    context manager that closes its connections on exit."""

    def __init__(self, handset):
        self._session = dbus.bus.BusConnection(handset.session)
        self._system = dbus.bus.BusConnection(handset.system)
        self._numbers = itertools.count(5550001)
        self._sims = itertools.cycle([OTHER_SIM, SIM])
        self._actions = itertools.cycle([1, 2])
        self._modem = None

    def __enter__(self):
        sims = self._control("telephony").ListSims()
        self._modem = next(modem for modem, (imsi, _) in sims.items() if imsi == SIM)
        return self

    def __exit__(self, *_):
        self._session.close()
        self._system.close()

    def await_answers(self):
        """Returns when services that hung have answered all calls from that time."""
        self._control("telephony").ListSims()
        self._control("notification-service").List()
        self.alarms()

    def alarms(self):
        """Returns the number of alarms that the time daemon has."""
        return len(self._control("time-daemon").List())

    def make_reminders(self):
        """Requests several reminders at once, each for another number, without waiting."""
        urls = [f"+4930{number}" for number in itertools.islice(self._numbers, REMINDERS)]
        self._interface(self._session, "com.nimbo.parley.ui", "/", "com.nimbo.parley.ui").openUrl(
            dbus.Array(urls, "s"), ignore_reply=True
        )
        self._session.flush()

    def swap_sim(self):
        """Replaces the SIM by another one with other rules."""
        telephony = self._control("telephony")
        sim, action = next(self._sims), dbus.UInt32(next(self._actions))
        telephony.RemoveSim(self._modem)
        telephony.InsertSim(sim, self._modem)
        for rules in ("dial", "incoming"):
            telephony.SetRule(rules, sim, action)
            telephony.SetDefaultAction(rules, action)

    def _control(self, service):
        name, on_system_bus = SERVICES[service]
        bus = self._system if on_system_bus else self._session
        return self._interface(bus, name, *CONTROLS[service])

    @staticmethod
    def _interface(bus, name, path, interface):
        return dbus.Interface(bus.get_object(name, path, introspect=False), interface)


def start(table, programs, runs):
    """Measures wall time, with services that hang and with none in turn."""
    screens = {"": programs.ours, ", every native type": programs.native}
    order = collections.deque({WELL: [], **ALL_THREE, **HANGS}.items())
    times = collections.defaultdict(list)
    with Handset("present", programs.handset) as handset, Controls(handset) as controls:
        for command in screens.values():
            run_until_drawn(handset, command)
        for _ in range(runs):
            for hang, services in order:
                with handset.hung(services):
                    for name, command in screens.items():
                        _, drawn = run_until_drawn(handset, command)
                        times[hang, name].append(drawn * 1e3)
                controls.await_answers()
            # Rotate the order, because the first start of a run may be slower.
            order.rotate()
    for hang in [*ALL_THREE, *HANGS]:
        for name in screens:
            table.add(
                f"start to first frame, hung: {hang}{name}",
                "ms",
                median(times[hang, name]),
                median(times[WELL, name]),
                START_GOAL,
            )


def dial(table, programs, runs):
    """Measures the longest wait of a round, with a service that hangs and with none in turn. A
    round takes seconds, so there is only one for three runs."""
    waits = collections.defaultdict(list)
    for _ in range(max(1, runs // 3)):
        for hang, services in {WELL: [], **HANGS}.items():
            waits[hang].append(longest_wait(programs, services))
    for hang in HANGS:
        table.add(
            f"dial's longest wait, hung: {hang}",
            "ms",
            median(waits[hang]),
            median(waits[WELL]),
            DIAL_GOAL,
            f"of all rounds {number(max(waits[hang]))}, yardstick " f"{number(max(waits[WELL]))}",
            absolute=True,
        )


def longest_wait(programs, services):
    """Returns the longest wait for a dial in milliseconds. The dials follow one another without a
    pause while these services hang and reminders, SIMs and rules change."""
    with (
        Handset("present", programs.handset) as handset,
        Controls(handset) as controls,
        concurrent.futures.ThreadPoolExecutor() as threads,
    ):
        process = handset.start(programs.reminding)
        process.wait_for("qml: ready")
        # A telephony service that hangs from now on owes answers.
        controls.swap_sim()
        with handset.hung(services):
            caller = threads.submit(
                call, handset, programs, 1, "dial", calls=WINDOW * 1000, options=["--longest"]
            )
            process.wait_for("qml: dialled")
            while not caller.done():
                controls.make_reminders()
                if "telephony" not in services:
                    controls.swap_sim()
                concurrent.futures.wait([caller], timeout=PAUSE)
        controls.await_answers()
        if controls.alarms() < REMINDERS:
            raise Failure("The call UI has made no reminders")
        process.end()
        return caller.result()[0][0] / 1e3
