# SPDX-FileCopyrightText: 2026 The Parley developers
# SPDX-License-Identifier: BSD-3-Clause

"""Calls on the real oFono, from the modem to the screen, and who may make them."""

import time

from checks import NUMBER, check, dismiss, expect, summon
from machine import wait_until
from starting import IMSI


def dismiss_by_other_side(handset):
    """The other side ends the call. A call that was missed is still shown."""
    handset.network("Remote", "ss", "hangup", "")
    handset.expect_screen("missed")
    handset.hide()


@check("a link to a telephone number waits for the button, which calls it")
def linked(handset):
    took = summon(handset, "xdg-open", f"tel:{NUMBER}")
    handset.expect_screen(r"dial pad \+?49301234567")
    handset.screenshot("link")
    handset.press("-k", "Return")
    handset.expect_of_modem(rf"Dialled.*{NUMBER[1:]}")
    handset.expect_screen(NUMBER[1:])
    handset.user(*handset.ui_call("toggleCall"), group="privileged")
    handset.expect_screen("dial pad")
    handset.hide()
    return took


@check("a call rings in full screen, is answered, another waits and is taken, both end")
def rung(handset):
    with handset.screens("other") as other:
        wait_until(lambda: handset.window(other), "another window")
        took = summon(handset, *handset.ring("5550145"))
        handset.expect_screen("incoming 5550145")
        handset.screenshot("incoming")
        handset.user("as-canopy")
        handset.expect_screen("ongoing 5550145")
        handset.network("Ring", "ss", "5550199", "")
        handset.expect_screen("waiting 5550199")
        handset.screenshot("waiting")
        handset.user("as-canopy")
        handset.expect_screen("ongoing 5550199; held 5550145")
        handset.screenshot("held")
        handset.network("Remote", "ss", "hangup", "5550199")
        handset.expect_screen("held 5550145")
        handset.network("Remote", "ss", "hangup", "5550145")
        handset.expect_no_window()
    return took


@check("tones arrive at the other side")
def toned(handset):
    summon(handset, *handset.ui_call("dial", "s", "5550100"))
    handset.expect_of_modem(r"CallChanged \('/ril_0', '5550100', 'alerting'\)")
    handset.network("Remote", "ss", "answer", "")
    handset.expect_screen("ongoing 5550100")
    handset.press(*["-k", "Tab"] * 4, "-k", "space")
    handset.screenshot("keypad")
    handset.press("12")
    wait_until(
        lambda: "".join(handset.modem_told(r"TonesSent \('/ril_0', '(.*)'\)")) == "12", "the tones"
    )
    handset.network("Remote", "ss", "hangup", "")
    handset.expect_no_window()


@check("a quick reply ends the call, and goes out as a message")
def replied(handset):
    summon(handset, *handset.ring("5550146"))
    handset.open_url("replies:send?index=0")
    handset.expect_no_window()
    handset.expect_of_modem(r"CallEnded \('/ril_0', '5550146', 'local'\)")
    handset.expect_of_modem(r"MessageSent \('/ril_0', '5550146', 'Please call later'\)")


@check("a call that was missed stays on the screen")
def missed(handset):
    summon(handset, *handset.ring("5550147"))
    handset.network("Remote", "ss", "hangup", "")
    handset.expect_screen("missed 5550147")
    handset.expect_full_screen()
    handset.screenshot("missed")
    handset.hide()


@check("a call UI that is killed in the middle of a call comes back with it")
def killed_in_a_call(handset):
    summon(handset, *handset.ring("5550148"))
    handset.user("as-canopy")
    handset.expect_screen("ongoing 5550148")
    pid = handset.pid()
    start = time.monotonic()
    handset.machine.run("kill", "-KILL", str(pid))
    handset.wait_until_ready(other_than=pid)
    handset.expect_screen("ongoing 5550148")
    handset.expect_full_screen()
    took = time.monotonic() - start
    handset.network("Remote", "ss", "hangup", "")
    handset.expect_no_window()
    return f"{took:.1f} s"


@check("the screens know that oFono is killed, and that it is back")
def without_ofono(handset):
    handset.restart()
    handset.expect_log("sims: 1")
    handset.machine.run("systemctl", "kill", "--signal=KILL", "ofono.service")
    handset.expect_log("telephony: no service")
    handset.ui("show", "as", "0")
    handset.expect_full_screen()
    handset.screenshot("without-ofono")
    handset.hide()
    handset.start_ofono()
    wait_until(lambda: len(handset.log("telephony: ready")) == 2, "the telephony is ready again")


@check("a SIM that moves to the other modem is followed")
def swapped(handset):
    handset.restart()
    handset.expect_log("sims: 1")
    handset.network("RemoveSim", "s", "ril_0")
    handset.expect_log("sims: 0")
    handset.network("InsertSim", "ss", IMSI, "ril_1")
    handset.expect_of_modem(r"Ready.*ril_1")
    wait_until(lambda: len(handset.log("sims: 1")) == 2, "the SIM in the other modem")
    summon(handset, *handset.ring("5550149"))
    handset.expect_of_modem(r"CallChanged \('/ril_1', '5550149', 'incoming'\)")
    dismiss_by_other_side(handset)


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
        handset.start_ofono()
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
