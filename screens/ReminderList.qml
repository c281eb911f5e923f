// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0
import "."
import "text.js" as Words

/// The numbers to call back, of those that the screens have met so far.
BaseScreen {
    id: screen

    property RemindersBase reminders
    property date now
    readonly property int most: 100
    /// The numbers with a reminder, in the order in which they are due.
    property var marked: []

    signal chosen(string number)

    /// Adds a number, whether or not it has a reminder already.
    function learn(number) {
        if (number === "")
            return;
        for (var i = 0; i < numbers.count; ++i) {
            if (Words.shareReminder(numbers.get(i).number, number))
                return;
        }
        // Numbers without a reminder are at the end. The row of such a number gets another one: a
        // number whose row is destroyed is kept for ever, with or without a reminder.
        if (numbers.count >= most && dueAt(numbers.count - 1) === Infinity)
            numbers.set(numbers.count - 1, {number: number});
        else
            numbers.append({number: number});
    }

    function dueAt(index) {
        var row = rows.itemAt(index);
        return row !== null && row.marked ? row.when.getTime() : Infinity;
    }

    function arrange() {
        for (var i = 1; i < numbers.count; ++i) {
            var to = i;
            while (to > 0 && dueAt(to - 1) > dueAt(i))
                --to;
            if (to !== i)
                numbers.move(i, to, 1);
        }
        var found = [];
        for (var j = 0; j < numbers.count && dueAt(j) !== Infinity; ++j)
            found.push(numbers.get(j).number);
        marked = found;
    }

    summary: "reminders: " + (marked.length > 0 ? marked.join(", ") : "none")

    title: heading.text

    ListModel {
        id: numbers
    }

    Pane {
        Column {
            id: header

            anchors.left: parent.left
            anchors.margins: Style.px(24)
            anchors.right: parent.right
            spacing: Style.px(4)
            y: Style.px(16)

            Label {
                id: heading

                size: 20
                text: qsTr("Reminders")
                width: parent.width
            }

            Label {
                color: Style.dimText
                size: 13
                text: screen.marked.length === 0 ? qsTr("There is nobody to call back")
                      : screen.marked.length === 1 ? qsTr("1 number to call back")
                      : qsTr("%n numbers to call back", "", screen.marked.length)
                width: parent.width
            }
        }
    }

    Pane {
        second: true

        Icon {
            anchors.centerIn: list
            color: Style.outline
            name: "bell"
            size: 96
            visible: screen.marked.length === 0
        }

        Flickable {
            id: list

            /// Scrolls to a row.
            function reveal(item) {
                var top = item.mapToItem(column, 0, 0).y;
                contentY = Math.max(0, Math.min(top, Math.max(contentY, top + item.height - height)));
            }

            Accessible.ignored: !enabled
            Accessible.name: heading.text
            Accessible.role: Accessible.List

            anchors.bottom: parent.bottom
            anchors.bottomMargin: Style.wide ? Style.px(22) : parent.height - closeButton.y + Style.px(14)
            anchors.left: parent.left
            anchors.leftMargin: Style.px(20)
            anchors.right: parent.right
            anchors.rightMargin: Style.px(10)
            anchors.top: parent.top
            anchors.topMargin: Style.px(16) + (Style.wide ? 0 : header.height + Style.px(14))
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            contentHeight: column.height

            Column {
                id: column

                spacing: Style.px(8)
                width: parent.width

                Repeater {
                    id: rows

                    model: numbers

                    ReminderRow {
                        number: model.number
                        now: screen.now
                        reminders: screen.reminders
                        width: column.width
                        onFocusedChanged: {
                            if (focused)
                                list.reveal(this);
                        }
                        onChosen: function(number) { screen.chosen(number); }
                        onMarkedChanged: Qt.callLater(screen.arrange)
                        onWhenChanged: Qt.callLater(screen.arrange)
                    }
                }
            }
        }
    }

    Pane {
        RoundButton {
            id: closeButton

            anchors.bottom: parent.bottom
            anchors.bottomMargin: Style.px(22)
            anchors.horizontalCenter: parent.horizontalCenter
            icon: "close"
            label: qsTr("Close")
            size: 60
            onClicked: screen.closeRequested()
        }
    }
}
