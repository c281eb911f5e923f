// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "../../screens"

// The screens without their animations. Whenever a frame shows named items at other places
// than the frame before, it reports the places of all: rectangles of the display, by name. It also
// reports which of them has the keyboard focus.
Item {
    id: probe

    property string reported
    readonly property string focused: nameOf(__window.activeFocusItem)

    function nameOf(item) {
        while (item && item.objectName === "")
            item = item.parent;
        return item ? item.objectName : "";
    }

    function collect(item, places) {
        if (!item.visible || !item.enabled)
            return;
        if (item.objectName !== "") {
            var corner = item.mapToGlobal(0, 0);
            places[item.objectName] = [corner.x, corner.y, item.width, item.height];
        }
        for (var i = 0; i < item.children.length; ++i)
            collect(item.children[i], places);
    }

    function report() {
        var places = {};
        collect(probe, places);
        var text = JSON.stringify(places);
        if (text === reported)
            return;
        reported = text;
        console.info("places: " + text);
    }

    height: 640
    objectName: "screens"
    width: 360

    onFocusedChanged: console.info("focus: " + focused)

    // The layout of a frame is final when this is emitted.
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
