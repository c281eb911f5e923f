// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."
import "text.js" as Words

/// The editor of the quick replies.
BaseScreen {
    id: screen

    property Replies replies

    // Finish the current edit.
    function settle() {
        forceActiveFocus();
    }

    function add() {
        var text = newReply.text.trim();
        newReply.revert();
        if (text === "")
            return;
        replies.add(text);
        list.positionViewAtEnd();
    }

    summary: "replies"
    title: heading.text

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
                text: qsTr("Quick replies")
                width: parent.width
            }

            Label {
                color: screen.replies.hasError ? Style.alert : Style.dimText
                size: 13
                text: {
                    if (screen.replies.hasError)
                        return qsTr("The file of the replies cannot be opened");
                    var count = screen.replies.count;
                    var number = count === 1 ? qsTr("1 reply") : qsTr("%n replies", "", count);
                    return screen.replies.unsaved ? qsTr("%1, not saved yet").arg(number) : number;
                }
                width: parent.width
            }
        }
    }

    Pane {
        second: true

        ListView {
            id: list

            Accessible.ignored: !enabled
            Accessible.name: heading.text
            Accessible.role: Accessible.List

            anchors.bottom: newReply.top
            anchors.bottomMargin: Style.px(10)
            anchors.left: parent.left
            anchors.leftMargin: Style.px(20)
            anchors.right: parent.right
            anchors.rightMargin: Style.px(10)
            anchors.top: parent.top
            anchors.topMargin: Style.px(16) + (Style.wide ? 0 : header.height + Style.px(14))
            boundsBehavior: Flickable.StopAtBounds
            clip: true
            model: screen.replies
            spacing: Style.px(8)

            delegate: ReplyRow {
                number: index + 1
                objectName: "reply " + index
                reply: Words.clean(model.display)
                width: list.width
                onEdited: function(text) {
                    model.edit = text;
                    screen.replies.changed(true);
                }
                onEditingChanged: {
                    if (editing)
                        list.positionViewAtIndex(index, ListView.Contain);
                }
                onDone: screen.settle()
                onRemoveRequested: {
                    screen.settle();
                    screen.replies.take(index);
                }
            }
        }

        TextField {
            id: newReply

            anchors.bottom: parent.bottom
            anchors.bottomMargin: Style.wide ? Style.px(22) : parent.height - buttons.y + Style.px(18)
            anchors.left: parent.left
            anchors.leftMargin: Style.px(20)
            anchors.right: addButton.left
            anchors.rightMargin: Style.px(6)
            hint: qsTr("Add a reply")
            name: qsTr("New reply")
            onAbandoned: {
                revert();
                screen.settle();
            }
            onFinished: function(confirmed) {
                if (confirmed)
                    screen.add();
            }
        }

        RoundButton {
            id: addButton

            anchors.right: list.right
            anchors.rightMargin: Style.px(4)
            anchors.verticalCenter: newReply.verticalCenter
            enabled: newReply.text.trim() !== ""
            fill: "transparent"
            icon: "add"
            iconSize: 22
            name: qsTr("Add")
            ink: Style.accent
            size: 42
            onClicked: screen.add()
        }
    }

    Pane {
        Row {
            id: buttons

            anchors.bottom: parent.bottom
            anchors.bottomMargin: Style.px(22)
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: Style.px(44)

            RoundButton {
                icon: "undo"
                label: qsTr("Defaults")
                size: 60
                onClicked: {
                    screen.settle();
                    screen.replies.restore();
                }
            }

            RoundButton {
                icon: "check"
                ink: Style.accent
                label: qsTr("Save")
                objectName: "save"
                size: 60
                onClicked: {
                    screen.settle();
                    screen.replies.write();
                }
            }

            RoundButton {
                icon: "close"
                label: qsTr("Close")
                size: 60
                onClicked: {
                    screen.settle();
                    screen.closeRequested();
                }
            }
        }
    }
}
