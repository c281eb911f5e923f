// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15

/// What a finger, a pointer or the keyboard can press.
Item {
    id: pressable

    readonly property bool tabStop: true
    readonly property alias down: area.pressed

    signal clicked()
    signal held()

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
