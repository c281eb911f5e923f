# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""What is kept, and for how long."""

import contextlib
import json
import random
import time

from checks import NUMBER, check, dismiss, expect, summon
from debian import files_of
from machine import USER, wait_until

ALARMS = ["busctl", "--system", "call", "com.nimbo.timed", "/com/nimbo/timed", "com.nimbo.timed"]
REPLIES = f"home/{USER}/.local/share/system/privileged/Phone/quick-replies.json"


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
        if not name.startswith(
            ("home/", "var/lib/dpkg/", "var/lib/modems/", "var/lib/ofono/", "var/lib/systemd/")
        )
    ]
    expect(not left, "left behind: " + " ".join(sorted(left)))
