// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15

/// Another application that fills the screen.
Rectangle {
    color: "darkgreen"
    height: 640
    width: 360

    Component.onCompleted: __window.showFullScreen()
}
