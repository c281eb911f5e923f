// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0
import "."
import "text.js" as Words
import "window.js" as Window

/// What the phone does with requests, calls and messages, and which screen it shows.
Item {
    id: phone

    readonly property alias line: line
    readonly property alias reminders: base
    readonly property alias replies: texts
    readonly property alias sims: cards
    readonly property alias stage: stage
    readonly property DialPad dialPad: stage.dialPad.item
    /// The screen that is shown, perhaps below a box.
    property OnDemand current: stage.dialPad
    /// The screens have come to the front for a call, and go again when it has ended.
    property bool summoned: false
    readonly property Item topmost: stage.boxes.filter(isOpen)[0] || current.item
    /// The call that rings here, as a barred one does not; null if there is none.
    readonly property var incoming: {
        var screen = stage.incomingScreen.item;
        return screen !== null && screen.ringing ? screen.call : null;
    }
    /// The last call that was missed, which the user has not seen yet; null if there is none.
    property var missed: null

    /// A screen wants these URLs to be opened.
    signal urlsRequested(var urls)

    function isOpen(box) {
        return box !== null && box.open;
    }

    function close(box) {
        if (isOpen(box.item))
            box.item.open = false;
    }

    function closeBoxes() {
        stage.boxes.filter(isOpen).forEach(function(box) { box.open = false; });
    }

    function turnTo(screen) {
        screen.made();
        current = screen;
    }

    // Show the new screen before hiding the old one, so that nothing else is shown in between.
    function present(screen) {
        turnTo(screen);
        if (screen !== stage.dialPad)
            dialPad.note = null;
        closeBoxes();
        bringToFront();
    }

    function presentPad(number) {
        dialPad.fill(number);
        present(stage.dialPad);
    }

    /// Returns a note of what has happened, which is logged in English. A "%1" in the text stands
    /// for what the note is about.
    function note(text, subject, loggedSubject) {
        if (subject === undefined)
            return {shown: qsTr(text), logged: text};
        return {shown: qsTr(text).arg(Words.isolated(subject)), logged: text.arg(loggedSubject)};
    }

    function presentNote(note) {
        dialPad.notify(note);
        present(stage.dialPad);
    }

    function presentContact(number) {
        stage.contactCard.made().show(number, null);
        learn(number);
        present(stage.contactCard);
    }

    // Show the sheet first, so that the contact card is not shown without it.
    function presentSheet(number) {
        stage.sheet.made().show(number);
        stage.contactCard.made().show(number, null);
        turnTo(stage.contactCard);
        dialPad.note = null;
        close(stage.dialog);
        bringToFront();
    }

    function bringToFront() {
        if (!__window.visible)
            summoned = line.active || incoming !== null;
        Window.bringToFront();
    }

    function learn(number) {
        stage.reminderList.made().learn(number);
    }

    function remind(number, when) {
        learn(number);
        base.createWithStrings(number, when, qsTr("Phone"), number,
                               qsTr("Call back %1").arg(Words.isolated(number)),
                               Qt.formatDateTime(when, qsTr("ddd d MMM yyyy, hh:mm", "date")));
    }

    /// Calls a number. The modem may be empty.
    function place(number, modem) {
        if (number === "" || dialPad.find(number) !== null) {
            presentPad(number);
        } else if (!cards.mayDial && !line.isEmergency(number)) {
            Log.tell("screen: call to " + number + " is barred");
            presentPad(number);
            dialPad.refuse();
        } else if (Words.isRequest(number)) {
            stage.networkDialog.active = true;
            presentPad("");
            line.ask(number, modem);
        } else {
            learn(number);
            line.dial(number, modem);
            present(stage.callScreen);
            dialPad.fill("");
        }
    }

    /// Calls a number as the user wants it, who may have a choice.
    function call(number) {
        if (cards.count < 2 || !cards.mayDial || !line.hasChoice() || line.isEmergency(number)
                || dialPad.find(number) !== null) {
            place(number, "");
            return;
        }
        stage.simChoice.made().ask(number);
    }

    function receive() {
        var call = line.ringing;
        if (cards.known && !cards.mayReceive) {
            Log.tell("screen: call from " + (call.number || "a private number") + " is barred");
            line.refuse(call);
            return;
        }
        learn(call.number);
        stage.incomingScreen.made().ring(call);
        present(stage.incomingScreen);
    }

    // The call screen has another call, or the first one: it may have been dialled elsewhere.
    function turnToCall() {
        if (line.ringing === null)
            present(stage.callScreen);
    }

    // The call was taken, perhaps not here, or it has ended.
    function stopRinging() {
        if (incoming !== null)
            stage.incomingScreen.item.stop();
        if (line.active && current === stage.incomingScreen)
            turnTo(stage.callScreen);
    }

    function decline(call) {
        turnAway(call, QT_TR_NOOP("Declined %1"));
    }

    /// The text has a "%1" for the caller.
    function turnAway(call, text) {
        var logged = call.number === "" ? "Private number" : call.number;
        var happened = note(text, Words.caller(call), logged);
        stage.incomingScreen.item.stop();
        line.refuse(call);
        tell(happened);
    }

    /// Says something on the call screen, or takes it away if the text is empty.
    function notify(text) {
        if (text !== "" || stage.callScreen.item !== null)
            stage.callScreen.made().notify(text);
    }

    /// Tells what has happened where the user is. Whoever was called to the front for a call goes.
    function tell(happened) {
        if (line.ringing !== null) {
            return;
        } else if (line.active) {
            notify(happened.shown);
            present(stage.callScreen);
        } else if (summoned) {
            turnTo(stage.dialPad);
            __window.hide();
        } else {
            presentNote(happened);
        }
    }

    function tellOfReply(text, number) {
        tell(note(text, Words.display(number), number));
    }

    function reply(call, text) {
        line.send(call.number, text, call.modem);
        turnAway(call, QT_TR_NOOP("Replying to %1…"));
    }

    // A call has ended.
    function settle(call, isRefused) {
        var wasTaken = call.startTime !== undefined || call.direction !== "incoming";
        if (!wasTaken && !isRefused && call.reason !== "local")
            miss(call);
        else if (wasTaken && line.active && call.reason !== "local")
            notify(qsTr("The call with %1 has ended").arg(Words.caller(call)));
        if (!line.active)
            notify(""); // It is about a call that is over.
        if (missed !== null && current === stage.dialPad && !line.active && line.ringing === null)
            presentMissed();
        if (current !== stage.callScreen && current !== stage.incomingScreen)
            return;
        if (line.ringing !== null)
            turnTo(stage.incomingScreen);
        else if (line.active)
            turnTo(stage.callScreen);
        else if (missed !== null)
            presentMissed();
        else
            goAfter(call);
    }

    // The last call has ended.
    function goAfter(call) {
        if (call.direction === "outgoing" && call.startTime === undefined && call.reason === "remote")
            dialPad.notify(note(QT_TR_NOOP("%1 did not take the call"), Words.caller(call), call.number));
        turnTo(stage.dialPad);
        if (summoned)
            __window.hide();
    }

    function miss(call) {
        call.time = Qt.formatTime(new Date(), "hh:mm");
        missed = call;
        Log.tell("screen: missed call from " + (call.number || "a private number"));
        if (line.active)
            notify(qsTr("Missed call from %1").arg(Words.caller(call)));
    }

    function presentMissed() {
        var call = missed;
        missed = null;
        stage.contactCard.made().show(call.number, call);
        learn(call.number);
        summoned = false; // It stays until the user has seen it.
        present(stage.contactCard);
    }

    // Nothing came of what the user wanted. Without a network, no other call comes about either.
    function explain(action, number, why, isWithoutNetwork) {
        if (line.ringing !== null) {
            if (incoming === null)
                receive(); // It still rings.
        } else if (line.active) {
            notify(why);
        } else if (action === "dial" && isWithoutNetwork) {
            turnTo(stage.dialPad);
            showError(why);
        } else if (["dial", "reply", "cancel"].indexOf(action) >= 0) {
            presentNote({shown: why, logged: why});
        } // The others are about a call, which has ended meanwhile.
    }

    function leave() {
        if (missed !== null && !line.active && line.ringing === null) {
            presentMissed();
            return;
        }
        turnTo(incoming !== null ? stage.incomingScreen
                                 : line.active ? stage.callScreen : stage.dialPad);
    }

    function leaveContact() {
        var card = stage.contactCard.item;
        var wasMissed = card.missed !== null;
        card.missed = null;
        leave();
        if (wasMissed && current === stage.dialPad)
            __window.hide();
    }

    function sendReply(index) {
        var text = texts.has(index) ? texts.text(index) : "";
        if (incoming !== null && incoming.number !== "" && text !== "")
            reply(incoming, text);
        else
            presentNote(note(QT_TR_NOOP("No reply to send")));
    }

    function changeReplies(command, text, index) {
        present(stage.quickReplies);
        if (command === "add")
            texts.add(text);
        else if (command === "edit" && texts.has(index))
            texts.edit(index, text);
        else if (command === "remove" && texts.has(index))
            texts.take(index);
        else if (command === "reset")
            texts.restore();
        else if (command === "save")
            texts.write();
        else
            texts.report();
    }

    function openSpecial(service, url) {
        if (url === "") {
            var name = Words.clean(service);
            dialPad.notify(name === "" ? note(QT_TR_NOOP("Nothing is set for this sequence"))
                                       : note(QT_TR_NOOP("%1 is not on this phone"), name, name));
            return;
        }
        urlsRequested([url]);
        if (current !== stage.dialPad)
            dialPad.fill("");
    }

    function show() {
        dialPad.note = null;
        bringToFront();
    }

    function showOngoing() {
        if (line.active)
            present(stage.callScreen);
        else
            presentNote(note(QT_TR_NOOP("No ongoing call")));
    }

    function showError(why) {
        stage.dialog.made().show(why);
        close(stage.sheet);
        dialPad.note = null;
        bringToFront();
    }

    function toggleCall() {
        if (incoming !== null) {
            line.answer(!line.canHold);
        } else if (line.active) {
            line.hangUp();
        } else {
            presentNote(note(QT_TR_NOOP("No call to answer or end")));
        }
    }

    function presentReminder(number, seconds) {
        if (number !== "" && seconds < 0) {
            presentSheet(number);
            return;
        }
        presentContact(number);
        if (number !== "")
            remind(number, Words.secondsLater(new Date(), seconds));
    }

    function forget(number) {
        presentContact(number);
        stage.contactCard.item.reminder.remove();
    }

    function presentReminders() {
        present(stage.reminderList);
    }

    function presentPages(urls) {
        stage.pageScreen.made().open(urls);
        present(stage.pageScreen);
    }

    RemindersBase {
        id: base
    }

    Replies {
        id: texts
    }

    Sims {
        id: cards
    }

    Line {
        id: line

        reminders: base
        watched: __window.visible
        onFailed: function(action, number, why, isWithoutNetwork) {
            phone.explain(action, number, why, isWithoutNetwork);
        }
        onNotSent: function(number) {
            Log.tell("screen: reply to " + number + " failed");
            phone.tellOfReply(QT_TR_NOOP("The reply to %1 could not be sent"), number);
        }
        onOver: function(call, isRefused) { phone.settle(call, isRefused); }
        onQuieted: phone.stopRinging()
        onRang: phone.receive()
        onRenewed: phone.turnToCall()
        onSent: function(number, text) {
            Log.tell("screen: replied " + text + " to " + number);
            if (__window.visible)
                phone.tellOfReply(QT_TR_NOOP("Replied to %1"), number);
        }
    }

    // The telephony comes after the first frame, which does not need it, but also if nobody draws one.
    Connections {
        enabled: line.status === "starting"
        ignoreUnknownSignals: true // A tool that shows the screens may have a window without it.
        target: __window
        function onFrameSwapped() {
            line.load();
        }
    }

    Timer {
        interval: __prestart ? 0 : 1000
        running: true
        onTriggered: line.load()
    }

    // A call may come from now on, and has to be seen at once.
    Timer {
        interval: 0
        running: line.status === "ready"
        onTriggered: stage.prepareForCalls()
    }

    Stage {
        id: stage

        anchors.fill: parent
        phone: phone
    }

    Connections {
        target: line.telephone !== null ? line.telephone.calls.dialogue : null

        function onStateChanged() {
            stage.networkDialog.active = true;
            phone.bringToFront();
        }
    }
}
