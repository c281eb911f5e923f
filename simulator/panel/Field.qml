// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15

/// A text field of one line, with its label in it.
TextField {
    id: root

    property string label

    Accessible.name: label

    Layout.fillWidth: true
    bottomPadding: 2
    color: Look.text
    font.pixelSize: Look.size
    implicitHeight: Look.row
    implicitWidth: 80
    leftPadding: 12 + caption.implicitWidth
    placeholderTextColor: Look.dimText
    rightPadding: 6
    selectByMouse: true
    selectedTextColor: Look.accentText
    selectionColor: Look.accent
    topPadding: 2
    verticalAlignment: TextInput.AlignVCenter

    background: Rectangle {
        border.color: root.activeFocus ? Look.accent : Look.outline
        color: Look.well
        radius: 4

        Text {
            id: caption

            anchors.left: parent.left
            anchors.leftMargin: 6
            anchors.verticalCenter: parent.verticalCenter
            color: Look.dimText
            font.pixelSize: Look.size
            text: root.label
        }
    }
}
