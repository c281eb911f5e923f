// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0
import "."
import "text.js" as Words

/// An incoming call. The user can answer it, decline it, or decline it with a quick reply.
BaseScreen {
    id: screen

    property bool ringing: false
    /// The call that rings, or the last one that did.
    property var call: null
    /// The caller's number; empty if the caller withholds it.
    readonly property string number: call !== null ? call.number : ""
    /// Whether the user speaks with somebody else meanwhile.
    readonly property bool isWaiting: call !== null && call.callState === "waiting"
    property Replies replies
    property RemindersBase reminders
    property Line line
    property date now
    readonly property string caller: Words.caller(call)
    /// Whether the user has answered, and the stack is about to connect.
    readonly property bool isTaken: call !== null && line.taken === call.callId

    /// The call that the user speaks in is held, or it ends.
    signal answerRequested(bool ending)
    signal declineRequested()
    signal replyRequested(string text)
    signal remindRequested(string number)
    signal editRequested()

    function ring(newCall) {
        reminder.phoneNumber = newCall.number; // Set this first, for the summary.
        call = newCall;
        ringing = true;
        list.positionViewAtBeginning();
    }

    // Keep the call while the screen fades.
    function stop() {
        ringing = false;
    }

    // Use the reminder's number, which changes together with its state.
    summary: {
        var word = isWaiting ? "waiting" : "incoming";
        if (reminder.phoneNumber === "")
            return word;
        return word + " " + reminder.phoneNumber + (reminder.exists ? " (reminder)" : "");
    }

    title: qsTr("Incoming call from %1").arg(Words.isolated(caller))

    Keys.onPressed: {
        if (event.key !== Qt.Key_Return && event.key !== Qt.Key_Enter)
            return;
        answerRequested(!line.canHold);
        event.accepted = true;
    }

    Reminder {
        id: reminder

        _reminders: screen.reminders
    }

    Pane {
        Column {
            anchors.left: parent.left
            anchors.margins: Style.px(24)
            anchors.right: parent.right
            spacing: Style.px(4)
            y: {
                var room = Style.wide ? parent.height : answers.visible ? answers.y : buttons.y;
                return Math.max(Style.px(12), (room - height) * 0.5);
            }

            Avatar {
                anchors.horizontalCenter: parent.horizontalCenter
                size: 104

                Rectangle {
                    anchors.centerIn: parent
                    border.color: Style.accent
                    border.width: Math.max(1, Style.px(2))
                    color: "transparent"
                    height: width
                    radius: width / 2
                    width: parent.width + Style.px(16)

                    SequentialAnimation on opacity {
                        loops: Animation.Infinite
                        running: screen.current && screen.ringing && Style.animated

                        NumberAnimation { duration: 700; from: 0; to: 0.8 }
                        NumberAnimation { duration: 900; from: 0.8; to: 0 }
                    }
                }
            }

            Item {
                height: Style.px(14)
                width: 1
            }

            Label {
                font.weight: Font.Light
                fontSizeMode: Text.HorizontalFit
                height: Style.px(46)
                minimumPixelSize: Math.max(1, Style.px(18))
                size: 34
                text: screen.caller
                width: parent.width
            }

            Label {
                color: Style.dimText
                size: 14
                text: Words.display(screen.number)
                visible: text !== "" && text !== screen.caller
                width: parent.width
            }

            Label {
                color: Style.accent
                size: 16
                text: screen.isWaiting ? qsTr("Waiting call") : qsTr("Incoming call")
                width: parent.width
            }

            Label {
                color: Style.dimText
                size: 13
                text: (screen.line.canHold ? qsTr("Answering holds the call with %1")
                                      : qsTr("Answering ends the call with %1"))
                      .arg(Words.isolated(screen.line.name))
                visible: screen.line.active
                width: parent.width
            }

            ReminderMark {
                anchors.horizontalCenter: parent.horizontalCenter
                now: screen.now
                reminder: reminder
            }
        }
    }

    Pane {
        second: true

        Column {
            id: answers

            anchors.bottom: buttons.top
            anchors.bottomMargin: Style.px(20)
            anchors.left: parent.left
            anchors.margins: Style.px(24)
            anchors.right: parent.right
            spacing: Style.px(8)
            visible: screen.number !== ""

            Label {
                color: Style.dimText
                size: 13
                text: screen.replies.count > 0 ? qsTr("Reply instead") : qsTr("There are no quick replies")
                width: parent.width
            }

            ListView {
                id: list

                Accessible.ignored: !enabled
                Accessible.name: qsTr("Quick replies")
                Accessible.role: Accessible.List

                // Part of the fourth reply is visible, to show that there are more.
                readonly property int most: Style.px(3 * 46 + 2 * 6 + 20)

                boundsBehavior: Flickable.StopAtBounds
                clip: true
                height: Math.min(contentHeight, most)
                model: screen.replies
                spacing: Style.px(6)
                width: parent.width

                delegate: SheetRow {
                    height: visible ? Style.px(46) : 0
                    text: Words.clean(model.display)
                    visible: text !== ""
                    width: list.width
                    onActiveFocusChanged: {
                        if (activeFocus)
                            list.positionViewAtIndex(index, ListView.Contain);
                    }
                    onClicked: screen.replyRequested(text)
                }
            }
        }

        Row {
            id: buttons

            anchors.bottom: parent.bottom
            anchors.bottomMargin: Style.px(26)
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: Style.px(24)

            RoundButton {
                fill: Style.red
                icon: "end"
                label: qsTr("Decline")
                size: 64
                onClicked: screen.declineRequested()
            }

            RoundButton {
                enabled: screen.number !== ""
                icon: "bell"
                label: qsTr("Remind me")
                size: 56
                y: Style.px(8)
                onClicked: screen.remindRequested(screen.number)
            }

            RoundButton {
                icon: "message"
                label: qsTr("Replies")
                size: 56
                visible: !endAndAnswer.visible
                y: Style.px(8)
                onClicked: screen.editRequested()
            }

            RoundButton {
                id: endAndAnswer

                enabled: !screen.isTaken
                icon: "call"
                label: qsTr("End the other")
                name: qsTr("End the other call and answer")
                objectName: "end and answer"
                size: 56
                visible: screen.isWaiting && screen.line.canHold
                y: Style.px(8)
                onClicked: screen.answerRequested(true)
            }

            RoundButton {
                enabled: !screen.isTaken
                fill: Style.green
                icon: "call"
                label: qsTr("Answer")
                objectName: "answer"
                size: 64
                onClicked: screen.answerRequested(!screen.line.canHold)
            }
        }
    }
}
