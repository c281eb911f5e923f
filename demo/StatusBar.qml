// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

Item {
    id: bar

    property bool watched: false
    property bool inCall: false
    property date now: new Date()

    height: Style.px(28)

    Timer {
        interval: 1000
        repeat: true
        running: bar.watched
        triggeredOnStart: true
        onTriggered: bar.now = new Date()
    }

    Icon {
        anchors.left: parent.left
        anchors.leftMargin: Style.px(14)
        anchors.verticalCenter: parent.verticalCenter
        color: Style.green
        name: "call"
        size: 14
        visible: bar.inCall
    }

    Label {
        anchors.centerIn: parent
        font.bold: true
        size: 12
        text: Qt.formatTime(bar.now, "hh:mm")
    }
}
