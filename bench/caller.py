# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""Somebody who calls the handset, through the real oFono and a modem on its system bus."""

import subprocess
import time

import dbus
import dbus.bus

from handset import PATIENCE, SIM, Failure

MODEM = "com.nimbo.simulator.modem"
ONLINE = "com.nimbo.simulator.modem.online"  # It has an owner while oFono has the modem online.


class Caller:
    """A context manager that ends oFono and the modem on exit."""

    def __init__(self, handset, handset_program="parley-handset"):
        self._handset = handset
        self._program = handset_program
        self._processes = []

    def __enter__(self):
        self._bus = dbus.bus.BusConnection(self._handset.system)
        state = self._handset.folder / "modems"
        state.mkdir()
        try:
            self._start(self._program, "--service", "modem", "--state", str(state))
            self._await(MODEM)
            modem = self._bus.get_object(MODEM, "/", introspect=False)
            self._network = dbus.Interface(modem, "com.nimbo.simulator.Network")
            dbus.Interface(modem, "com.nimbo.simulator.Telephony").InsertSim(SIM, "")
            configuration = {"OFONO_PHONESIM_CONFIG": str(state / "phonesim.conf")}
            self._start("/usr/sbin/ofonod", "--nodetach", "--noplugin=udevng", **configuration)
            self._await(ONLINE)
        except BaseException:
            self.__exit__(None, None, None)
            raise
        return self

    def __exit__(self, *_):
        for process in reversed(self._processes):
            process.terminate()
            process.wait()
        self._bus.close()

    def ring(self, number):
        """Makes the modem say that somebody calls."""
        self._network.Ring(number, "", ignore_reply=True)
        self._bus.flush()

    def give_up(self):
        """Makes whoever calls hang up."""
        self._network.Remote("hangup", "")

    def _start(self, *command, **variables):
        environment = {**self._handset.environment(), **variables}
        quiet = {"stdin": subprocess.DEVNULL, "stderr": subprocess.DEVNULL}
        self._processes.append(subprocess.Popen(command, env=environment, **quiet))

    def _await(self, name):
        deadline = time.monotonic() + PATIENCE
        while not self._bus.name_has_owner(name):
            if time.monotonic() > deadline:
                raise Failure(f"{name} did not come to the bus")
            time.sleep(0.01)
