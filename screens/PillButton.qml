// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

Pressable {
    id: pill

    property string text

    name: text
    height: Style.px(46)

    Rectangle {
        anchors.fill: parent
        color: pill.down ? Style.outline : Style.raised
        radius: height / 2
    }

    FocusRing { radius: height / 2 }

    Label {
        anchors.centerIn: parent
        color: Style.accent
        font.bold: true
        silent: true
        text: pill.text
    }
}
