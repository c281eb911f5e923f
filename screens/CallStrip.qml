// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

/// Leads from the other screens back to a call.
Pressable {
    id: strip

    property string text
    property bool open: false

    name: text
    clip: true
    enabled: open
    height: open ? Style.px(36) : 0
    visible: height > 0

    Behavior on height { NumberAnimation { duration: Style.duration } }

    Rectangle {
        anchors.fill: parent
        color: strip.down ? Qt.darker(Style.green, 1.2) : Style.green
    }

    FocusRing {
        anchors.margins: 0
        border.color: Style.text
    }

    Label {
        anchors.centerIn: parent
        elide: Text.ElideMiddle
        font.bold: true
        silent: true
        size: 13
        text: strip.text
        width: parent.width - Style.px(40)
    }
}
