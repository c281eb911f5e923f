// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15

/// An item that can be pressed with a finger, a pointer or the keyboard.
Item {
    id: pressable

    /// What it does, for a screen reader.
    property string name
    readonly property bool tabStop: true
    readonly property alias down: area.pressed

    signal clicked()
    signal held()

    Accessible.focusable: true
    Accessible.ignored: !enabled // A screen reader cannot be told that it is disabled.
    Accessible.name: name
    Accessible.role: Accessible.Button
    Accessible.onPressAction: clicked()

    Keys.onPressed: {
        if ([Qt.Key_Return, Qt.Key_Enter, Qt.Key_Space].indexOf(event.key) < 0)
            return;
        event.accepted = true;
        if (!event.isAutoRepeat)
            clicked();
    }

    MouseArea {
        id: area

        anchors.fill: parent
        onClicked: pressable.clicked()
        onPressAndHold: pressable.held()
    }
}
