// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15

Section {
    title: "Quick replies"

    RowLayout {
        spacing: Look.gap

        Words {
            Layout.fillWidth: true
            color: Look.dimText
            elide: Text.ElideMiddle
            objectName: "repliesPath"
            text: panel.repliesPath
        }
        Act {
            objectName: "repliesPrint"
            subject: "the quick replies"
            text: "Print"
            onClicked: panel.run(["replies"])
        }
        Act {
            objectName: "repliesEdit"
            text: "Open in an editor"
            onClicked: panel.run(["replies", "edit"])
        }
    }
    RowLayout {
        spacing: Look.gap

        TextArea {
            id: texts

            Accessible.name: placeholderText

            Layout.fillWidth: true
            KeyNavigation.priority: KeyNavigation.BeforeItem
            KeyNavigation.tab: write
            color: Look.text
            font.pixelSize: Look.size
            objectName: "repliesTexts"
            padding: 5
            placeholderText: "Other texts, a line each"
            placeholderTextColor: Look.dimText
            selectByMouse: true
            selectedTextColor: Look.accentText
            selectionColor: Look.accent
            wrapMode: TextEdit.Wrap

            background: Rectangle {
                border.color: texts.activeFocus ? Look.accent : Look.outline
                color: Look.well
                radius: 4
            }
        }
        Act {
            id: write

            Layout.alignment: Qt.AlignTop
            objectName: "repliesWrite"
            text: "Write the file"
            onClicked: {
                var isText = function(line) { return line.trim() !== ""; };
                panel.run(["replies", "write"].concat(texts.text.split("\n").filter(isText)));
            }
        }
    }
}
