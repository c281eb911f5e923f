// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

Text {
    property real size: 15

    color: Style.text
    elide: Text.ElideRight
    font.family: Style.family
    font.pixelSize: Math.max(1, Style.px(size))
    horizontalAlignment: Text.AlignHCenter
    textFormat: Text.PlainText
    verticalAlignment: Text.AlignVCenter
}
