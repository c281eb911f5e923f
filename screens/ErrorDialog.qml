// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

Rectangle {
    id: dialog

    property bool open: false
    readonly property string summary: "cellular error"

    Accessible.focusable: true
    Accessible.ignored: !enabled
    Accessible.name: heading.text
    Accessible.role: Accessible.Dialog

    color: Style.shade
    enabled: open
    opacity: open ? 1 : 0
    visible: open || opacity > 0

    Behavior on opacity { NumberAnimation { duration: Style.duration } }

    Keys.onPressed: {
        if ([Qt.Key_Return, Qt.Key_Enter, Qt.Key_Space, Qt.Key_Escape].indexOf(event.key) < 0)
            return;
        open = false;
        event.accepted = true;
    }

    MouseArea {
        anchors.fill: parent
    }

    Rectangle {
        anchors.centerIn: parent
        border.color: Style.outline
        border.width: Math.max(1, Style.px(1))
        color: Style.surface
        height: content.height + Style.px(48)
        radius: Style.px(20)
        scale: dialog.open ? 1 : 0.95
        width: Style.px(304)

        Behavior on scale { NumberAnimation { duration: Style.duration } }

        Column {
            id: content

            anchors.left: parent.left
            anchors.margins: Style.px(24)
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            spacing: Style.px(12)

            Icon {
                anchors.horizontalCenter: parent.horizontalCenter
                color: Style.alert
                name: "network"
                size: 40
            }

            Label {
                id: heading

                font.bold: true
                size: 17
                text: qsTr("Cellular network unavailable")
                width: parent.width
                wrapMode: Text.Wrap
            }

            Label {
                color: Style.dimText
                lineHeight: 1.15
                size: 14
                text: qsTr("Calls cannot be made now. Check the SIM card and the network settings, "
                           + "and try again.")
                width: parent.width
                wrapMode: Text.Wrap
            }

            Item {
                height: Style.px(4)
                width: 1
            }

            PillButton {
                text: qsTr("OK")
                width: parent.width
                onClicked: dialog.open = false
            }
        }
    }
}
