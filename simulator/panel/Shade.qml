// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15

/// The notifications, as a phone shows them below its status bar.
Section {
    id: root

    title: "Notifications"

    Words {
        color: Look.dimText
        text: "None"
        visible: panel.notifications.items.length === 0
    }
    Repeater {
        model: panel.notifications

        AbstractButton {
            id: card

            required property var entry

            Accessible.description: entry.application + ": " + entry.body
            Accessible.name: entry.summary

            Layout.fillWidth: true
            objectName: "click " + entry.id
            padding: Look.gap

            Keys.onEnterPressed: clicked()
            Keys.onReturnPressed: clicked()
            onClicked: panel.run(["click", entry.id])

            background: Rectangle {
                border.color: card.visualFocus ? Look.accent : Look.outline
                border.width: 2
                color: card.down ? Look.pressed : Look.well
                radius: 6
            }
            contentItem: RowLayout {
                spacing: Look.gap

                ColumnLayout {
                    spacing: 1

                    Words {
                        Layout.fillWidth: true
                        font.bold: true
                        objectName: "summary " + card.entry.id
                        text: card.entry.summary
                    }
                    Words {
                        Layout.fillWidth: true
                        color: Look.dimText
                        text: card.entry.application + ": " + card.entry.body
                    }
                }
                Repeater {
                    model: card.entry.actions

                    Act {
                        objectName: "click " + card.entry.id + " " + modelData.name
                        subject: "(" + card.entry.summary + ")"
                        text: modelData.label
                        onClicked: panel.run(["click", card.entry.id, modelData.name])
                    }
                }
                Act {
                    objectName: "dismiss " + card.entry.id
                    subject: "(" + card.entry.summary + ")"
                    text: "Dismiss"
                    onClicked: panel.run(["dismiss", card.entry.id])
                }
            }
        }
    }
}
