# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""The call UI of the booted test machine, as its user and other processes see it."""

import contextlib
import json
import re

from machine import UID, USER, Failed, wait_until

NAME = "com.nimbo.parley.ui"
UNIT = "parley-ui.service"
MODEMS = "com.nimbo.simulator.modem"


class Handset:
    """Knows the unit, the window and the log of the call UI."""

    def __init__(self, machine, output, before):
        self.machine = machine
        self.output = output
        self.files_before = before
        self.newer = []

    def user(self, *command, **options):
        """Runs a command as the handset's user."""
        return self.machine.run(*command, user=USER, **options)

    def ui(self, method, *arguments, check=True):
        """Calls a method of the call UI and returns what busctl prints."""
        return self.user(*self.ui_call(method, *arguments), check=check)

    def ui_call(self, method, *arguments):
        """Returns the command for that."""
        return ["busctl", "--user", "call", NAME, "/", NAME, method, *arguments]

    def network(self, method, signature, *arguments):
        """Acts as the network of the modems, or puts SIMs into them."""
        interface = "Telephony" if method.endswith("Sim") else "Network"
        self.user(*self.network_call(interface, method, signature, *arguments))

    def network_call(self, interface, method, signature, *arguments):
        """Returns the command for that."""
        control = [MODEMS, "/", f"com.nimbo.simulator.{interface}"]
        return ["busctl", "--system", "call", *control, method, signature, *arguments]

    def ring(self, number):
        """Returns the command that lets a call come in."""
        return self.network_call("Network", "Ring", "ss", number, "")

    def modem_told(self, pattern):
        """Returns what the modems have told since the boot, as far as it matches."""
        journal = ["journalctl", "--no-pager", "-b", "-o", "cat", "-u", "handset-modem-log.service"]
        return re.findall(pattern, self.machine.run(*journal))

    def expect_of_modem(self, pattern):
        """Checks that a modem tells of something."""
        wait_until(lambda: self.modem_told(pattern), f"a modem tells {pattern}", 15)

    def start_ofono(self):
        """Starts oFono anew, and waits until it knows the SIM."""
        ready = r"Network\.Ready"
        before = len(self.modem_told(ready))
        self.machine.run("systemctl", "reset-failed", "ofono.service")
        self.machine.run("systemctl", "start", "ofono.service")
        wait_until(lambda: len(self.modem_told(ready)) > before, "oFono knows the SIM")

    def expect_log(self, part):
        """Checks that the current process of the call UI logs something."""
        wait_until(lambda: self.log(part), part, 15)

    def press(self, *keys):
        """Types on a keyboard; "-k" is followed by the name of a key."""
        self.user("wtype", *keys)

    def open_url(self, url):
        """Has the screens open a URL."""
        self.ui("openUrl", "as", "1", url)

    def pid(self, unit=UNIT):
        """Returns the main process of a unit of the user; 0 if there is none."""
        pid = self.user("systemctl", "--user", "show", "--value", "-p", "MainPID", unit)
        return int(pid or "0")

    def is_ready(self):
        """Returns whether the call UI has its name on the bus."""
        return self.machine.succeeds(
            "busctl", "--user", "--no-pager", "status", NAME, user=USER
        ) and (self.user("systemctl", "--user", "is-active", UNIT, check=False) == "active")

    def ready_after(self):
        """Returns the milliseconds from the start of the user's session to the call UI's name."""
        show = ["systemctl", "show", "--value", "-p"]
        begun = self.machine.run(*show, "InactiveExitTimestampMonotonic", f"user@{UID}.service")
        ready = self.user("systemctl", "--user", *show[1:], "ActiveEnterTimestampMonotonic", UNIT)
        return (int(ready) - int(begun)) // 1000

    def restart(self):
        """Starts the call UI anew, also if it was started too often in a short time."""
        self.user("systemctl", "--user", "reset-failed", UNIT)
        self.user("systemctl", "--user", "restart", UNIT)
        self.wait_until_ready()

    def wait_until_ready(self, other_than=0):
        """Waits until the call UI has its name, in another process than that one."""
        wait_until(
            lambda: self.pid() not in (0, other_than) and self.is_ready(), "the call UI is ready"
        )
        wait_until(lambda: self.log("screen: "), "its screens are loaded")

    def window(self, unit=UNIT):
        """Returns the window of a unit as the compositor sees it; None if it is not shown."""
        pid = self.pid(unit)

        def find(node):
            if node.get("pid") == pid and "app_id" in node:
                return node
            inner = node.get("nodes", []) + node.get("floating_nodes", [])
            return next(filter(None, map(find, inner)), None)

        return find(json.loads(self.swaymsg("-t", "get_tree")))

    def swaymsg(self, *arguments):
        """Speaks to the compositor."""
        return self.user("swaymsg", "--raw", *arguments)

    def expect_full_screen(self):
        """Checks that the call UI fills the screen, before everything else."""

        def fills_the_screen():
            window = self.window()
            return window and window["fullscreen_mode"] == 1 and window["focused"]

        wait_until(fills_the_screen, f"full screen ({self.described_window()})", 10)

    def described_window(self):
        """Returns the state of the window for a message."""
        window = self.window()
        if window is None:
            return "there is no window"
        return f"full screen mode {window['fullscreen_mode']}, focused: {window['focused']}"

    def expect_no_window(self):
        """Checks that the call UI has no window."""
        wait_until(lambda: self.window() is None, "no window", 10)

    def hide(self):
        """Closes its window as the compositor does for the user."""
        self.swaymsg(f"[con_id={self.window()['id']}]", "kill")
        self.expect_no_window()

    def shown_by_mako(self):
        """Returns what the notification service of the session shows, as text."""
        return self.user("makoctl", "list")

    def bus_rejections(self):
        """Returns what the system bus has refused to deliver since the boot."""
        lines = self.machine.run("journalctl", "--no-pager", "-b", "-o", "cat", "_COMM=dbus-daemon")
        return [line for line in lines.splitlines() if "Rejected" in line]

    def log(self, part, unit=UNIT):
        """Returns the lines of the unit's current process that contain a text."""
        messages = ["journalctl", "--no-pager", "-b", "-o", "cat", f"_PID={self.pid(unit)}"]
        lines = self.machine.run(*messages).splitlines()
        return [line for line in lines if part in line]

    def expect_screen(self, pattern):
        """Checks what is on the screen, of which the screens tell the log."""

        def shows():
            screens = self.log("screen: ")
            return screens and re.search(pattern, screens[-1])

        try:
            wait_until(shows, pattern, 15)
        except Failed as failure:
            raise Failed(f"{failure}; the last was {self.log('screen: ')[-1:]}") from failure

    def screenshot(self, name):
        """Keeps a picture of the screen."""
        picture = self.machine.root / f"home/{USER}/screen.png"
        self.user("grim", f"/home/{USER}/screen.png")
        (self.output / f"{name}.png").write_bytes(picture.read_bytes())
        picture.unlink()

    def recover(self, check):
        """Keeps a picture after a check that failed. For the next one, it ends all calls and starts
        the call UI anew."""
        with contextlib.suppress(Failed):
            self.screenshot(f"failed-{check}")
            self.network("SetNetwork", "ss", "lost", "")
            self.network("SetNetwork", "ss", "back", "")
            self.restart()

    def keep_journals(self):
        """Keeps what the machine has logged, as far as it has booted."""
        with contextlib.suppress(Failed):
            journal = self.machine.run("journalctl", "--no-pager", "-o", "short-precise")
            (self.output / "journal.log").write_text(journal)

    @contextlib.contextmanager
    def screens(self, name):
        """Runs screens of the test machine in a process of their own. Yields its unit."""
        unit = f"{name}.service"
        self.user(
            *["systemd-run", "--user", "--collect", f"--unit={unit}"],
            *["parley-ui", "-devel", "-qml", f"/usr/local/share/handset/{name}.qml"],
        )
        try:
            yield unit
        finally:
            self.user("systemctl", "--user", "stop", unit, check=False)
