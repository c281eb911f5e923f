// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

/// A box above all screens, which the user has to answer.
Rectangle {
    id: dialog

    property bool open: false
    /// What a screen reader calls it.
    property string title
    property string summary
    property alias icon: picture.name
    property alias heading: heading.text
    property alias text: body.text
    /// What is below the text.
    default property alias content: extra.data

    signal closeRequested()

    Accessible.focusable: true
    Accessible.ignored: !enabled
    Accessible.name: title
    Accessible.role: Accessible.Dialog

    anchors.fill: parent
    color: Style.shade
    enabled: open
    opacity: open ? 1 : 0
    title: heading.text
    visible: open || opacity > 0

    Behavior on opacity { NumberAnimation { duration: Style.duration } }

    Keys.onEscapePressed: closeRequested()
    onCloseRequested: open = false

    MouseArea {
        anchors.fill: parent
    }

    Rectangle {
        anchors.centerIn: parent
        border.color: Style.outline
        border.width: Math.max(1, Style.px(1))
        color: Style.surface
        height: column.height + Style.px(48)
        radius: Style.px(20)
        scale: dialog.open ? 1 : 0.95
        width: Style.px(304)

        Behavior on scale { NumberAnimation { duration: Style.duration } }

        Column {
            id: column

            anchors.left: parent.left
            anchors.margins: Style.px(24)
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            spacing: Style.px(12)

            Icon {
                id: picture

                anchors.horizontalCenter: parent.horizontalCenter
                color: Style.accent
                size: 40
                visible: name !== ""
            }

            Label {
                id: heading

                font.bold: true
                size: 17
                visible: text !== ""
                width: parent.width
                wrapMode: Text.Wrap
            }

            Label {
                id: body

                color: Style.dimText
                lineHeight: 1.15
                maximumLineCount: 10
                size: 14
                visible: text !== ""
                width: parent.width
                wrapMode: Text.Wrap
            }

            Column {
                id: extra

                spacing: Style.px(8)
                topPadding: Style.px(4)
                width: parent.width
            }
        }
    }
}
