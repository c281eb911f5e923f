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
    /// Whether the keypad takes the room of the caller's picture.
    readonly property bool covered: keypad && !Style.wide

    signal endRequested()
    signal remindRequested(string number)

    function reset() {
        muted = false;
        loud = false;
        keypad = false;
        tones = "";
        notify(call.replaced === "" ? ""
               : qsTr("The call with %1 has ended").arg(Words.isolated(Words.display(call.replaced))));
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
    title: call.name

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

    Pane {
        Column {
            id: header

            anchors.left: parent.left
            anchors.margins: Style.px(24)
            anchors.right: parent.right
            spacing: Style.px(4)
            y: screen.covered ? Style.px(8) : (buttons.y - height) * 0.45

            Avatar {
                anchors.horizontalCenter: parent.horizontalCenter
                visible: !screen.keypad && !Style.wide
            }

            Item {
                height: Style.px(14)
                visible: !screen.keypad && !Style.wide
                width: 1
            }

            Label {
                font.weight: Font.Light
                fontSizeMode: Text.HorizontalFit
                height: Style.px(screen.covered ? 34 : 46)
                minimumPixelSize: Math.max(1, Style.px(18))
                size: screen.covered ? 24 : 34
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
                text: qsTr("via %1").arg(Words.isolated(screen.call.modem))
                // There is only room for one of the two above the keys.
                visible: screen.call.modem !== "" && !(screen.covered && mark.marked)
                width: parent.width
            }

            Label {
                color: screen.call.ongoing ? Style.accent : Style.dimText
                size: 16
                text: screen.call.state
                width: parent.width
            }
        }
    }

    Pane {
        second: true

        Avatar {
            anchors.centerIn: parent
            size: 180
            visible: Style.wide && !screen.keypad
        }

        Notice {
            id: notice

            anchors.horizontalCenter: parent.horizontalCenter
            y: screen.keypad || Style.wide ? Style.px(8) : buttons.y - height - Style.px(22)
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

            anchors.horizontalCenter: parent.horizontalCenter
            enabled: screen.keypad
            keySize: 58
            opacity: screen.keypad ? 1 : 0
            visible: opacity > 0
            y: Style.wide ? (parent.height - height) / 2 + Style.px(16) : buttons.y - height - Style.px(14)
            onTyped: screen.type(input)

            Behavior on opacity {
                enabled: screen.current
                NumberAnimation { duration: Style.duration }
            }
        }
    }

    Pane {
        Row {
            id: buttons

            anchors.bottom: endButton.top
            anchors.bottomMargin: Style.px(22)
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: Style.px(22)

            RoundButton {
                checkable: true
                checked: screen.muted
                icon: "mute"
                label: qsTr("Mute")
                size: 60
                onClicked: screen.muted = !screen.muted
            }

            RoundButton {
                checkable: true
                checked: screen.keypad
                icon: "keypad"
                label: qsTr("Keypad")
                size: 60
                onClicked: screen.keypad = !screen.keypad
            }

            RoundButton {
                checkable: true
                checked: screen.loud
                icon: "speaker"
                label: qsTr("Speaker")
                size: 60
                onClicked: screen.loud = !screen.loud
            }

            RoundButton {
                enabled: screen.call.number !== ""
                icon: "bell"
                label: qsTr("Remind me")
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
            name: qsTr("End call")
            size: 72
            onClicked: screen.endRequested()
        }
    }
}
