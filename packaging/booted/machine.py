# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""A booted test machine, and how its processes are spoken to."""

import os
import re
import signal
import subprocess
import time
from pathlib import Path

USER = "phone"
UID = 1000
# With --keep-unit, systemd-nspawn leaves the next boot after a reboot to its caller.
REBOOTED = 133


class Failed(Exception):
    """A check does not hold. The text says why."""


def wait_until(condition, what, seconds=30):
    """Waits until the condition holds, and returns its value. Fails otherwise."""
    deadline = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise Failed(f"{what}: not within {seconds} s")
        time.sleep(0.05)


class Machine:
    """A Debian system in a folder that is booted as a container."""

    def __init__(self, root, console):
        self.root = root
        self._console = console
        self._container = None
        self._leader = None

    def boot(self):
        """Boots, and waits until all units of the system have started."""
        with open(self._console, "ab") as console:
            self._container = subprocess.Popen(
                ["systemd-nspawn", "--quiet", "--register=no", "--keep-unit", "--private-network"]
                + ["--console=pipe", "--directory", self.root, "--boot"],
                stdin=subprocess.DEVNULL,
                stdout=console,
                stderr=console,
            )
        self._leader = None
        self._leader = wait_until(self._find_leader, "the container starts")
        wait_until(lambda: self.succeeds("systemctl", "is-active", "dbus.service"), "the boot")
        self.run("systemctl", "is-system-running", "--wait", check=False)

    def reboot(self):
        """Reboots in order."""
        self.run("systemctl", "reboot", check=False)
        if self._container.wait(60) != REBOOTED:
            raise Failed("the machine has not rebooted")
        self.boot()

    def kill(self):
        """Ends all processes at once, and boots."""
        self.end()
        self.boot()

    def end(self):
        """Ends all processes at once."""
        if self._container is not None and self._container.poll() is None:
            if self._leader:
                os.kill(self._leader, signal.SIGKILL)
            else:
                self._container.terminate()
            self._container.wait(60)

    def run(self, *command, user=None, group=None, check=True, timeout=60):
        """Runs a command as root or as another user, and returns its output with its errors."""
        text = " ".join(map(str, command))
        try:
            done = subprocess.run(
                self._inside(command, user, group),
                stdin=subprocess.DEVNULL,
                stdout=subprocess.PIPE,
                stderr=subprocess.STDOUT,
                encoding="utf-8",
                errors="replace",
                check=False,
                timeout=timeout,
            )
        except subprocess.TimeoutExpired as late:
            raise Failed(f"{text}: not within {timeout} s") from late
        output = done.stdout.strip()
        if check and done.returncode != 0:
            raise Failed(f"{text}: {output}")
        return output

    def succeeds(self, *command, user=None):
        """Runs a command and returns whether it ends with success."""
        done = subprocess.run(
            self._inside(command, user),
            stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
            check=False,
        )
        return done.returncode == 0

    def start(self, *command, user=None):
        """Starts a command and returns its process."""
        return subprocess.Popen(
            self._inside(command, user),
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            text=True,
        )

    def _find_leader(self):
        """Returns the first process of the container; None if it has not started."""
        pid = self._container.pid
        for child in Path(f"/proc/{pid}/task/{pid}/children").read_text().split():
            try:
                status = Path(f"/proc/{child}/status").read_text()
            except FileNotFoundError:
                continue
            if re.search(r"^NSpid:.*\t1$", status, re.MULTILINE):
                return int(child)
        return None

    def shell(self):
        """Runs a shell for whoever has called this program."""
        subprocess.run(self._inside(["bash", "-l"]), check=False)

    def _inside(self, command, user=None, group=None):
        inside = ["nsenter", "--target", self._leader, "--all", "env", "--chdir=/", "-i"]
        inside += ["PATH=/usr/local/bin:/usr/sbin:/usr/bin", "LC_ALL=C.UTF-8"]
        if user is not None:
            runtime = f"/run/user/{UID}"
            inside += [
                f"XDG_RUNTIME_DIR={runtime}",
                f"DBUS_SESSION_BUS_ADDRESS=unix:path={runtime}/bus",
            ]
            inside += [
                "WAYLAND_DISPLAY=wayland-1",
                f"SWAYSOCK={runtime}/sway.sock",
                f"HOME=/home/{user}",
            ]
            inside += ["setpriv", "--reuid", user, "--regid", group or user, "--init-groups"]
        return [str(part) for part in [*inside, *command]]
