// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15

/// The bus traffic of the call UI.
Section {
    id: root

    title: "Journal: the call UI on the buses"

    ListView {
        id: list

        property bool follows: true

        Accessible.name: root.title
        Accessible.role: Accessible.List

        Layout.fillHeight: true
        Layout.fillWidth: true
        ScrollBar.vertical: ScrollBar {}
        activeFocusOnTab: true
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        model: panel.journal
        objectName: "journal"
        spacing: 3

        Keys.onDownPressed: flick(0, -400)
        Keys.onUpPressed: flick(0, 400)
        onContentHeightChanged: {
            if (follows)
                Qt.callLater(positionViewAtEnd);
        }
        onMovementEnded: follows = atYEnd

        delegate: Column {
            Accessible.name: (message.text + " " + outcome.text).trim()
            Accessible.role: Accessible.ListItem
            width: ListView.view.width - 10

            Words {
                id: message

                color: model.incoming ? Look.text : Look.accent
                elide: Text.ElideNone
                font.pixelSize: Look.size - 1
                objectName: "entry " + index
                text: model.time + " " + model.bus + (model.incoming ? " → " : " ← ")
                    + (model.interface === "" ? "" : model.interface + ".") + model.member
                    + "(" + model.arguments + ")"
                    + (model.path === "/" ? "" : " at " + model.path)
                width: parent.width
                wrapMode: Text.Wrap
            }
            Words {
                id: outcome

                color: model.failed ? Look.bad : Look.dimText
                elide: Text.ElideNone
                font.pixelSize: Look.size - 1
                leftPadding: 16
                text: (model.outcome === "" ? "" : model.outcome + " ")
                    + (model.milliseconds < 0 ? "" : "in " + model.milliseconds.toFixed(1) + " ms ")
                    + (model.peer === "" ? "" : (model.incoming ? "from " : "to ") + model.peer)
                width: parent.width
                wrapMode: Text.Wrap
            }
        }
    }
    RowLayout {
        Act {
            objectName: "journalClear"
            subject: "the journal"
            text: "Clear"
            onClicked: panel.run(["journal", "clear"])
        }
        Item {
            Layout.fillWidth: true
        }
        Act {
            text: "Latest"
            visible: !list.follows
            onClicked: {
                list.follows = true;
                list.positionViewAtEnd();
            }
        }
    }
}
