// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

/// One or two lines of text that tell what has happened.
Rectangle {
    id: notice

    property string text
    property real widest: Style.px(280)

    Accessible.ignored: !enabled || text === ""
    Accessible.name: text
    Accessible.role: Accessible.AlertMessage

    border.color: Style.outline
    border.width: Math.max(1, Style.px(1))
    color: Style.raised
    height: label.height + Style.px(16)
    opacity: text === "" ? 0 : 1
    radius: Math.min(height / 2, Style.px(18))
    visible: opacity > 0
    width: label.width + Style.px(32)

    Behavior on opacity {
        enabled: notice.text !== ""
        NumberAnimation { duration: Style.duration }
    }

    Label {
        id: label

        anchors.centerIn: parent
        maximumLineCount: 2
        silent: true
        size: 13
        text: notice.text
        width: Math.min(implicitWidth, notice.widest)
        wrapMode: Text.Wrap
    }
}
