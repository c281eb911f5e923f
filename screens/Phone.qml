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
    /// The screens have come to the front for a call, and go again when it has ended.
    property bool summoned: false
    readonly property Item topmost: dialog.open ? dialog : sheet.open ? sheet : current
    /// Whether the parts of a screen are side by side, as on a phone that is held sideways.
    readonly property bool wide: width > height * 1.2
    /// The scale of the screens; 1 for a screen that is 360 pixels wide and 640 high, or a wide one
    /// of 720 pixels and 400.
    readonly property real unit: wide ? Math.min(width / 720, height / 400)
                                      : Math.min(stage.width / 360, height / 640)

    /// A screen wants these URLs to be opened.
    signal urlsRequested(var urls)

    // Show the new screen before hiding the old one, so that nothing else is shown in between.
    function present(screen) {
        current = screen;
        if (screen !== dialPad)
            dialPad.note = null;
        sheet.open = false;
        dialog.open = false;
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
        contactCard.number = number;
        reminderList.learn(number);
        present(contactCard);
    }

    // Show the sheet first, so that the contact card is not shown without it.
    function presentSheet(number) {
        sheet.show(number);
        contactCard.number = number;
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

    function place(number, modem) {
        if (number === "" || dialPad.find(number) !== null) {
            presentPad(number);
        } else if (!cards.mayDial && !Words.isEmergency(number)) {
            console.info("screen: call to " + number + " is barred");
            presentPad(number);
            dialPad.refuse();
        } else {
            incomingScreen.stop();
            reminderList.learn(number);
            line.start(number, modem);
            present(callScreen);
            dialPad.fill("");
        }
    }

    function receive(number) {
        var caller = number || "a private number";
        if (!cards.mayReceive) {
            console.info("screen: call from " + caller + " is barred");
        } else if (incomingScreen.ringing && incomingScreen.number !== number) {
            console.info("screen: call from " + caller + " finds the phone ringing");
        } else {
            reminderList.learn(number);
            incomingScreen.ring(number);
            present(incomingScreen);
        }
    }

    function answer() {
        incomingScreen.stop();
        line.answer(incomingScreen.number);
        present(callScreen);
    }

    /// The text has a "%1" for the caller.
    function turnAway(text) {
        var caller = incomingScreen.number === "" ? "Private number" : incomingScreen.caller;
        var happened = note(text, incomingScreen.caller, caller);
        incomingScreen.stop();
        if (line.active) {
            callScreen.notify(happened.shown);
            present(callScreen);
        } else if (summoned) {
            current = dialPad;
            __window.hide();
        } else {
            presentNote(happened);
        }
    }

    function reply(text) {
        console.info("screen: replied " + text + " to " + incomingScreen.number);
        turnAway(QT_TR_NOOP("Replied to %1"));
    }

    function endCall() {
        if (current === callScreen)
            current = incomingScreen.ringing ? incomingScreen : dialPad;
        line.end();
        if (summoned && current === dialPad)
            __window.hide();
    }

    function leave() {
        current = incomingScreen.ringing ? incomingScreen : line.active ? callScreen : dialPad;
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

    function showError() {
        dialog.open = true;
        sheet.open = false;
        dialPad.note = null;
        bringToFront();
    }

    function toggleCall() {
        if (incomingScreen.ringing) {
            answer();
        } else if (line.active) {
            endCall();
            if (!summoned)
                present(current);
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

    Call {
        id: line
        reminders: base
        watched: __window.visible
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
                now: statusBar.now
                reminders: base
                sims: cards
                watched: __window.visible
                onCallRequested: phone.place(number, "")
                onCloseRequested: __window.hide()
                onRemindersRequested: phone.current = reminderList
                onRepliesRequested: phone.current = quickReplies
                onSpecialRequested: phone.openSpecial(service, url)
            }

            CallScreen {
                id: callScreen

                call: line
                current: phone.current === callScreen
                now: statusBar.now
                onCloseRequested: phone.current = dialPad
                onEndRequested: phone.endCall()
                onRemindRequested: sheet.show(number)
            }

            IncomingScreen {
                id: incomingScreen

                call: line
                current: phone.current === incomingScreen
                now: statusBar.now
                reminders: base
                replies: texts
                onAnswerRequested: phone.answer()
                onCloseRequested: phone.current = line.active ? callScreen : dialPad
                onDeclineRequested: phone.turnAway(QT_TR_NOOP("Declined %1"))
                onEditRequested: phone.current = quickReplies
                onRemindRequested: sheet.show(number)
                onReplyRequested: phone.reply(text)
            }

            ContactCard {
                id: contactCard

                current: phone.current === contactCard
                now: statusBar.now
                reminders: base
                sims: cards
                onCallRequested: phone.place(number, "")
                onCloseRequested: phone.leave()
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

    ErrorDialog {
        id: dialog
        anchors.fill: parent
    }
}
