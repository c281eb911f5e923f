// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import QtQuick.Window 2.15
import "../../screens"
import "../../screens/focus.js" as Focus

// The screens without their animations, as large as the display. Whenever a frame shows something else than the frame
// before, it reports the texts that can be read, with their places and colours, and the number of
// items that the keyboard can reach.
Item {
    id: probe

    property string reported
    property Item phone: null

    function findPhone(item) {
        for (var i = 0; phone === null && i < item.children.length; ++i) {
            if (item.children[i].topmost !== undefined)
                phone = item.children[i];
            else
                findPhone(item.children[i]);
        }
    }

    // Texts that are disabled need no contrast.
    function collect(item, texts) {
        if (!item.visible || !item.enabled)
            return;
        if (item.font !== undefined && item.text) {
            var place = item.mapToGlobal(0, 0);
            texts.push({text: item.text, color: item.color.toString(),
                        place: [place.x, place.y, item.width, item.height]});
        }
        for (var i = 0; i < item.children.length; ++i)
            collect(item.children[i], texts);
    }

    function report() {
        findPhone(probe);
        var isScreen = phone.topmost === phone.current.item;
        var texts = [];
        collect(isScreen ? phone : phone.topmost, texts);
        var text = JSON.stringify({summary: phone.topmost.summary, texts: texts,
                                   stops: Focus.stops(phone.topmost, []).length});
        if (text === reported)
            return;
        reported = text;
        console.info("seen: " + text);
    }

    height: Screen.height
    width: Screen.width

    Component.onCompleted: console.info("loaded")

    Connections {
        target: __window
        function onAfterAnimating() { probe.report(); }
    }

    Connections {
        target: Style
        function onAnimatedChanged() { Style.animated = false; }
    }

    Loader {
        anchors.fill: parent
        focus: true
        source: "../../screens/main.qml"
    }
}
