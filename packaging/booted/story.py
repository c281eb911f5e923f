# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""What the booted handset is held to, one check after the other."""

import contextlib
import json
import random
import time

from debian import files_of
from handset import NAME, UNIT
from machine import USER, Failed, wait_until

CHECKS = []
ALARMS = ["busctl", "--system", "call", "com.nimbo.timed", "/com/nimbo/timed", "com.nimbo.timed"]
REPLIES = f"home/{USER}/.local/share/system/privileged/Phone/quick-replies.json"
NUMBER = "+49301234567"


def check(text):
    """Adds a function to the story. It returns what is to be said of its outcome, or None."""

    def add(function):
        CHECKS.append((text, function))
        return function

    return add


def expect(condition, text):
    """Fails unless the condition holds."""
    if not condition:
        raise Failed(text)


def alarms(handset):
    """Returns the cookies of the alarms that the time daemon keeps for the user."""
    answer = handset.user("busctl", "-j", *ALARMS[1:], "query", "a{sv}", "0")
    return [cookie["data"] for cookie in json.loads(answer)["data"][0]]


def alarms_due(handset):
    """Returns whether an alarm waits for the user's answer."""
    due = ["com.nimbo.timed", "/com/nimbo/timed", "com.nimbo.parley.DueAlarms", "List"]
    return handset.user("busctl", "--system", "call", *due) != "au 0"


@contextlib.contextmanager
def telling_notifications(handset):
    """Runs a notification service that can tell what it shows, in the place of mako."""
    handset.user("systemctl", "--user", "stop", "mako.service")
    handset.user(
        *["systemd-run", "--user", "--collect", "--unit=telling-notifications"],
        *["parley-handset", "--service", "notification-service", "--state", "/tmp/notifications"],
    )
    name = ["busctl", "--user", "--no-pager", "status", "org.freedesktop.Notifications"]
    wait_until(lambda: handset.machine.succeeds(*name, user=USER), "the notification service")
    try:
        yield
    finally:
        handset.user("systemctl", "--user", "stop", "telling-notifications.service")
        handset.user("systemctl", "--user", "start", "mako.service")


def replies(handset):
    """Returns the text of the file of quick replies; empty if there is none."""
    file = handset.machine.root / REPLIES
    return file.read_text(errors="replace") if file.exists() else ""


def summon(handset, *command):
    """Runs a command that asks for the call UI, and returns how long its window took."""
    said = handset.user("time-to-window", *command).splitlines()
    numbers = [line for line in said if line.isdigit()]
    expect(len(numbers) == 1, f"{' '.join(command)}: {' '.join(said)}")
    handset.expect_full_screen()
    return f"{numbers[0]} ms to the window"


def dismiss(handset):
    """Ends the call, and with it the window."""
    handset.user(*handset.ui_call("toggleCall"), group="privileged")
    handset.expect_no_window()


@check("after the boot nothing has failed, and the call UI is pre-started without a window")
def booted(handset):
    machine = handset.machine
    handset.wait_until_ready()
    for manager, user in [(["systemctl"], None), (["systemctl", "--user"], USER)]:
        state = machine.run(*manager, "is-system-running", "--wait", user=user, check=False)
        failed = machine.run(*manager, "--failed", "--plain", "--no-legend", user=user)
        expect(state == "running" and failed == "", f"{' '.join(manager)}: {state} {failed}")
    command = machine.run("ps", "-o", "args=", "-p", str(handset.pid()))
    expect("-prestart" in command, f"it was started as {command}")
    handset.expect_no_window()
    system = machine.run("systemd-analyze", "time").splitlines()[0].strip()
    return f"{system}; the user's session to the call UI: {handset.ready_after()} ms"


@check("a number to dial brings it up in full screen, before another window, and it goes again")
def dialled(handset):
    with handset.screens("other") as other:
        wait_until(lambda: handset.window(other), "another window")
        handset.screenshot("other")
        took = summon(handset, *handset.ui_call("dial", "s", "5551234"))
        handset.expect_screen("5551234")
        handset.screenshot("dial")
        dismiss(handset)
        again = summon(handset, *handset.ui_call("dial", "s", "5551234"))
        dismiss(handset)
    return f"{took}, again {again}"


@check("a call UI that is killed is back by itself, pre-started")
def killed(handset):
    pid = handset.pid()
    handset.machine.run("kill", "-KILL", str(pid))
    handset.wait_until_ready(other_than=pid)
    handset.expect_no_window()


@check("a call UI that the bus has thrown off is back by itself")
def thrown_off(handset):
    pid = handset.pid()
    # The limit of a process without a unit, and a process that does not read for a while.
    handset.user("prlimit", f"--pid={pid}", "--nofile=128:128")
    handset.machine.run("kill", "-STOP", str(pid))
    try:
        handset.user("flood-with-descriptors", NAME, check=False)
    finally:
        handset.machine.run("kill", "-CONT", str(pid))
    handset.wait_until_ready(other_than=pid)
    handset.expect_no_window()


@check("a flood of descriptors does not throw it off as its unit starts it")
def floods(handset):
    pid = handset.pid()
    said = handset.user("flood-with-descriptors", NAME)
    expect("taken them all" in said, said)
    expect(handset.pid() == pid and handset.is_ready(), f"it is process {handset.pid()} now")


@check("a call starts a call UI that is stopped, and is not lost")
def activated(handset):
    handset.user("systemctl", "--user", "stop", UNIT)
    expect(handset.pid() == 0, "it has not stopped")
    took = summon(handset, *handset.ui_call("dial", "s", "5556789"))
    handset.expect_screen("5556789")
    handset.screenshot("activated")
    dismiss(handset)
    return took


@check("a link to a telephone number ends on the screen")
def linked(handset):
    took = summon(handset, "xdg-open", f"tel:{NUMBER}")
    handset.expect_screen(r"dial pad \+?49301234567")
    handset.screenshot("link")
    handset.hide()
    return took


@check("oFono answers the user, and nobody outside of the group")
def telephony(handset):
    modems = ["busctl", "--system", "call", "org.ofono", "/", "org.ofono.Manager", "GetModems"]
    before = len(handset.bus_rejections())
    expect(handset.user(*modems).startswith("a(oa{sv})"), handset.user(*modems, check=False))
    refused = handset.machine.run(*modems, user="daemon", check=False)
    expect("denied" in refused, f"a stranger gets: {refused}")
    power = [*modems[:4], "/", "org.ofono.Modem", "SetProperty", "sv", "Powered", "b", "true"]
    changed = handset.user(*power, check=False)
    expect("denied" in changed, f"the user may change a modem: {changed}")
    rejections = handset.bus_rejections()[before:]
    expect(len(rejections) == 2, "refused on the bus: " + "\n".join(rejections))


@check("a SIM and a rule bar calls")
def barred(handset):
    machine = handset.machine
    machine.run("systemctl", "stop", "ofono.service")
    # Without a bus name: that is the name of another unit.
    machine.run(
        *["systemd-run", "--collect", "--unit=simulated-telephony"],
        *["parley-handset", "--service", "telephony", "--state", "/run/telephony"],
    )
    has_owner = ["busctl", "--system", "--no-pager", "status", "org.ofono"]
    wait_until(lambda: machine.succeeds(*has_owner), "the simulated telephony")
    control = ["busctl", "--system", "call", "org.ofono", "/", "com.nimbo.simulator.Telephony"]
    try:
        machine.run(*control, "InsertSim", "ss", "262011111111111", "")
        machine.run(*control, "SetRule", "ssu", "dial", "262011111111111", "1")
        handset.restart()
        with handset.screens("filters") as filters:
            wait_until(
                lambda: handset.log("sims 1 dial false receive true", filters),
                "what the SIM may do",
            )
        handset.ui("show", "as", "0")
        handset.expect_screen("dial pad .*barred")
        handset.screenshot("barred")
        handset.hide()
    finally:
        machine.run("systemctl", "stop", "simulated-telephony.service", check=False)
        machine.run("systemctl", "start", "ofono.service")
    handset.restart()


@check("the call is toggled by the group and the home screen, and by nobody else")
def toggled(handset):
    toggle = handset.ui_call("toggleCall")
    refused = handset.user(*toggle, check=False)
    expect("denied" in refused, f"a process of the user gets: {refused}")
    expect(handset.log("toggleCall from pid"), "the log does not tell of it")
    refused = handset.machine.run(*toggle, user="daemon", check=False)
    expect(refused != "" and "b true" not in refused, f"another user gets: {refused}")
    handset.ui("dial", "s", "5551234")
    handset.expect_full_screen()
    dismiss(handset)
    handset.ui("dial", "s", "5551234")
    handset.expect_full_screen()
    handset.user("as-canopy")
    handset.expect_no_window()


@check("a reminder and a quick reply are there after a reboot")
def remembered(handset):
    due = int(time.time()) + 40
    with telling_notifications(handset):
        handset.open_url(f"remind:{NUMBER}?seconds=40")
        cookies = wait_until(lambda: alarms(handset), "an alarm")
        handset.open_url("replies:add?text=Back%20soon")
        handset.open_url("replies:save")
        wait_until(lambda: "Back soon" in replies(handset), "the reply in its file")
        # The notification shows that there is a reminder, as long as its service knows of it.
        handset.restart()
        handset.open_url(f"tel:{NUMBER}")
        handset.expect_screen(r"dial pad .*301234567 \(reminder\)")
        handset.screenshot("reminder")
    handset.machine.reboot()
    handset.wait_until_ready()
    expect(alarms(handset) == cookies, f"the alarms are {alarms(handset)}, not {cookies}")
    expect("Back soon" in replies(handset), "the reply is gone")
    handset.open_url("replies:")
    handset.expect_screen("replies")
    handset.screenshot("replies")
    handset.hide()
    wait_until(lambda: NUMBER in handset.shown_by_mako(), "the alarm", 60)
    late = time.time() - due
    handset.screenshot("due")
    return f"the alarm {late:.1f} s after its time"


@check("another notification service takes over the alarm")
def replaced(handset):
    handset.user("systemctl", "--user", "stop", "mako.service")
    handset.user("systemd-run", "--user", "--collect", "--unit=other-notifications", "dunst")
    wait_until(lambda: handset.user("dunstctl", "count", "displayed", check=False) == "1", "dunst")
    handset.screenshot("dunst")
    handset.user("systemctl", "--user", "stop", "other-notifications.service")
    handset.user("systemctl", "--user", "start", "mako.service")
    wait_until(lambda: NUMBER in handset.shown_by_mako(), "the alarm is there again")
    took = summon(handset, "makoctl", "invoke", "call")
    handset.expect_screen(NUMBER[1:])
    handset.screenshot("called")
    dismiss(handset)
    wait_until(lambda: not alarms_due(handset), "no alarm is due")
    return took


@check("when the machine is killed while replies are saved, the call UI starts with some")
def killed_while_saving(handset):
    chance = random.Random(14)
    lengths = []
    for _ in range(3):
        before = replies(handset)
        handset.machine.start("save-replies", user=USER)
        wait_until(lambda before=before: replies(handset) != before, "a reply is saved")
        time.sleep(chance.random())  # The time of the end.
        handset.machine.kill()
        handset.wait_until_ready()
        lengths.append(len(replies(handset)))
        with handset.screens("replies") as unit:
            wait_until(lambda unit=unit: handset.log("replies ", unit), "a list of replies")
            count = int(handset.log("replies ", unit)[0].split()[-1])
            expect(count >= 3, f"there are {count} replies")
    return f"files of {', '.join(map(str, lengths))} characters"


@check("the packages are upgraded while it runs")
def upgraded(handset):
    pid = handset.pid()
    packages = [f"/var/lib/handset/{package.name}" for package in handset.newer]
    handset.machine.run(
        *["apt-get", "install", "-y", "--no-install-recommends", *packages], timeout=300
    )
    version = handset.machine.run("dpkg-query", "-W", "-f", "${Version}", "parley-ui")
    expect(version.endswith("+next"), f"the version is {version}")
    handset.wait_until_ready()
    took = summon(handset, *handset.ui_call("dial", "s", "5551234"))
    dismiss(handset)
    return f"{'the same' if handset.pid() == pid else 'a new'} process, {took}"


@check("the packages are purged without a trace, and the user's files are untouched")
def purged(handset):
    machine = handset.machine
    home = machine.run("sh", "-c", f"cd /home/{USER} && find .local -type f | xargs -r sha256sum")
    names = ["parley-handset", "parley-screens", "parley-time-daemon", "parley-ui"]
    machine.run("apt-get", "remove", "-y", *names, timeout=300)
    machine.run("dpkg", "--purge", *names, timeout=300)
    after = machine.run("sh", "-c", f"cd /home/{USER} && find .local -type f | xargs -r sha256sum")
    expect(after == home, "the user's files have changed")
    added = files_of(machine.root) - handset.files_before
    left = [
        name
        for name in added
        if not name.startswith(("home/", "var/lib/dpkg/", "var/lib/systemd/"))
    ]
    expect(not left, "left behind: " + " ".join(sorted(left)))
