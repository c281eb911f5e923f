// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import QtQuick.Window 2.15

// A window that covers the display, also if there is no window manager to make it full screen.
Rectangle {
    color: "magenta"
    height: Screen.height
    width: Screen.width

    Component.onCompleted: console.info("loaded")
}
