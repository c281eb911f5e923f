// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

/// Shows why calls do not get through, for as long as they do not.
Rectangle {
    id: strip

    property Sims sims
    property Line line
    readonly property string reason: line.trouble || sims.reason

    function stress() {
        flash.restart();
    }

    clip: true
    color: Style.warning
    height: reason !== "" ? Style.px(50) : 0
    visible: height > 0

    Behavior on height { NumberAnimation { duration: Style.duration } }

    Rectangle {
        anchors.fill: parent
        color: Style.red
        opacity: 0

        NumberAnimation on opacity {
            id: flash

            duration: Style.duration * 3
            from: 0.6
            running: false
            to: 0
        }
    }

    Icon {
        id: icon

        anchors.left: parent.left
        anchors.leftMargin: Style.px(16)
        anchors.verticalCenter: parent.verticalCenter
        color: Style.alert
        name: "barred"
        size: 20
    }

    Column {
        anchors.left: icon.right
        anchors.leftMargin: Style.px(12)
        anchors.right: parent.right
        anchors.rightMargin: Style.px(12)
        anchors.verticalCenter: parent.verticalCenter
        spacing: Style.px(2)

        Label {
            fontSizeMode: Text.HorizontalFit
            horizontalAlignment: Text.AlignLeft
            minimumPixelSize: Math.max(1, Style.px(9))
            size: 12
            text: strip.reason
            width: parent.width
        }

        Label {
            color: Style.dimText
            horizontalAlignment: Text.AlignLeft
            size: 11
            text: qsTr("Emergency numbers can still be called")
            visible: strip.line.trouble === "" && !strip.sims.mayDial
            width: parent.width
        }
    }
}
