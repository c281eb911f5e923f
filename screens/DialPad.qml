// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0
import "."
import "text.js" as Words

BaseScreen {
    id: pad

    property string number
    /// What has just happened, as texts for the user ("shown") and the log ("logged"); null for
    /// nothing.
    property var note: null
    property var specials
    /// The typed special sequence, with its service and URL; null for none.
    property var special: null
    property bool watched: false
    property RemindersBase reminders
    property Sims sims
    property Line line
    property date now
    readonly property real buttonsHeight: Style.px(112)
    readonly property bool callable: number !== "" && (sims.mayDial || line.isEmergency(number))

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
        note = null;
    }

    function notify(happened) {
        note = happened;
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
        if (note !== null)
            return "dial pad: " + note.logged;
        if (special !== null)
            return ["special", special.sequence, special.target].join(" ").trim();
        var typed = reminder.phoneNumber === "" ? "" : " " + reminder.phoneNumber;
        var mark = typed !== "" && reminder.exists ? " (reminder)" : "";
        return "dial pad" + typed + mark + (sims.mayDial ? "" : " (barred)");
    }

    title: qsTr("Dial pad")

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
        running: pad.watched && pad.note !== null
        onTriggered: pad.note = null
    }

    BarredStrip {
        id: barred

        line: pad.line
        sims: pad.sims
        width: parent.width
    }

    Pane {
        id: display

        anchors.bottomMargin: Style.wide ? buttonsHeight : parent.height - keysPane.y - keys.y
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

            // It is behind the number, which is written from left to right.
            LayoutMirroring.enabled: false
            anchors.right: parent.right
            anchors.rightMargin: Style.px(8)
            enabled: pad.number !== ""
            fill: "transparent"
            icon: "backspace"
            iconSize: 24
            name: qsTr("Erase")
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
                if (pad.note !== null)
                    return pad.note.shown;
                if (pad.special === null)
                    return "";
                var parts = [pad.special.service, pad.special.url].map(Words.clean);
                return parts.filter(function(part) { return part !== ""; }).join("  ·  ")
                        || qsTr("Special sequence");
            }
            widest: display.width - Style.px(80)
        }
    }

    Pane {
        id: keysPane

        anchors.top: barred.bottom
        second: true

        KeyGrid {
            id: keys

            anchors.horizontalCenter: parent.horizontalCenter
            y: Style.wide ? (parent.height - height) / 2 : parent.height - buttonsHeight - height
            onTyped: function(input) { pad.type(input); }
        }
    }

    Pane {
        readonly property real offset: Style.px(96)

        RoundButton {
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.horizontalCenterOffset: -parent.offset
            anchors.top: callButton.top
            anchors.topMargin: Style.px(4)
            fill: "transparent"
            icon: "bell"
            ink: Style.dimText
            label: qsTr("Reminders")
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
            name: pad.special !== null ? qsTr("Open") : qsTr("Call")
            objectName: "call"
            size: 72
            onClicked: pad.call()
        }

        RoundButton {
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.horizontalCenterOffset: parent.offset
            anchors.top: callButton.top
            anchors.topMargin: Style.px(4)
            fill: "transparent"
            icon: "message"
            ink: Style.dimText
            label: qsTr("Replies")
            size: 48
            onClicked: pad.repliesRequested()
        }
    }
}
