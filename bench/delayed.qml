// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0

// A screen that can be slow on purpose: after the argument -busy, "start", "request" or "frame" says
// when it does nothing for 20 ms. bench/peers --self-test has to see them.
Rectangle {
    id: screen

    readonly property string busy: {
        var all = Qt.application.arguments;
        var place = all.indexOf("-busy");
        return place < 0 ? "" : all[place + 1];
    }

    function waste(moment) {
        if (moment !== busy)
            return;
        var end = Date.now() + 21; // Its clock has full milliseconds: 20 and a half on average.
        while (Date.now() < end) { }
    }

    width: 360
    height: 640
    color: "#101820"

    Text {
        anchors.fill: parent
        color: "white"
        font.pixelSize: 60
        text: "1 2 3\n4 5 6\n7 8 9"
    }

    ParleyUiAdaptor {
        onOpenUrl: {
            screen.waste("request");
            __window.show();
        }
    }

    Connections {
        target: __window

        function onBeforeRendering() {
            screen.waste("frame");
        }
    }

    Component.onCompleted: waste("start")
}
