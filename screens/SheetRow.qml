// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

Pressable {
    id: row

    property string text
    property string detail
    property color ink: Style.text

    name: text
    height: Style.px(46)

    Accessible.description: detail

    Rectangle {
        anchors.fill: parent
        color: row.down ? Style.outline : Style.raised
        radius: Style.px(12)
    }

    FocusRing {
        anchors.margins: 0
        radius: Style.px(12)
    }

    Label {
        anchors.left: parent.left
        anchors.leftMargin: Style.px(16)
        anchors.right: time.left
        anchors.rightMargin: time.text !== "" ? Style.px(12) : 0
        anchors.verticalCenter: parent.verticalCenter
        color: row.ink
        horizontalAlignment: Text.AlignLeft
        silent: true
        text: row.text
    }

    Label {
        id: time

        anchors.right: parent.right
        anchors.rightMargin: Style.px(16)
        anchors.verticalCenter: parent.verticalCenter
        color: Style.dimText
        silent: true
        size: 13
        text: row.detail
    }
}
