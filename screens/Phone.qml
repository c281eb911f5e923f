// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0
import "."
import "text.js" as Words
import "window.js" as Window

/// All screens, and the requests that they handle.
Item {
    id: phone

    property Item current: dialPad
    readonly property alias line: line
    /// The screens have come to the front for a call, and go again when it has ended.
    property bool summoned: false
    // What may be above a screen.
    readonly property var boxes: [dialog, networkDialog.item, simChoice.item, sheet]
    readonly property Item topmost: boxes.filter(isOpen)[0] || current
    /// The last call that was missed, which the user has not seen yet; null if there is none.
    property var missed: null
    /// Whether the parts of a screen are side by side, as on a phone that is held sideways.
    readonly property bool wide: width > height * 1.2
    /// The scale of the screens; 1 for a screen that is 360 pixels wide and 640 high, or a wide one
    /// of 720 pixels and 400.
    readonly property real unit: wide ? Math.min(width / 720, height / 400)
                                      : Math.min(stage.width / 360, height / 640)

    /// A screen wants these URLs to be opened.
    signal urlsRequested(var urls)

    function isOpen(box) {
        return box !== null && box.open;
    }

    function closeBoxes() {
        boxes.filter(isOpen).forEach(function(box) { box.open = false; });
    }

    // Show the new screen before hiding the old one, so that nothing else is shown in between.
    function present(screen) {
        current = screen;
        if (screen !== dialPad)
            dialPad.note = null;
        closeBoxes();
        bringToFront();
    }

    function presentPad(number) {
        dialPad.fill(number);
        present(dialPad);
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
        present(dialPad);
    }

    function presentContact(number) {
        contactCard.show(number, null);
        reminderList.learn(number);
        present(contactCard);
    }

    // Show the sheet first, so that the contact card is not shown without it.
    function presentSheet(number) {
        sheet.show(number);
        contactCard.show(number, null);
        current = contactCard;
        dialPad.note = null;
        dialog.open = false;
        bringToFront();
    }

    function bringToFront() {
        if (!__window.visible)
            summoned = line.active || incomingScreen.ringing;
        Window.bringToFront();
    }

    function remind(number, when) {
        reminderList.learn(number);
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
            networkDialog.active = true;
            presentPad("");
            line.ask(number, modem);
        } else {
            reminderList.learn(number);
            line.dial(number, modem);
            present(callScreen);
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
        simChoice.active = true;
        simChoice.item.ask(number);
    }

    function receive() {
        var call = line.ringing;
        if (cards.known && !cards.mayReceive) {
            Log.tell("screen: call from " + (call.number || "a private number") + " is barred");
            line.refuse(call);
            return;
        }
        reminderList.learn(call.number);
        incomingScreen.ring(call);
        present(incomingScreen);
    }

    // The call screen has another call, or the first one: it may have been dialled elsewhere.
    function turnToCall() {
        if (line.ringing === null)
            present(callScreen);
    }

    // The call was taken, perhaps not here, or it has ended.
    function stopRinging() {
        incomingScreen.stop();
        if (line.active && current === incomingScreen)
            current = callScreen;
    }

    /// The text has a "%1" for the caller.
    function turnAway(text) {
        var call = incomingScreen.call;
        var logged = call.number === "" ? "Private number" : call.number;
        var happened = note(text, incomingScreen.caller, logged);
        incomingScreen.stop();
        line.refuse(call);
        tell(happened);
    }

    /// Tells what has happened where the user is. Whoever was called to the front for a call goes.
    function tell(happened) {
        if (line.ringing !== null) {
            return;
        } else if (line.active) {
            callScreen.notify(happened.shown);
            present(callScreen);
        } else if (summoned) {
            current = dialPad;
            __window.hide();
        } else {
            presentNote(happened);
        }
    }

    function tellOfReply(text, number) {
        tell(note(text, Words.display(number), number));
    }

    function reply(text) {
        var call = incomingScreen.call;
        line.send(call.number, text, call.modem);
        turnAway(QT_TR_NOOP("Replying to %1…"));
    }

    // A call has ended.
    function settle(call, isRefused) {
        var wasTaken = call.startTime !== undefined || call.direction !== "incoming";
        if (!wasTaken && !isRefused && call.reason !== "local")
            miss(call);
        else if (wasTaken && line.active && call.reason !== "local")
            callScreen.notify(qsTr("The call with %1 has ended").arg(Words.caller(call)));
        if (!line.active)
            callScreen.notify(""); // It is about a call that is over.
        if (missed !== null && current === dialPad && !line.active && line.ringing === null)
            presentMissed();
        if (current !== callScreen && current !== incomingScreen)
            return;
        if (line.ringing !== null)
            current = incomingScreen;
        else if (line.active)
            current = callScreen;
        else if (missed !== null)
            presentMissed();
        else
            goAfter(call);
    }

    // The last call has ended.
    function goAfter(call) {
        if (call.direction === "outgoing" && call.startTime === undefined && call.reason === "remote")
            dialPad.notify(note(QT_TR_NOOP("%1 did not take the call"), Words.caller(call), call.number));
        current = dialPad;
        if (summoned)
            __window.hide();
    }

    function miss(call) {
        call.time = Qt.formatTime(new Date(), "hh:mm");
        missed = call;
        Log.tell("screen: missed call from " + (call.number || "a private number"));
        if (line.active)
            callScreen.notify(qsTr("Missed call from %1").arg(Words.caller(call)));
    }

    function presentMissed() {
        var call = missed;
        missed = null;
        contactCard.show(call.number, call);
        reminderList.learn(call.number);
        summoned = false; // It stays until the user has seen it.
        present(contactCard);
    }

    // Nothing came of what the user wanted. Without a network, no other call comes about either.
    function explain(action, number, why, isWithoutNetwork) {
        if (line.ringing !== null) {
            if (!incomingScreen.ringing)
                receive(); // It still rings.
        } else if (line.active) {
            callScreen.notify(why);
        } else if (action === "dial" && isWithoutNetwork) {
            current = dialPad;
            showError(why);
        } else {
            presentNote({shown: why, logged: why});
        }
    }

    function leave() {
        if (missed !== null && !line.active && line.ringing === null) {
            presentMissed();
            return;
        }
        current = incomingScreen.ringing ? incomingScreen : line.active ? callScreen : dialPad;
    }

    function leaveContact() {
        var wasMissed = contactCard.missed !== null;
        contactCard.missed = null;
        leave();
        if (wasMissed && current === dialPad)
            __window.hide();
    }

    function sendReply(index) {
        var text = texts.has(index) ? texts.text(index) : "";
        if (incomingScreen.ringing && incomingScreen.number !== "" && text !== "")
            reply(text);
        else
            presentNote(note(QT_TR_NOOP("No reply to send")));
    }

    function changeReplies(command, text, index) {
        present(quickReplies);
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
        if (current !== dialPad)
            dialPad.fill("");
    }

    function show() {
        dialPad.note = null;
        bringToFront();
    }

    function showOngoing() {
        if (line.active)
            present(callScreen);
        else
            presentNote(note(QT_TR_NOOP("No ongoing call")));
    }

    function showError(why) {
        dialog.show(why);
        sheet.open = false;
        dialPad.note = null;
        bringToFront();
    }

    function toggleCall() {
        if (incomingScreen.ringing) {
            line.answer(!incomingScreen.canHold);
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
        contactCard.reminder.remove();
    }

    function presentReminders() {
        present(reminderList);
    }

    function presentPages(urls) {
        pageScreen.open(urls);
        present(pageScreen);
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
        onFailed: phone.explain(action, number, why, isWithoutNetwork)
        onNotSent: {
            Log.tell("screen: reply to " + number + " failed");
            phone.tellOfReply(QT_TR_NOOP("The reply to %1 could not be sent"), number);
        }
        onOver: phone.settle(call, isRefused)
        onQuieted: phone.stopRinging()
        onRang: phone.receive()
        onRenewed: phone.turnToCall()
        onSent: {
            Log.tell("screen: replied " + text + " to " + number);
            if (__window.visible)
                phone.tellOfReply(QT_TR_NOOP("Replied to %1"), number);
        }
    }

    // The telephony comes after the first frame, which does not need it.
    Timer {
        interval: 0
        running: true
        onTriggered: line.load()
    }

    Item {
        id: stage

        anchors.bottom: parent.bottom
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.top: parent.top
        // A screen reader finds only what can be used below the sheet and the dialog.
        enabled: phone.topmost === phone.current
        width: phone.wide ? parent.width : Math.min(parent.width, Math.round(parent.height * 0.75))

        StatusBar {
            id: statusBar

            inCall: line.active
            sims: cards
            watched: __window.visible
            width: parent.width
        }

        CallStrip {
            id: strip

            readonly property Item target: incomingScreen.ringing ? incomingScreen : callScreen

            anchors.top: statusBar.bottom
            open: (line.active || incomingScreen.ringing) && phone.current !== target
            text: target === incomingScreen
                  ? Words.isolated(incomingScreen.caller) + "  ·  " + qsTr("Incoming call")
                  : Words.isolated(line.name) + "  ·  " + line.state
            width: parent.width
            onClicked: phone.current = target
        }

        Item {
            anchors.bottom: parent.bottom
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: strip.bottom

            DialPad {
                id: dialPad

                current: phone.current === dialPad
                line: phone.line
                now: statusBar.now
                reminders: base
                sims: cards
                watched: __window.visible
                onCallRequested: phone.call(number)
                onCloseRequested: __window.hide()
                onRemindersRequested: phone.current = reminderList
                onRepliesRequested: phone.current = quickReplies
                onSpecialRequested: phone.openSpecial(service, url)
            }

            CallScreen {
                id: callScreen

                current: phone.current === callScreen
                line: phone.line
                now: statusBar.now
                onAddRequested: phone.current = dialPad
                onCloseRequested: phone.current = dialPad
                onEndRequested: phone.line.hangUp()
                onRemindRequested: sheet.show(number)
            }

            IncomingScreen {
                id: incomingScreen

                current: phone.current === incomingScreen
                line: phone.line
                now: statusBar.now
                reminders: base
                replies: texts
                onAnswerRequested: phone.line.answer(ending)
                onCloseRequested: phone.current = line.active ? callScreen : dialPad
                onDeclineRequested: phone.turnAway(QT_TR_NOOP("Declined %1"))
                onEditRequested: phone.current = quickReplies
                onRemindRequested: sheet.show(number)
                onReplyRequested: phone.reply(text)
            }

            ContactCard {
                id: contactCard

                current: phone.current === contactCard
                line: phone.line
                now: statusBar.now
                reminders: base
                sims: cards
                onCallRequested: phone.call(number)
                onCloseRequested: phone.leaveContact()
                onRemindRequested: sheet.show(number)
            }

            PageScreen {
                id: pageScreen

                current: phone.current === pageScreen
                onCloseRequested: phone.leave()
            }

            QuickReplies {
                id: quickReplies

                current: phone.current === quickReplies
                replies: texts
                onCloseRequested: phone.leave()
            }

            ReminderList {
                id: reminderList

                current: phone.current === reminderList
                now: statusBar.now
                reminders: base
                onChosen: phone.presentContact(number)
                onCloseRequested: phone.leave()
            }
        }
    }

    RemindSheet {
        id: sheet

        anchors.fill: parent
        now: statusBar.now
        reminders: base
        onChosen: {
            phone.remind(number, when);
            if (phone.current === incomingScreen && incomingScreen.ringing)
                phone.turnAway(QT_TR_NOOP("Declined %1"));
        }
    }

    // These are rarely seen, and only made for it.
    Loader {
        id: simChoice

        active: false
        anchors.fill: parent
        sourceComponent: SimChoice {
            modems: line.telephone !== null ? line.telephone.calls.modems : []
            onChosen: phone.place(number, modem)
        }
    }

    Loader {
        id: networkDialog

        active: false
        anchors.fill: parent
        sourceComponent: NetworkDialog {
            dialogue: line.telephone !== null ? line.telephone.calls.dialogue : null
        }
    }

    Connections {
        target: line.telephone !== null ? line.telephone.calls.dialogue : null

        function onStateChanged() {
            networkDialog.active = true;
            phone.bringToFront();
        }
    }

    ErrorDialog {
        id: dialog
    }
}
