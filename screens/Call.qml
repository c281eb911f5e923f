// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0
import "text.js" as Words

QtObject {
    id: call

    property bool watched: false
    property RemindersBase reminders
    // This is only replaced as a whole, so that no binding ever sees a mixture of two calls.
    property var current: null
    readonly property bool active: current !== null
    readonly property bool ongoing: active && current.since > 0
    readonly property string number: active ? current.number : ""
    /// The number in the form in which it is shown.
    readonly property string name: number !== "" ? Words.display(number) : qsTr("Private number")
    readonly property string modem: active ? current.modem : ""
    /// The number of the call that this one replaced.
    readonly property string replaced: active ? current.replaced : ""
    readonly property string state: ongoing ? Words.duration(now - current.since) : qsTr("Calling…")
    readonly property string summary: {
        if (current === null)
            return "no call";
        var state = current.since > 0 ? "ongoing" : "calling";
        var other = current.number === "" ? "" : " " + current.number;
        var mark = current.reminded ? " (reminder)" : "";
        return state + other + mark + (current.modem === "" ? "" : " via " + current.modem);
    }

    property double now: 0

    /// The call was replaced or has ended.
    signal renewed()

    /// Calls a number, and ends the current call.
    function start(number, modem) {
        begin(number, modem, 0);
        if (connecting.running)
            connecting.restart();
    }

    /// Takes a call from a number, and ends the current call.
    function answer(number) {
        now = Date.now();
        begin(number, "", now);
    }

    // Set the reminder first. It only updates a call that has its number.
    function begin(number, modem, since) {
        var before = active && call.number !== number ? call.number : "";
        if (before !== "")
            console.info("screen: call " + before + " is replaced by " + (number || "another"));
        reminder.phoneNumber = number;
        current = {number: number, modem: modem, since: since, replaced: before,
                   reminded: number !== "" && reminder.exists};
        renewed();
    }

    function end() {
        current = null;
        reminder.phoneNumber = "";
        renewed();
    }

    readonly property Reminder reminder: Reminder {
        _reminders: call.reminders
        onExistsChanged: {
            if (call.active && call.number === phoneNumber && call.current.reminded !== exists)
                call.current = Object.assign({}, call.current, {reminded: exists});
        }
    }

    readonly property Timer connecting: Timer {
        interval: 2000
        running: call.watched && call.active && !call.ongoing
        onTriggered: {
            call.now = Date.now();
            call.current = Object.assign({}, call.current, {since: call.now});
        }
    }

    readonly property Timer ticking: Timer {
        interval: 500
        repeat: true
        running: call.watched && call.ongoing
        triggeredOnStart: true
        onTriggered: call.now = Date.now()
    }
}
