// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15

/// The transcript of the session, and a field for a command.
Section {
    id: root

    readonly property int mostLines: 1000

    function add(line) {
        var atEnd = flickable.atYEnd;
        area.append(line);
        if (area.lineCount > mostLines)
            area.remove(0, area.text.indexOf("\n") + 1);
        if (atEnd)
            Qt.callLater(toEnd);
    }

    function toEnd() {
        flickable.contentY = Math.max(0, flickable.contentHeight - flickable.height);
    }

    title: "Transcript"
    Component.onCompleted: {
        area.text = panel.printedSoFar();
        Qt.callLater(toEnd);
    }

    Connections {
        target: panel

        function onPrinted(line) {
            root.add(line);
        }
    }
    Flickable {
        id: flickable

        Layout.fillHeight: true
        Layout.fillWidth: true
        ScrollBar.vertical: ScrollBar {}
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        contentHeight: area.height
        contentWidth: width
        onHeightChanged: Qt.callLater(root.toEnd)

        TextArea {
            id: area

            Accessible.name: root.title
            KeyNavigation.priority: KeyNavigation.BeforeItem
            KeyNavigation.tab: line
            background: null
            color: Look.text
            font.family: Look.fixedPitch
            font.pixelSize: Look.size - 1
            objectName: "transcript"
            padding: 0
            readOnly: true
            selectByMouse: true
            selectedTextColor: Look.accentText
            selectionColor: Look.accent
            textFormat: TextEdit.PlainText
            width: flickable.width - 10
            wrapMode: TextEdit.Wrap
        }
    }
    RowLayout {
        spacing: Look.gap

        Field {
            id: line

            property string begun
            property var typed: []
            property int current: 0

            /// Shows an earlier (-1) or a later (1) command; the last one is the one begun.
            function recall(step) {
                if (current + step < 0 || current + step > typed.length)
                    return;
                if (current === typed.length)
                    begun = text;
                current += step;
                text = current === typed.length ? begun : typed[current];
            }

            objectName: "command"
            label: "Command"
            placeholderText: "help lists them"

            Keys.onDownPressed: recall(1)
            Keys.onUpPressed: recall(-1)
            onAccepted: {
                panel.type(text);
                if (text !== "")
                    typed = typed.concat(text);
                current = typed.length;
                clear();
            }
        }
        Act {
            objectName: "copyScript"
            text: "Copy as script"
            onClicked: panel.copyScript()
        }
    }
}
