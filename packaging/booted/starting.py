# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""The call UI starts, and starts again."""

import time

from checks import check, dismiss, expect, summon
from handset import NAME, UNIT
from machine import USER, wait_until

IMSI = "262011111111111"


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


@check("a SIM is in the network, and the screens know it")
def provisioned(handset):
    handset.network("InsertSim", "ss", IMSI, "")
    start = time.monotonic()
    handset.expect_of_modem(r"Ready.*ril_0")
    handset.expect_log("telephony: ready")
    handset.expect_log("sims: 1")
    return f"{time.monotonic() - start:.1f} s after it is put in"


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
