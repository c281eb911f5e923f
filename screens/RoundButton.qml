// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

Pressable {
    id: button

    property string icon
    property string label
    property real size: 68
    property real iconSize: size * 0.46
    property color fill: Style.raised
    property color ink: Style.text
    property bool checkable: false
    property bool checked: false

    name: label
    height: circle.height + (label === "" ? 0 : caption.height + Style.px(8))
    opacity: enabled ? 1 : 0.35
    width: Style.px(size)

    Accessible.checkable: checkable
    Accessible.checked: checked

    Behavior on opacity { NumberAnimation { duration: Style.duration } }

    Rectangle {
        id: circle

        color: button.checked ? Style.text : button.fill
        height: width
        radius: width / 2
        scale: button.down ? 0.94 : 1
        width: parent.width

        Behavior on color { ColorAnimation { duration: Style.duration } }
        Behavior on scale { NumberAnimation { duration: Style.duration } }

        Icon {
            anchors.centerIn: parent
            color: button.checked ? Style.backgroundBottom : button.ink
            name: button.icon
            size: button.iconSize
        }

        Rectangle {
            anchors.fill: parent
            color: "black"
            opacity: 0.2
            radius: width / 2
            visible: button.down
        }
    }

    FocusRing {
        anchors.bottomMargin: button.height - circle.height - Style.px(4)
        radius: height / 2
    }

    Label {
        id: caption

        anchors.bottom: parent.bottom
        anchors.horizontalCenter: parent.horizontalCenter
        color: Style.dimText
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: Math.max(1, Style.px(9))
        silent: true
        size: 12
        text: button.label
        visible: text !== ""
        width: parent.width + Style.px(20)
    }
}
