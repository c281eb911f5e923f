// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0
import "."
import "text.js" as Words

Rectangle {
    id: root

    /// What is on the screen, for whoever watches the log.
    readonly property string shown: {
        if (!__window.visible)
            return "hidden";
        return dialog.open ? dialog.summary : sheet.open ? sheet.summary : current.summary;
    }
    property Item current: dialPad
    property bool loaded: false

    function report() {
        console.info("screen: " + shown);
    }

    // The new screen comes before the old goes, so that nothing else is shown between.
    function present(screen) {
        current = screen;
        if (screen !== dialPad)
            dialPad.note = "";
        sheet.open = false;
        dialog.open = false;
        bringToFront();
    }

    function presentPad(number) {
        dialPad.fill(number);
        present(dialPad);
    }

    function presentNote(note) {
        dialPad.notify(note);
        present(dialPad);
    }

    function presentContact(number) {
        contactCard.number = number;
        present(contactCard);
    }

    // The sheet comes first, so that the contact card is not shown without it.
    function presentSheet(number) {
        sheet.show(number);
        contactCard.number = number;
        current = contactCard;
        dialPad.note = "";
        dialog.open = false;
        bringToFront();
    }

    function openReminderUrl(url) {
        var number = Words.urlNumber(url);
        var seconds = Words.reminderSeconds(url);
        if (number !== "" && !Words.isForgetUrl(url) && seconds < 0) {
            presentSheet(number);
            return;
        }
        presentContact(number);
        if (Words.isForgetUrl(url))
            contactCard.reminder.remove();
        else if (number !== "")
            remind(number, Words.secondsLater(new Date(), seconds));
    }

    function remind(number, when) {
        base.createWithStrings(number, when, "Phone", number, "Call back " + number,
                               Qt.formatDateTime(when, "ddd d MMM yyyy, hh:mm"));
    }

    function bringToFront() {
        if (!__window.visible) {
            if (__prestart)
                __window.show();
            else
                __window.showFullScreen();
            __window.requestActivate();
        } else if (!__window.active) {
            __window.raise();
            __window.requestActivate();
        }
    }

    function place(number, modem) {
        if (number === "" || dialPad.isSpecial(number)) {
            presentPad(number);
            return;
        }
        line.start(number, modem);
        present(callScreen);
        dialPad.fill("");
    }

    function endCall() {
        if (current === callScreen)
            current = dialPad;
        line.end();
    }

    function leave() {
        current = line.active ? callScreen : dialPad;
    }

    focus: true
    height: 640
    width: 360

    gradient: Gradient {
        GradientStop { position: 0; color: Style.backgroundTop }
        GradientStop { position: 1; color: Style.backgroundBottom }
    }

    Component.onCompleted: {
        __window.resizeMode = 1; // the view no longer follows the root object, but leads it
        loaded = true;
        report();
    }
    onShownChanged: {
        if (loaded)
            report();
    }

    Keys.forwardTo: dialog.open ? [dialog] : sheet.open ? [sheet] : [current]
    Keys.onEscapePressed: __window.hide()

    Binding {
        target: Style
        property: "unit"
        value: Math.max(0.3, Math.min(stage.width / 360, stage.height / 640))
    }

    Binding {
        target: Style
        property: "animated"
        value: __window.visible
    }

    ParleyUiAdaptor {
        onShow: {
            dialPad.note = "";
            root.bringToFront();
        }
        onShowOngoing: {
            if (line.active)
                root.present(callScreen);
            else
                root.presentNote("No ongoing call");
        }
        onOpenUrl: {
            if (arg.length === 1 && Words.isTelephoneUrl(arg[0])) {
                root.presentPad(Words.urlNumber(arg[0]));
            } else if (arg.length === 1 && Words.isReminderUrl(arg[0])) {
                root.openReminderUrl(arg[0]);
            } else {
                pageScreen.open(arg);
                root.present(pageScreen);
            }
        }
        onDial: root.place(Words.clean(number), "")
        onDialViaModem: root.place(Words.clean(number), Words.clean(modemPath))
        onShowCellularErrorDialog: {
            dialog.open = true;
            sheet.open = false;
            dialPad.note = "";
            root.bringToFront();
        }
        onOpenContactCard: root.presentContact(Words.clean(number))
        onToggleCall: {
            if (line.active) {
                root.endCall();
                root.present(root.current);
            } else {
                root.presentNote("No call to answer or end");
            }
        }
    }

    RemindersBase {
        id: base
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
        width: Math.min(parent.width, Math.round(parent.height * 0.75))

        StatusBar {
            id: statusBar

            inCall: line.active
            watched: __window.visible
            width: parent.width
        }

        CallStrip {
            id: strip

            anchors.top: statusBar.bottom
            call: line
            open: line.active && root.current !== callScreen
            width: parent.width
            onClicked: root.current = callScreen
        }

        Item {
            anchors.bottom: parent.bottom
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: strip.bottom

            DialPad {
                id: dialPad

                current: root.current === dialPad
                now: statusBar.now
                reminders: base
                watched: __window.visible
                onCallRequested: root.place(number, "")
            }

            CallScreen {
                id: callScreen

                call: line
                current: root.current === callScreen
                now: statusBar.now
                onEndRequested: root.endCall()
                onRemindRequested: sheet.show(number)
            }

            ContactCard {
                id: contactCard

                current: root.current === contactCard
                now: statusBar.now
                reminders: base
                onCallRequested: root.place(number, "")
                onCloseRequested: root.leave()
                onRemindRequested: sheet.show(number)
            }

            PageScreen {
                id: pageScreen

                current: root.current === pageScreen
                onCloseRequested: root.leave()
            }
        }
    }

    RemindSheet {
        id: sheet

        anchors.fill: parent
        now: statusBar.now
        reminders: base
        onChosen: root.remind(number, when)
    }

    ErrorDialog {
        id: dialog
        anchors.fill: parent
    }
}
