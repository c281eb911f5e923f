// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "../../screens"

// The screens below a plain colour, which a picture of the display is searched for.
Item {
    height: 640
    width: 360

    Component.onCompleted: console.info("loaded")

    Loader {
        anchors.fill: parent
        focus: true
        source: "../../screens/main.qml"
    }

    Rectangle {
        anchors.fill: parent
        color: "lime"
        z: 1
    }
}
