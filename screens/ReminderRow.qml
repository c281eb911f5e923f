// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0
import "."
import "text.js" as Words

/// One number to call back, visible while it has a reminder.
Item {
    id: row

    property string number
    property RemindersBase reminders
    property date now
    readonly property alias marked: reminder.exists
    readonly property alias when: reminder.when
    readonly property bool focused: body.activeFocus || removeButton.activeFocus

    signal chosen()

    function remove() {
        reminder.remove();
    }

    Accessible.ignored: !enabled
    Accessible.name: body.name
    Accessible.role: Accessible.ListItem

    height: Style.px(60)
    visible: marked

    Reminder {
        id: reminder

        _reminders: row.reminders
        phoneNumber: row.number
    }

    Pressable {
        id: body

        anchors.bottom: parent.bottom
        anchors.left: parent.left
        anchors.right: removeButton.left
        anchors.rightMargin: Style.px(6)
        anchors.top: parent.top
        name: Words.display(row.number)
        onClicked: row.chosen()

        Accessible.description: due.text

        Rectangle {
            anchors.fill: parent
            border.color: Style.outline
            border.width: Math.max(1, Style.px(1))
            color: body.down ? Style.outline : Style.surface
            radius: Style.px(12)
        }

        FocusRing {
            anchors.margins: 0
            radius: Style.px(12)
        }

        Column {
            anchors.left: parent.left
            anchors.margins: Style.px(14)
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            spacing: Style.px(3)

            Label {
                horizontalAlignment: Text.AlignLeft
                silent: true
                size: 17
                text: body.name
                width: parent.width
            }

            Label {
                id: due

                color: Style.accent
                horizontalAlignment: Text.AlignLeft
                silent: true
                size: 13
                text: row.marked ? Words.left(row.when, row.now) + "  ·  " + Words.due(row.when, row.now) : ""
                width: parent.width
            }
        }
    }

    RoundButton {
        id: removeButton

        anchors.right: parent.right
        anchors.rightMargin: Style.px(4) // room for the focus ring
        anchors.verticalCenter: parent.verticalCenter
        fill: "transparent"
        icon: "remove"
        iconSize: 20
        name: qsTr("Remove the reminder for %1").arg(Words.isolated(row.number))
        ink: Style.dimText
        size: 42
        onClicked: row.remove()
    }
}
