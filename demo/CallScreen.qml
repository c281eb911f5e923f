// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."
import "text.js" as Words

BaseScreen {
    id: screen

    property Call call
    property date now
    property bool muted: false
    property bool loud: false
    property bool keypad: false
    property string tones

    signal endRequested()
    signal remindRequested(string number)

    function reset() {
        muted = false;
        loud = false;
        keypad = false;
        tones = "";
        notify(call.replaced === "" ? ""
               : "The call with " + Words.display(call.replaced) + " has ended");
    }

    function notify(text) {
        notice.text = text;
        if (noteTimer.running)
            noteTimer.restart();
    }

    function type(text) {
        tones = (tones + text).slice(-60);
    }

    summary: call.summary

    Keys.onPressed: {
        if (keypad && /^[0-9*#+]$/.test(event.text)) {
            keys.flash(event.text);
            type(event.text);
            event.accepted = true;
        }
    }

    Connections {
        target: screen.call
        function onRenewed() {
            screen.reset();
        }
    }

    Timer {
        id: noteTimer

        interval: 4000
        running: screen.call.watched && notice.text !== ""
        onTriggered: notice.text = ""
    }

    Column {
        id: header

        anchors.left: parent.left
        anchors.margins: Style.px(24)
        anchors.right: parent.right
        spacing: Style.px(4)
        y: screen.keypad ? Style.px(8) : (buttons.y - height) * 0.45

        Avatar {
            anchors.horizontalCenter: parent.horizontalCenter
            visible: !screen.keypad
        }

        Item {
            height: Style.px(14)
            visible: !screen.keypad
            width: 1
        }

        Label {
            font.weight: Font.Light
            fontSizeMode: Text.HorizontalFit
            height: Style.px(screen.keypad ? 34 : 46)
            minimumPixelSize: Math.max(1, Style.px(18))
            size: screen.keypad ? 24 : 34
            text: screen.call.name
            width: parent.width
        }

        ReminderMark {
            id: mark

            anchors.horizontalCenter: parent.horizontalCenter
            now: screen.now
            reminder: screen.call.reminder
            visible: marked
        }

        Label {
            color: Style.dimText
            elide: Text.ElideMiddle
            size: 13
            text: "via " + screen.call.modem
            // There is only room for one of the two above the keys.
            visible: screen.call.modem !== "" && !(screen.keypad && mark.marked)
            width: parent.width
        }

        Label {
            color: screen.call.ongoing ? Style.accent : Style.dimText
            size: 16
            text: screen.call.state
            width: parent.width
        }
    }

    Notice {
        id: notice

        anchors.bottom: screen.keypad ? undefined : buttons.top
        anchors.bottomMargin: Style.px(22)
        anchors.horizontalCenter: parent.horizontalCenter
        y: Style.px(8)
        z: 1
    }

    Label {
        anchors.bottom: keys.top
        anchors.bottomMargin: Style.px(4)
        anchors.left: parent.left
        anchors.margins: Style.px(24)
        anchors.right: parent.right
        elide: Text.ElideLeft
        height: Style.px(28)
        size: 20
        text: Words.display(screen.tones)
        visible: screen.keypad
    }

    KeyGrid {
        id: keys

        anchors.bottom: buttons.top
        anchors.bottomMargin: Style.px(14)
        anchors.horizontalCenter: parent.horizontalCenter
        enabled: screen.keypad
        keySize: 58
        opacity: screen.keypad ? 1 : 0
        visible: opacity > 0
        onTyped: screen.type(input)

        Behavior on opacity {
            enabled: screen.current
            NumberAnimation { duration: Style.duration }
        }
    }

    Row {
        id: buttons

        anchors.bottom: endButton.top
        anchors.bottomMargin: Style.px(22)
        anchors.horizontalCenter: parent.horizontalCenter
        spacing: Style.px(22)

        RoundButton {
            checked: screen.muted
            icon: "mute"
            label: "Mute"
            size: 60
            onClicked: screen.muted = !screen.muted
        }

        RoundButton {
            checked: screen.keypad
            icon: "keypad"
            label: "Keypad"
            size: 60
            onClicked: screen.keypad = !screen.keypad
        }

        RoundButton {
            checked: screen.loud
            icon: "speaker"
            label: "Speaker"
            size: 60
            onClicked: screen.loud = !screen.loud
        }

        RoundButton {
            enabled: screen.call.number !== ""
            icon: "bell"
            label: "Remind me"
            size: 60
            onClicked: screen.remindRequested(screen.call.number)
        }
    }

    RoundButton {
        id: endButton

        anchors.bottom: parent.bottom
        anchors.bottomMargin: Style.px(22)
        anchors.horizontalCenter: parent.horizontalCenter
        fill: Style.red
        icon: "end"
        size: 72
        onClicked: screen.endRequested()
    }
}
