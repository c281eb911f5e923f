// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."
import "text.js" as Words

BaseScreen {
    id: screen

    property Line line
    property date now
    readonly property var audio: line.telephone !== null ? line.telephone.audio : null
    property bool keypad: false
    property string tones
    /// Whether the keypad takes the room of the caller's picture.
    readonly property bool covered: keypad && !Style.wide
    /// Whether there is room for it above the name.
    readonly property bool pictured: !keypad && !Style.wide && !rows.visible

    signal addRequested()
    signal endRequested()
    signal remindRequested(string number)

    function reset() {
        keypad = false;
        tones = "";
    }

    function notify(text) {
        notice.text = text;
        if (noteTimer.running)
            noteTimer.restart();
    }

    function type(text) {
        tones = (tones + text).slice(-60);
        line.sendTones(text);
    }

    summary: line.summary
    title: line.name

    Keys.onPressed: {
        if (keypad && /^[0-9*#+]$/.test(event.text)) {
            keys.flash(event.text);
            type(event.text);
            event.accepted = true;
        }
    }

    Connections {
        target: screen.line
        function onRenewed() {
            screen.reset();
        }
    }

    Timer {
        id: noteTimer

        interval: 4000
        running: screen.line.watched && notice.text !== ""
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
                visible: screen.pictured
            }

            Item {
                height: Style.px(14)
                visible: screen.pictured
                width: 1
            }

            Label {
                font.weight: Font.Light
                fontSizeMode: Text.HorizontalFit
                height: Style.px(screen.covered ? 34 : 46)
                minimumPixelSize: Math.max(1, Style.px(18))
                size: screen.covered ? 24 : 34
                text: screen.line.name
                width: parent.width
            }

            Label {
                color: Style.dimText
                size: 14
                text: Words.display(screen.line.number)
                visible: text !== "" && text !== screen.line.name && !screen.line.isConference
                         && !screen.covered
                width: parent.width
            }

            ReminderMark {
                id: mark

                anchors.horizontalCenter: parent.horizontalCenter
                now: screen.now
                reminder: screen.line.reminder
                visible: marked && !screen.line.isConference
            }

            Label {
                color: Style.dimText
                elide: Text.ElideMiddle
                size: 13
                text: qsTr("via %1").arg(Words.isolated(screen.line.modem))
                // There is only room for one of the two above the keys.
                visible: screen.line.modem !== "" && !(screen.covered && mark.marked)
                width: parent.width
            }

            Label {
                color: screen.line.ongoing ? Style.accent : Style.dimText
                size: 16
                text: screen.line.state
                width: parent.width
            }
        }
    }

    Pane {
        second: true

        Avatar {
            anchors.horizontalCenter: parent.horizontalCenter
            size: 150
            visible: Style.wide && !screen.keypad && !rows.visible
            y: (controls.y - height) / 2
        }

        Notice {
            id: notice

            anchors.horizontalCenter: parent.horizontalCenter
            y: Style.px(8)
            z: 1
        }

        CallRows {
            id: rows

            anchors.left: parent.left
            anchors.margins: Style.px(24)
            anchors.right: parent.right
            enabled: visible
            line: screen.line
            visible: calls.length > 0 && !screen.keypad
            y: Style.wide ? Style.px(52) : header.y + header.height + Style.px(20)
        }

        Row {
            id: controls

            anchors.horizontalCenter: parent.horizontalCenter
            spacing: Style.px(22)
            visible: !screen.keypad
            y: Style.wide ? endButton.y + endButton.height - height : buttons.y - height - Style.px(18)

            RoundButton {
                enabled: screen.line.ongoing || screen.line.held
                icon: screen.line.held ? "resume" : screen.line.others.length > 0 ? "swap" : "hold"
                label: screen.line.held ? qsTr("Resume")
                       : screen.line.others.length > 0 ? qsTr("Swap") : qsTr("Hold")
                objectName: "swap"
                size: 60
                onClicked: screen.line.swap()
            }

            RoundButton {
                enabled: screen.line.ongoing && screen.line.others.length > 0
                icon: "join"
                label: qsTr("Join")
                objectName: "join"
                size: 60
                onClicked: screen.line.join()
            }

            RoundButton {
                enabled: screen.line.ongoing || screen.line.held
                icon: "add"
                label: qsTr("Add call")
                size: 60
                onClicked: screen.addRequested()
            }
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
            onTyped: function(input) { screen.type(input); }

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
                checked: screen.audio !== null && screen.audio.muted
                enabled: screen.audio !== null
                icon: "mute"
                label: qsTr("Mute")
                size: 60
                onClicked: screen.audio.muted = !screen.audio.muted
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
                checked: screen.audio !== null && screen.audio.speaker
                enabled: screen.audio !== null
                icon: "speaker"
                label: qsTr("Speaker")
                size: 60
                onClicked: screen.audio.speaker = !screen.audio.speaker
            }

            RoundButton {
                enabled: screen.line.number !== ""
                icon: "bell"
                label: qsTr("Remind me")
                size: 60
                onClicked: screen.remindRequested(screen.line.number)
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
