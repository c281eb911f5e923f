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
        return dialog.open ? dialog.summary : current.summary;
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

    Keys.forwardTo: dialog.open ? [dialog] : [current]
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
                root.presentPad(Words.telephoneNumber(arg[0]));
            } else {
                pageScreen.open(arg);
                root.present(pageScreen);
            }
        }
        onDial: root.place(Words.clean(number), "")
        onDialViaModem: root.place(Words.clean(number), Words.clean(modemPath))
        onShowCellularErrorDialog: {
            dialog.open = true;
            dialPad.note = "";
            root.bringToFront();
        }
        onOpenContactCard: {
            contactCard.number = Words.clean(number);
            root.present(contactCard);
        }
        onToggleCall: {
            if (line.active) {
                root.endCall();
                root.present(root.current);
            } else {
                root.presentNote("No call to answer or end");
            }
        }
    }

    Call {
        id: line
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
                watched: __window.visible
                onCallRequested: root.place(number, "")
            }

            CallScreen {
                id: callScreen

                call: line
                current: root.current === callScreen
                onEndRequested: root.endCall()
            }

            ContactCard {
                id: contactCard

                current: root.current === contactCard
                onCallRequested: root.place(number, "")
                onCloseRequested: root.leave()
            }

            PageScreen {
                id: pageScreen

                current: root.current === pageScreen
                onCloseRequested: root.leave()
            }
        }
    }

    ErrorDialog {
        id: dialog
        anchors.fill: parent
    }
}
