// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

Grid {
    id: grid

    property real keySize: 72

    signal typed(string input)

    function flash(text) {
        var wanted = text === "+" ? "0" : text;
        for (var i = 0; i < keys.count; ++i) {
            if (keys.itemAt(i).text === wanted)
                keys.itemAt(i).flash();
        }
    }

    // The keys are where they are on every phone.
    LayoutMirroring.childrenInherit: true
    LayoutMirroring.enabled: false

    columnSpacing: Style.px(keySize / 3)
    columns: 3
    rowSpacing: Style.px(keySize / 6)

    Repeater {
        id: keys

        model: [
            ["1", ""], ["2", "ABC"], ["3", "DEF"],
            ["4", "GHI"], ["5", "JKL"], ["6", "MNO"],
            ["7", "PQRS"], ["8", "TUV"], ["9", "WXYZ"],
            ["*", ""], ["0", "+"], ["#", ""]
        ]

        PadKey {
            heldText: modelData[0] === "0" ? "+" : ""
            letters: modelData[1]
            objectName: "key " + text
            text: modelData[0]
            width: Style.px(grid.keySize)
            onTyped: function(input) { grid.typed(input); }
        }
    }
}
