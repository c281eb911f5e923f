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
    /// The typed special sequence, with its service and URL; null for none.
    property var special: null
    property bool watched: false
    property RemindersBase reminders
    property Sims sims
    property date now
    readonly property bool callable: number !== "" && (sims.mayDial || Words.isEmergency(number))

    signal callRequested(string number)
    signal specialRequested(string service, string url)
    signal repliesRequested()
    signal remindersRequested()

    function find(text) {
        if (text === "")
            return null;
        if (specials === undefined)
            specials = __specials; // Only now: there may be thousands, and the screen comes first.
        if (!Object.prototype.hasOwnProperty.call(specials, text))
            return null;
        var service = specials[text].service || "";
        var url = specials[text].url || "";
        return {sequence: text, service: service, url: url, target: Words.clean(url || service)};
    }

    // Set a special sequence before its number is shown, and reset it after the number is gone.
    function fill(text) {
        var found = find(text);
        if (found !== null)
            special = found;
        number = text;
        special = found;
        note = "";
    }

    function notify(text) {
        note = text;
        if (noteTimer.running)
            noteTimer.restart();
    }

    function type(text) {
        if (number.length < 60)
            fill(number + text);
    }

    function erase() {
        fill(number.slice(0, -1));
    }

    function call() {
        if (special !== null)
            specialRequested(special.service, special.url);
        else if (number !== "")
            callRequested(number);
    }

    /// Draws attention to the reason why there is no call.
    function refuse() {
        barred.stress();
    }

    // Use the reminder's number, which changes together with its state.
    summary: {
        if (note !== "")
            return "dial pad: " + note;
        if (special !== null)
            return ["special", special.sequence, special.target].join(" ").trim();
        var typed = reminder.phoneNumber === "" ? "" : " " + reminder.phoneNumber;
        var mark = typed !== "" && reminder.exists ? " (reminder)" : "";
        return "dial pad" + typed + mark + (sims.mayDial ? "" : " (barred)");
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
        forceActiveFocus(); // The next key belongs to the number, too.
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

    BarredStrip {
        id: barred

        sims: pad.sims
        width: parent.width
    }

    Item {
        id: display

        anchors.bottom: keys.top
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.top: barred.bottom

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
            visible: notice.text === ""
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
            y: Math.max(0, (parent.height - Style.px(56) - height) / 2 + Style.px(4))
            onClicked: pad.erase()
            onHeld: pad.fill("")
        }

        Notice {
            id: notice

            anchors.bottom: parent.bottom
            anchors.bottomMargin: Style.px(14)
            anchors.horizontalCenter: parent.horizontalCenter
            text: {
                if (pad.note !== "" || pad.special === null)
                    return pad.note;
                var parts = [pad.special.service, pad.special.url].map(Words.clean);
                return parts.filter(function(part) { return part !== ""; }).join("  ·  ")
                        || "Special sequence";
            }
            widest: display.width - Style.px(80)
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
        anchors.horizontalCenter: keys.left
        anchors.horizontalCenterOffset: Style.px(36)
        anchors.top: callButton.top
        anchors.topMargin: Style.px(4)
        fill: "transparent"
        icon: "bell"
        ink: Style.dimText
        label: "Reminders"
        size: 48
        onClicked: pad.remindersRequested()
    }

    RoundButton {
        id: callButton

        anchors.bottom: parent.bottom
        anchors.bottomMargin: Style.px(22)
        anchors.horizontalCenter: parent.horizontalCenter
        enabled: pad.special !== null || pad.callable
        fill: pad.special !== null ? Style.raised : Style.green
        icon: pad.special !== null ? "page" : "call"
        objectName: "call"
        size: 72
        onClicked: pad.call()
    }

    RoundButton {
        anchors.horizontalCenter: keys.right
        anchors.horizontalCenterOffset: -Style.px(36)
        anchors.top: callButton.top
        anchors.topMargin: Style.px(4)
        fill: "transparent"
        icon: "message"
        ink: Style.dimText
        label: "Replies"
        size: 48
        onClicked: pad.repliesRequested()
    }
}
