// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0
import "."
import "calls.js" as Kinds
import "text.js" as Words

/// The calls of the phone, as the screens show them.
QtObject {
    id: line

    property bool watched: false
    property RemindersBase reminders

    /// What the screens phone with; null while it is not loaded.
    property var telephone: null
    /// "starting", "ready", "hung", "no service", "no bus", or "missing" without the module.
    readonly property string status: telephone !== null ? telephone.status
                                                        : missing ? "missing" : "starting"
    /// Why nobody can phone, for the user; empty if it is possible.
    readonly property string trouble: {
        switch (status) {
        case "hung": return qsTr("The telephony does not answer");
        case "no service":
        case "no bus": return qsTr("The telephony does not run");
        case "missing": return qsTr("This phone has no telephony");
        }
        return "";
    }

    // This is only replaced as a whole, so that no binding ever sees a mixture of two states.
    property var view: ({ringing: null, main: null, members: [], others: [], reminded: false})
    /// The call that rings; null if there is none.
    readonly property var ringing: view.ringing
    /// The call on the call screen. The last one stays here when it has ended.
    property var main: null
    readonly property bool active: view.main !== null
    readonly property bool ongoing: active && main.callState === "active"
    readonly property bool held: active && main.callState === "held"
    /// The other calls of the conference that the call on the screen is part of.
    readonly property var members: view.members
    /// The calls that are neither on the screen, nor in its conference, nor ringing.
    readonly property var others: view.others
    readonly property bool isConference: members.length > 0
    /// Whether the stack can hold the calls for another one: it holds none yet, or none is active.
    readonly property bool canHold: !ongoing
        || !others.some(function(other) { return other.callState === "held"; })
    readonly property string number: main !== null ? main.number : ""
    readonly property string name: isConference ? qsTr("Conference") : Words.caller(main)
    /// The modem of the call, where it matters: the user or whoever asked for the call has chosen it.
    readonly property string modem: main !== null ? main.chosenModem : ""
    readonly property string state: {
        if (main === null)
            return "";
        switch (main.callState) {
        case "active": {
            var time = Words.duration(elapsed);
            return main.remoteHeld ? time + "  ·  " + qsTr("On hold by the other side") : time;
        }
        case "held": return qsTr("On hold");
        case "alerting": return qsTr("Ringing…");
        }
        return qsTr("Calling…");
    }
    property string summary

    /// The call that the user has answered, until the stack says that it is active.
    property int taken: 0
    property bool missing: false
    /// For how long the call on the screen has been active, in milliseconds.
    property double elapsed: 0

    // The call that was asked for, until the stack knows it.
    property var pending: null
    // What has become of the last one.
    property int adopted: 0
    property var chosenModems: ({})
    property var refused: ({})
    property var ended: []

    /// Another call rings.
    signal rang()
    /// No call rings any more. The call screen has the one that did, or it has ended.
    signal quieted()
    /// Another call is on the call screen.
    signal renewed()
    /// A call has ended. "isRefused" is true if the user has not taken it.
    signal over(var call, bool isRefused)
    /// Nothing came of what the user wanted.
    signal failed(string action, string number, string why, bool isWithoutNetwork)
    signal sent(string number, string text)
    signal notSent(string number, string why)

    /// Loads what the screens phone with, unless it is there.
    function load() {
        if (telephone !== null || missing)
            return;
        var component = Qt.createComponent("Telephone.qml");
        if (component.status === Component.Ready) {
            telephone = component.createObject(line);
        } else {
            Log.tell("telephony: missing");
            missing = true;
        }
    }

    function isEmergency(text) {
        return Words.isEmergency(text)
            || telephone !== null && telephone.calls.emergencyNumbers.indexOf(text) >= 0;
    }

    /// Whether the user has to choose a modem.
    function hasChoice() {
        return telephone !== null && telephone.calls.modems.length > 1;
    }

    /// Calls a number. The modem may be empty.
    function dial(text, modem) {
        load();
        pending = {callId: 0, number: text, name: "", callState: "dialing", modem: modem,
                   chosenModem: modem, remoteHeld: false, conference: false};
        refresh();
        if (telephone !== null)
            telephone.calls.dial(text, modem);
        else
            Qt.callLater(failToDial);
    }

    function failToDial() {
        var wanted = pending;
        pending = null;
        refresh();
        if (wanted !== null)
            failed("dial", wanted.number, trouble, true);
    }

    /// Asks the network, as *100# does.
    function ask(request, modem) {
        load();
        if (telephone !== null)
            telephone.calls.dial(request, modem);
        else
            failed("dial", request, trouble, true);
    }

    /// Takes the call that rings. The call on the screen is held, or ends.
    function answer(ending) {
        if (ringing === null || taken === ringing.callId)
            return;
        taken = ringing.callId;
        if (ending)
            telephone.calls.endAndAnswer(taken);
        else
            telephone.calls.answer(taken);
    }

    /// Does not take a call. It counts as gone at once.
    function refuse(call) {
        refused[call.callId] = true;
        telephone.calls.hangUp(call.callId);
        refresh();
    }

    /// Ends the call on the screen, with its conference.
    function hangUp() {
        if (!active)
            return;
        if (pending !== null) {
            pending.isUnwanted = true; // It ends when the stack knows it.
            return;
        }
        [main].concat(members).forEach(function(call) { telephone.calls.hangUp(call.callId); });
    }

    function swap() {
        telephone.calls.swap(main.modem);
    }

    function join() {
        telephone.calls.join(main.modem);
    }

    function split(call) {
        telephone.calls.split(call.callId);
    }

    function sendTones(tones) {
        if (ongoing)
            telephone.calls.sendTones(tones, main.modem);
    }

    function send(to, text, modem) {
        telephone.messages.send(to, text, modem);
    }

    function refresh() {
        var all = telephone !== null ? telephone.list() : [];
        all.forEach(function(call) { know(call, true); });
        // A call may have come and gone since the last time.
        ended.forEach(function(call) { know(call, false); });
        var next = Kinds.sorted(all, refused, pending);
        if (!all.some(function(call) { return call.callId === taken && Kinds.rings(call); }))
            taken = 0;
        // Set the reminder first. It only updates a call that has its number.
        reminder.phoneNumber = next.main !== null ? next.main.number : "";
        next.reminded = reminder.phoneNumber !== "" && reminder.exists;
        var before = view;
        if (next.main !== null) {
            main = next.main;
            measure();
        }
        view = next;
        if (active)
            summary = Kinds.summary(view);
        var finished = ended;
        ended = [];
        var isTheSame = Kinds.idOf(next.main) === Kinds.idOf(before.main)
            || Kinds.idOf(before.main) === 0 && Kinds.idOf(next.main) === adopted;
        if (active && !isTheSame)
            renewed();
        if (Kinds.idOf(next.ringing) !== Kinds.idOf(before.ringing)) {
            if (ringing !== null)
                rang();
            else
                quieted();
        }
        finished.forEach(function(call) {
            over(call, refused[call.callId] === true);
            delete refused[call.callId];
            delete chosenModems[call.callId];
        });
    }

    function measure() {
        elapsed = telephone !== null ? telephone.calls.duration(main.callId) : 0;
    }

    // Prepares what the stack says of a call for the screens.
    function know(call, isThere) {
        if (chosenModems[call.callId] === undefined) {
            var isWanted = pending !== null && call.direction === "outgoing";
            chosenModems[call.callId] = isWanted ? pending.chosenModem : "";
            if (isWanted) {
                adopted = call.callId;
                if (pending.isUnwanted && isThere)
                    telephone.calls.hangUp(call.callId);
                pending = null;
            }
        }
        call.chosenModem = chosenModems[call.callId];
    }

    onStatusChanged: {
        if (telephone !== null)
            Log.tell("telephony: " + status);
    }

    readonly property Connections events: Connections {
        target: line.telephone

        function onChanged() {
            Qt.callLater(line.refresh);
        }

        function onEnded(call) {
            line.ended.push(call);
            Qt.callLater(line.refresh);
        }

        function onFailed(action, call, number, why, isWithoutNetwork) {
            if (line.taken === call)
                line.taken = 0;
            delete line.refused[call];
            if (action === "dial")
                line.pending = null;
            line.refresh();
            line.failed(action, number, why, isWithoutNetwork);
        }

        function onSent(message) {
            line.sent(message.number, message.text);
        }

        function onNotSent(message, why) {
            line.notSent(message.number, why);
        }
    }

    readonly property Binding ring: Binding {
        property: "rings"
        target: line.telephone
        value: line.ringing !== null && line.ringing.callState === "incoming" && line.taken === 0
               && !line.active
    }

    readonly property Binding speech: Binding {
        property: "speaks"
        target: line.telephone
        value: line.active
    }

    readonly property Reminder reminder: Reminder {
        _reminders: line.reminders
        onExistsChanged: {
            if (line.active && line.number === phoneNumber && line.view.reminded !== exists)
                line.refresh();
        }
    }

    readonly property Timer ticking: Timer {
        interval: 500
        repeat: true
        running: line.watched && line.ongoing
        triggeredOnStart: true
        onTriggered: line.measure()
    }
}
