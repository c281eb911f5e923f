// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import QtQuick.Window 2.15

// A dial pad that uses only Qt Quick, so that any host can show it. It logs when it is loaded and
// when it is drawn. bench/run waits for these lines, and callgrind writes its counts at each.
Rectangle {
    id: screens

    property string number

    width: 540
    height: 960
    color: "#101820"

    Text {
        anchors.horizontalCenter: parent.horizontalCenter
        y: 80
        text: screens.number || "Phone"
        color: "white"
        font.pixelSize: 60
    }

    Grid {
        anchors.centerIn: parent
        columns: 3
        spacing: 20

        Repeater {
            model: ["1", "2", "3", "4", "5", "6", "7", "8", "9", "*", "0", "#"]

            Rectangle {
                width: 140
                height: 100
                radius: 12
                color: keyArea.pressed ? "#406080" : "#203040"

                Text {
                    anchors.centerIn: parent
                    text: modelData
                    color: "white"
                    font.pixelSize: 40
                }

                MouseArea {
                    id: keyArea
                    anchors.fill: parent
                    onClicked: screens.number += modelData
                }
            }
        }
    }

    Connections {
        id: firstFrame
        target: screens.Window.window

        function onFrameSwapped() {
            firstFrame.enabled = false;
            console.info("drawn");
        }
    }

    Component.onCompleted: console.info("completed")
}
