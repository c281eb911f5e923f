// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

Item {
    property bool current: false
    /// What a screen reader calls the screen.
    property string title
    /// The description of the screen's content that is reported in the log.
    property string summary

    signal closeRequested()

    Accessible.focusable: true
    Accessible.ignored: !enabled
    Accessible.name: title
    Accessible.role: Accessible.Pane

    anchors.fill: parent
    enabled: current
    opacity: current ? 1 : 0
    visible: current || opacity > 0

    Keys.onEscapePressed: closeRequested()

    Behavior on opacity { NumberAnimation { duration: Style.duration } }
}
