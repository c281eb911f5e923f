// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0
import "."
import "text.js" as Words

Item {
    id: sheet

    property bool open: false
    // The sheet keeps its own number while it closes and the screen below changes.
    property string number
    property RemindersBase reminders
    property date now
    readonly property string summary: "remind " + number

    /// How far the sheet is open, from 0 to 1.
    property real rise: open ? 1 : 0

    signal chosen(date when)

    function show(text) {
        number = text;
        open = true;
    }

    function choose(choice) {
        chosen(choice.when(new Date()));
        open = false;
    }

    Accessible.focusable: true
    Accessible.ignored: !enabled
    Accessible.name: heading.text
    Accessible.role: Accessible.Dialog

    enabled: open
    visible: rise > 0

    Behavior on rise { NumberAnimation { duration: Style.duration; easing.type: Easing.OutCubic } }

    Keys.onEscapePressed: open = false

    Reminder {
        id: reminder

        _reminders: sheet.reminders
        phoneNumber: sheet.number
    }

    Rectangle {
        anchors.fill: parent
        color: Style.shade
        opacity: sheet.rise

        MouseArea {
            anchors.fill: parent
            onClicked: sheet.open = false
        }
    }

    Rectangle {
        id: panel

        anchors.horizontalCenter: parent.horizontalCenter
        border.color: Style.outline
        border.width: Math.max(1, Style.px(1))
        color: Style.surface
        height: content.height + Style.px(40) + radius
        radius: Style.px(20)
        width: Math.min(parent.width, Style.px(Style.wide ? 640 : 360))
        // The lower corners stay below the edge.
        y: parent.height - (height - radius) * sheet.rise

        MouseArea {
            anchors.fill: parent
        }

        Column {
            id: content

            anchors.left: parent.left
            anchors.margins: Style.px(20)
            anchors.right: parent.right
            spacing: Style.px(8)
            y: Style.px(20)

            Label {
                id: heading

                font.bold: true
                size: 17
                text: qsTr("Remind me to call back")
                width: parent.width
            }

            Label {
                color: Style.dimText
                elide: Text.ElideMiddle
                text: Words.display(sheet.number)
                width: parent.width
            }

            ReminderMark {
                id: mark

                anchors.horizontalCenter: parent.horizontalCenter
                now: sheet.now
                reminder: reminder
                visible: marked
            }

            Item {
                height: Style.px(2)
                width: 1
            }

            Grid {
                id: rows

                readonly property real columnWidth: (width - (columns - 1) * spacing) / columns

                columns: Style.wide ? 2 : 1
                spacing: Style.px(8)
                width: parent.width

                Repeater {
                    model: Words.reminderChoices.length

                    SheetRow {
                        // As model data the object would lose its functions.
                        readonly property var choice: Words.reminderChoices[index]

                        detail: Qt.formatTime(choice.when(sheet.now), "hh:mm")
                        objectName: choice.text
                        text: choice.text
                        visible: choice.offered(sheet.now)
                        width: rows.columnWidth
                        onClicked: sheet.choose(choice)
                    }
                }

                SheetRow {
                    ink: Style.alert
                    text: qsTr("Remove reminder")
                    visible: mark.marked
                    width: rows.columnWidth
                    onClicked: {
                        reminder.remove();
                        sheet.open = false;
                    }
                }
            }

            Item {
                height: Style.px(2)
                width: 1
            }

            PillButton {
                text: qsTr("Close")
                width: parent.width
                onClicked: sheet.open = false
            }
        }
    }
}
