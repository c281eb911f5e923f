// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

Rectangle {
    id: strip

    property Call call
    property bool open: false

    signal clicked()

    clip: true
    color: area.pressed ? Qt.darker(Style.green, 1.2) : Style.green
    height: open ? Style.px(36) : 0
    visible: height > 0

    Behavior on height { NumberAnimation { duration: Style.duration } }

    Label {
        anchors.centerIn: parent
        elide: Text.ElideMiddle
        font.bold: true
        size: 13
        text: strip.call.number + "  ·  " + strip.call.state
        width: parent.width - Style.px(40)
    }

    MouseArea {
        id: area

        anchors.fill: parent
        onClicked: strip.clicked()
    }
}
