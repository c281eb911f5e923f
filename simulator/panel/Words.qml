// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15

/// A text for display.
Text {
    Accessible.ignored: text === ""
    Accessible.name: text
    Accessible.role: Accessible.StaticText

    color: Look.text
    elide: Text.ElideRight
    font.pixelSize: Look.size
    textFormat: Text.PlainText
    verticalAlignment: Text.AlignVCenter
}
