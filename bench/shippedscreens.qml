// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import QtQuick.Window 2.15

// The screens that the project ships. They log when they are loaded, when they are drawn, and when
// they can phone.
Item {
    id: screens

    readonly property Item phone: {
        for (var i = 0; i < loader.item.children.length; ++i) {
            if (loader.item.children[i].line !== undefined)
                return loader.item.children[i];
        }
        return null;
    }
    readonly property bool ready: phone.line.status === "ready"

    height: 640
    width: 360

    Component.onCompleted: console.info("completed")
    onReadyChanged: console.info("ready")

    Loader {
        id: loader

        anchors.fill: parent
        focus: true
        source: "../screens/main.qml"
    }

    Connections {
        id: firstFrame

        target: screens.Window.window

        function onAfterRendering() {
            firstFrame.enabled = false;
            console.info("drawn");
        }
    }
}
