// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15

/// The actions that a rule can have. The current one is highlighted.
Row {
    id: root

    property var actions: ["none", "block", "allow", "hangup"]
    property string current
    property string name
    signal chosen(string action)

    spacing: 2

    Repeater {
        model: root.actions

        Act {
            highlighted: modelData === root.current
            Accessible.checkable: true
            Accessible.checked: highlighted
            objectName: root.name + " " + modelData
            subject: root.name
            text: modelData
            onClicked: root.chosen(modelData)
        }
    }
}
