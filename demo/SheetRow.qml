// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

Rectangle {
    id: row

    property string text
    property string detail
    property color ink: Style.text

    signal clicked()

    color: area.pressed ? Style.outline : Style.raised
    height: Style.px(46)
    radius: Style.px(12)

    Label {
        anchors.left: parent.left
        anchors.leftMargin: Style.px(16)
        anchors.verticalCenter: parent.verticalCenter
        color: row.ink
        text: row.text
    }

    Label {
        anchors.right: parent.right
        anchors.rightMargin: Style.px(16)
        anchors.verticalCenter: parent.verticalCenter
        color: Style.dimText
        size: 13
        text: row.detail
    }

    MouseArea {
        id: area

        anchors.fill: parent
        onClicked: row.clicked()
    }
}
