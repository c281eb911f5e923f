// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import QtQuick.Controls 2.15

/// A button that runs a command.
Button {
    id: root

    /// What the command acts on, for those who only hear the name of the button.
    property string subject

    Accessible.name: subject === "" ? text : text + " " + subject

    font.pixelSize: Look.size
    horizontalPadding: 8
    implicitHeight: Look.row
    implicitWidth: Math.max(30, implicitContentWidth + leftPadding + rightPadding)
    verticalPadding: 2

    Keys.onEnterPressed: clicked()
    Keys.onReturnPressed: clicked()

    background: Rectangle {
        border.color: root.visualFocus ? Look.accent : "transparent"
        border.width: 2
        color: root.highlighted ? Look.accent : root.down ? Look.pressed : Look.raised
        opacity: root.enabled ? 1 : 0.4
        radius: 4
    }
    contentItem: Text {
        color: root.highlighted ? Look.accentText : Look.text
        font: root.font
        horizontalAlignment: Text.AlignHCenter
        opacity: root.enabled ? 1 : 0.5
        text: root.text
        verticalAlignment: Text.AlignVCenter
    }
}
