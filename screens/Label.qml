// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

Text {
    property real size: 15
    /// Whether the text is only seen, because the item that it belongs to has it as its name.
    property bool silent: false

    Accessible.ignored: silent || !enabled || text === ""
    Accessible.name: text
    Accessible.role: Accessible.StaticText

    color: Style.text
    elide: Text.ElideRight
    font.family: Style.family
    font.pixelSize: Math.max(1, Style.px(size))
    horizontalAlignment: Text.AlignHCenter
    textFormat: Text.PlainText
    verticalAlignment: Text.AlignVCenter
}
