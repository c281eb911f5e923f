// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0
import "."
import "text.js" as Words

/// A small bell and the time when the reminder is due; nothing if there is no reminder.
Item {
    id: mark

    property Reminder reminder
    property date now
    // Without a number there is no reminder, whatever the object last reported.
    readonly property bool marked: reminder !== null && reminder.exists && reminder.phoneNumber !== ""

    height: Style.px(20)
    opacity: marked ? 1 : 0
    width: row.width

    Row {
        id: row

        anchors.centerIn: parent
        spacing: Style.px(5)

        Icon {
            anchors.verticalCenter: parent.verticalCenter
            color: Style.accent
            name: "bell"
            size: 15
        }

        Label {
            anchors.verticalCenter: parent.verticalCenter
            color: Style.accent
            size: 13
            text: mark.marked ? Words.due(mark.reminder.when, mark.now) : ""
        }
    }
}
