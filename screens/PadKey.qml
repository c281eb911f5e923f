// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."
import "text.js" as Words

Rectangle {
    id: key

    property string text
    property string letters
    property string heldText
    readonly property bool tabStop: true
    readonly property bool isSign: text === "*" || text === "#"
    readonly property string signName: text === "*" ? qsTr("Star") : text === "#" ? qsTr("Hash") : ""

    signal typed(string input)

    function flash() {
        fading.restart();
    }

    Accessible.description: letters
    Accessible.focusable: true
    Accessible.ignored: !enabled
    Accessible.name: signName || text
    Accessible.role: Accessible.Button
    Accessible.onPressAction: typed(text)

    color: Style.surface
    height: width
    radius: width / 2

    Keys.onPressed: {
        if ([Qt.Key_Return, Qt.Key_Enter, Qt.Key_Space].indexOf(event.key) < 0)
            return;
        event.accepted = true;
        flash();
        typed(text);
    }

    FocusRing { radius: height / 2 }

    Rectangle {
        id: glow

        anchors.fill: parent
        color: "white"
        opacity: 0
        radius: width / 2

        NumberAnimation on opacity {
            id: fading

            duration: Style.duration
            from: 0.24
            running: false
            to: 0
        }
    }

    Label {
        readonly property real signScale: key.text === "*" ? 0.52 : 0.36

        anchors.centerIn: parent
        anchors.verticalCenterOffset: key.isSign ? 0 : -key.width * 0.09
        font.pixelSize: Math.max(1, Math.round(key.width * (key.isSign ? signScale : 0.4)))
        font.weight: Font.Light
        silent: true
        text: Words.display(key.text)
    }

    Label {
        anchors.centerIn: parent
        anchors.verticalCenterOffset: key.width * 0.24
        color: Style.dimText
        silent: true
        font.letterSpacing: key.width * 0.02
        font.pixelSize: Math.max(1, Math.round(key.width * (key.letters === "+" ? 0.19 : 0.135)))
        text: key.letters
    }

    MouseArea {
        property bool spent: false

        anchors.fill: parent
        onCanceled: fading.restart()
        onPressAndHold: {
            spent = key.heldText !== "";
            if (spent)
                key.typed(key.heldText);
        }
        onPressed: {
            spent = false;
            fading.stop();
            glow.opacity = 0.24;
        }
        onReleased: {
            fading.restart();
            if (!spent && containsMouse)
                key.typed(key.text);
        }
    }
}
