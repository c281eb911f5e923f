// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0
import "."
import "text.js" as Words

BaseScreen {
    id: pad

    property string number
    property string note
    property var specials
    property bool watched: false
    property RemindersBase reminders
    property date now

    signal callRequested(string number)

    function isSpecial(text) {
        if (text === "")
            return false;
        if (specials === undefined)
            specials = __specials; // only now: there may be thousands, and the screen comes first
        return specials.hasOwnProperty(text);
    }

    function fill(text) {
        if (isSpecial(text))
            notify(describeSpecial(text));
        number = text;
        if (!isSpecial(text))
            note = "";
    }

    function notify(text) {
        note = text;
        if (noteTimer.running)
            noteTimer.restart();
    }

    function describeSpecial(text) {
        var special = specials[text];
        var parts = [special.service, special.url].filter(function(part) { return part; });
        return Words.clean(parts.join(" ")) || "Special sequence";
    }

    function type(text) {
        if (number.length < 60)
            fill(number + text);
    }

    function erase() {
        fill(number.slice(0, -1));
    }

    function call() {
        if (isSpecial(number))
            fill(number);
        else if (number !== "")
            callRequested(number);
    }

    // The reminder's number, which changes together with whether it exists.
    summary: {
        if (note !== "")
            return "dial pad: " + note;
        if (reminder.phoneNumber === "")
            return "dial pad";
        return "dial pad " + reminder.phoneNumber + (reminder.exists ? " (reminder)" : "");
    }

    Keys.onPressed: {
        if (event.key === Qt.Key_Backspace) {
            erase();
        } else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter) {
            call();
        } else if (/^[0-9*#+]$/.test(event.text)) {
            keys.flash(event.text);
            type(event.text);
        } else {
            return;
        }
        event.accepted = true;
    }

    Reminder {
        id: reminder

        _reminders: pad.reminders
        phoneNumber: pad.number
    }

    Timer {
        id: noteTimer

        interval: 4000
        running: pad.watched && pad.note !== ""
        onTriggered: pad.note = ""
    }

    Item {
        id: display

        anchors.bottom: keys.top
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: parent.top

        Label {
            anchors.left: parent.left
            anchors.leftMargin: Style.px(56)
            anchors.right: parent.right
            anchors.rightMargin: Style.px(56)
            anchors.verticalCenter: eraseButton.verticalCenter
            elide: Text.ElideLeft
            font.weight: Font.Light
            fontSizeMode: Text.HorizontalFit
            height: Style.px(52)
            minimumPixelSize: Math.max(1, Style.px(20))
            size: 38
            text: Words.display(pad.number)
        }

        ReminderMark {
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.top: eraseButton.bottom
            now: pad.now
            reminder: reminder
        }

        RoundButton {
            id: eraseButton

            anchors.right: parent.right
            anchors.rightMargin: Style.px(8)
            enabled: pad.number !== ""
            fill: "transparent"
            icon: "backspace"
            iconSize: 24
            ink: Style.dimText
            size: 48
            visible: enabled
            y: (parent.height - Style.px(56) - height) / 2 + Style.px(4)
            onClicked: pad.erase()
            onHeld: pad.fill("")
        }

        Rectangle {
            anchors.bottom: parent.bottom
            anchors.bottomMargin: Style.px(14)
            anchors.horizontalCenter: parent.horizontalCenter
            border.color: Style.outline
            border.width: Math.max(1, Style.px(1))
            color: Style.raised
            height: notice.height + Style.px(16)
            opacity: pad.note === "" ? 0 : 1
            radius: Math.min(height / 2, Style.px(18))
            visible: opacity > 0
            width: notice.width + Style.px(32)

            Behavior on opacity {
                enabled: pad.note !== ""
                NumberAnimation { duration: Style.duration }
            }

            Label {
                id: notice

                anchors.centerIn: parent
                maximumLineCount: 2
                size: 13
                text: pad.note
                width: Math.min(implicitWidth, display.width - Style.px(80))
                wrapMode: Text.Wrap
            }
        }
    }

    KeyGrid {
        id: keys

        anchors.bottom: callButton.top
        anchors.bottomMargin: Style.px(18)
        anchors.horizontalCenter: parent.horizontalCenter
        onTyped: pad.type(input)
    }

    RoundButton {
        id: callButton

        anchors.bottom: parent.bottom
        anchors.bottomMargin: Style.px(22)
        anchors.horizontalCenter: parent.horizontalCenter
        enabled: pad.number !== ""
        fill: Style.green
        icon: "call"
        size: 72
        onClicked: pad.call()
    }
}
