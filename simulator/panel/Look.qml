// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

pragma Singleton

import QtQuick 2.15

QtObject {
    readonly property string fixedPitch: "monospace"
    readonly property int size: 12
    readonly property int gap: 6
    readonly property int row: 24

    readonly property color background: "#141a26"
    readonly property color surface: "#1d2535"
    readonly property color well: "#0d121b"
    readonly property color raised: "#2f3b52"
    readonly property color pressed: "#46587a"
    readonly property color outline: "#3a4761"
    readonly property color text: "#f3f6fa"
    readonly property color dimText: "#a4b2c8"
    readonly property color accent: "#7db4ff"
    readonly property color accentText: "#0a0d13"
    readonly property color good: "#4cc07a"
    readonly property color bad: "#ff8087"
    readonly property color alert: "#8f2530"
}
