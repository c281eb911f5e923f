// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import QtQuick.Layouts 1.15

Section {
    id: root

    readonly property var items: panel.alarms.items
    property double now: 0

    function two(number) {
        return (number < 10 ? "0" : "") + number;
    }

    function timeLeft(due) {
        var seconds = Math.max(0, Math.ceil((due - now) / 1000));
        return Math.floor(seconds / 3600) + ":" + two(Math.floor(seconds / 60) % 60)
            + ":" + two(seconds % 60);
    }

    title: "Alarms"
    onItemsChanged: now = Date.now()

    Timer {
        interval: 500
        repeat: true
        running: root.items.length > 0
        onTriggered: root.now = Date.now()
    }
    Repeater {
        model: panel.alarms

        RowLayout {
            id: row

            required property var entry

            spacing: Look.gap

            Words {
                Layout.preferredWidth: 64
                font.bold: true
                objectName: "left " + row.entry.cookie
                text: root.timeLeft(row.entry.due)
            }
            Words {
                Layout.fillWidth: true
                text: row.entry.cookie + ": " + row.entry.title
                    + (row.entry.title === row.entry.number ? "" : ", " + row.entry.number)
            }
            Act {
                objectName: "fire " + row.entry.cookie
                subject: "alarm " + row.entry.cookie
                text: "Fire"
                onClicked: panel.run(["fire", row.entry.cookie])
            }
            Act {
                objectName: "cancel " + row.entry.cookie
                subject: "alarm " + row.entry.cookie
                text: "Cancel"
                onClicked: panel.run(["cancel", row.entry.cookie])
            }
        }
    }
    RowLayout {
        spacing: Look.gap

        Field {
            id: number

            objectName: "remindNumber"
            label: "Number"
            text: "5550123"
            onAccepted: remind.clicked()
        }
        Field {
            id: seconds

            objectName: "remindSeconds"
            label: "Seconds"
            text: "600"
            onAccepted: remind.clicked()
        }
        Field {
            id: name

            objectName: "remindName"
            label: "Name"
            text: "Ada"
            onAccepted: remind.clicked()
        }
    }
    Act {
        id: remind

        Layout.alignment: Qt.AlignRight
        objectName: "remind"
        text: "Leave a reminder"
        onClicked: panel.run(["remind", number.text, seconds.text, name.text])
    }
}
