// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

Rectangle {
    id: avatar

    property real size: 116

    border.color: Style.outline
    border.width: Math.max(1, Style.px(1))
    color: Style.raised
    height: width
    radius: width / 2
    width: Style.px(size)

    Icon {
        anchors.centerIn: parent
        color: Style.accent
        name: "person"
        size: avatar.size * 0.6
    }
}
