// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15

/// A text field of one line.
TextField {
    id: root

    Layout.fillWidth: true
    bottomPadding: 2
    color: Look.text
    font.pixelSize: Look.size
    implicitHeight: Look.row
    implicitWidth: 80
    leftPadding: 6
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
    }
}
