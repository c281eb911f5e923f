// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

/// A ring around its parent while the parent has the keyboard focus.
Rectangle {
    anchors.fill: parent
    anchors.margins: -Style.px(4)
    border.color: Style.accent
    border.width: Math.max(1, Style.px(2))
    color: "transparent"
    visible: parent.activeFocus
}
