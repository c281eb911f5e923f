// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

pragma Singleton

import QtQuick 2.15

QtObject {
    property real unit: 1
    /// Whether there is room for the parts of a screen side by side.
    property bool wide: false
    property bool animated: false
    readonly property int duration: animated ? 170 : 0

    readonly property string family: "DejaVu Sans"

    // Each text has a contrast of 4.5 to 1 at least with what it is on.
    readonly property color backgroundTop: "#1a2130"
    readonly property color backgroundBottom: "#0a0d13"
    readonly property color surface: "#202838"
    readonly property color raised: "#2a3549"
    readonly property color outline: "#323d52"
    readonly property color text: "#f3f6fa"
    readonly property color dimText: "#9dabc0"
    readonly property color accent: "#7db4ff"
    readonly property color alert: "#ff8087"
    readonly property color green: "#1b8043"
    readonly property color red: "#d0303c"
    readonly property color warning: "#3d2229"
    readonly property color shade: "#b8000000"

    function px(length) {
        return Math.round(length * unit);
    }
}
