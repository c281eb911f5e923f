// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0
import "."
import "text.js" as Words

BaseScreen {
    id: card

    property string number
    property RemindersBase reminders
    property Sims sims
    property Line line
    property date now
    /// The call from this number that the user has missed; null if the card has another reason.
    property var missed: null
    readonly property bool callable: number !== "" && (sims.mayDial || line.isEmergency(number))
    readonly property alias reminder: reminder

    /// Shows a number, and the call from it that was missed, or null.
    function show(newNumber, newMissed) {
        missed = newMissed;
        number = newNumber;
    }

    signal callRequested(string number)
    signal remindRequested(string number)

    // Use the reminder's number, which changes together with its state.
    summary: {
        var word = missed !== null ? "missed" : "contact";
        if (reminder.phoneNumber === "")
            return word;
        return word + " " + reminder.phoneNumber + (reminder.exists ? " (reminder)" : "");
    }

    title: number !== "" ? qsTr("Contact card of %1").arg(Words.isolated(number)) : qsTr("Contact card")

    Keys.onPressed: {
        if (event.key !== Qt.Key_Return && event.key !== Qt.Key_Enter)
            return;
        if (callable)
            callRequested(number);
        else
            barred.stress();
        event.accepted = true;
    }

    BarredStrip {
        id: barred

        line: card.line
        sims: card.sims
        width: parent.width
    }

    Reminder {
        id: reminder

        _reminders: card.reminders
        phoneNumber: card.number
    }

    Pane {
        anchors.top: barred.bottom

        Column {
            anchors.left: parent.left
            anchors.margins: Style.px(24)
            anchors.right: parent.right
            spacing: Style.px(6)
            y: Style.wide ? (parent.height - height) / 2 : (buttons.y - height) * 0.45

            Avatar {
                anchors.horizontalCenter: parent.horizontalCenter
                size: 132
            }

            Item {
                height: Style.px(16)
                width: 1
            }

            Label {
                font.weight: Font.Light
                fontSizeMode: Text.HorizontalFit
                height: Style.px(46)
                minimumPixelSize: Math.max(1, Style.px(18))
                size: 34
                text: {
                    if (card.missed !== null)
                        return Words.caller(card.missed);
                    return card.number !== "" ? Words.display(card.number) : qsTr("No number");
                }
                width: parent.width
            }

            Label {
                color: card.missed !== null ? Style.alert : Style.dimText
                size: 14
                text: card.missed !== null ? qsTr("Missed call, %1").arg(card.missed.time)
                                           : qsTr("Not in your contacts")
                width: parent.width
            }

            ReminderMark {
                anchors.horizontalCenter: parent.horizontalCenter
                now: card.now
                reminder: reminder
            }
        }
    }

    Pane {
        anchors.top: barred.bottom
        second: true

        Row {
            id: buttons

            anchors.horizontalCenter: parent.horizontalCenter
            spacing: Style.px(44)
            y: Style.wide ? (parent.height - height) / 2 : parent.height - height - Style.px(32)

            RoundButton {
                enabled: card.callable
                fill: Style.green
                icon: "call"
                label: qsTr("Call")
                onClicked: card.callRequested(card.number)
            }

            RoundButton {
                enabled: card.number !== ""
                icon: "bell"
                label: qsTr("Remind me")
                objectName: "remind"
                onClicked: card.remindRequested(card.number)
            }

            RoundButton {
                icon: "close"
                label: qsTr("Close")
                onClicked: card.closeRequested()
            }
        }
    }
}
