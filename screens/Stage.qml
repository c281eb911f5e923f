// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."
import "text.js" as Words

/// Where the screens are. Only the dial pad is made at the start, since it is what is seen first.
Item {
    id: stage

    property Item phone
    readonly property alias dialPad: dialPad
    readonly property alias callScreen: callScreen
    readonly property alias incomingScreen: incomingScreen
    readonly property alias contactCard: contactCard
    readonly property alias pageScreen: pageScreen
    readonly property alias quickReplies: quickReplies
    readonly property alias reminderList: reminderList
    readonly property alias sheet: sheet
    readonly property alias simChoice: simChoice
    readonly property alias networkDialog: networkDialog
    readonly property alias dialog: dialog
    /// What may be above a screen, from the top. It is null until it is made.
    readonly property var boxes: [dialog.item, networkDialog.item, simChoice.item, sheet.item]
    /// Whether the parts of a screen are side by side, as on a phone that is held sideways.
    readonly property bool wide: width > height * 1.2
    /// The scale of the screens; 1 for a screen that is 360 pixels wide and 640 high, or a wide one
    /// of 720 pixels and 400.
    readonly property real unit: wide ? Math.min(width / 720, height / 400)
                                      : Math.min(area.width / 360, height / 640)

    /// Makes what every call needs, so that none has to wait for it.
    function prepareForCalls() {
        incomingScreen.active = true;
        callScreen.active = true;
        reminderList.active = true;
    }

    Item {
        id: area

        anchors.bottom: parent.bottom
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.top: parent.top
        // A screen reader finds only what can be used below the sheet and the dialog.
        enabled: phone.topmost === phone.current.item
        width: stage.wide ? parent.width : Math.min(parent.width, Math.round(parent.height * 0.75))

        StatusBar {
            id: statusBar

            inCall: phone.line.active
            sims: phone.sims
            watched: __window.visible
            width: parent.width
        }

        CallStrip {
            id: strip

            readonly property OnDemand target: phone.incoming !== null ? incomingScreen : callScreen

            anchors.top: statusBar.bottom
            open: (phone.line.active || phone.incoming !== null) && phone.current !== target
            text: target === incomingScreen
                  ? Words.isolated(Words.caller(phone.incoming)) + "  ·  " + qsTr("Incoming call")
                  : Words.isolated(phone.line.name) + "  ·  " + phone.line.state
            width: parent.width
            onClicked: phone.turnTo(target)
        }

        Item {
            anchors.bottom: parent.bottom
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.top: strip.bottom

            OnDemand {
                id: dialPad

                active: true
                sourceComponent: DialPad {
                    current: phone.current === dialPad
                    line: phone.line
                    now: statusBar.now
                    reminders: phone.reminders
                    sims: phone.sims
                    watched: __window.visible
                    onCallRequested: function(number) { phone.call(number); }
                    onCloseRequested: __window.hide()
                    onRemindersRequested: phone.turnTo(reminderList)
                    onRepliesRequested: phone.turnTo(quickReplies)
                    onSpecialRequested: function(service, url) { phone.openSpecial(service, url); }
                }
            }

            OnDemand {
                id: callScreen

                sourceComponent: CallScreen {
                    current: phone.current === callScreen
                    line: phone.line
                    now: statusBar.now
                    onAddRequested: phone.turnTo(dialPad)
                    onCloseRequested: phone.turnTo(dialPad)
                    onEndRequested: line.hangUp()
                    onRemindRequested: function(number) { sheet.made().show(number); }
                }
            }

            OnDemand {
                id: incomingScreen

                sourceComponent: IncomingScreen {
                    current: phone.current === incomingScreen
                    line: phone.line
                    now: statusBar.now
                    reminders: phone.reminders
                    replies: phone.replies
                    onAnswerRequested: function(ending) { line.answer(ending); }
                    onCloseRequested: phone.turnTo(line.active ? callScreen : dialPad)
                    onDeclineRequested: phone.decline(call)
                    onEditRequested: phone.turnTo(quickReplies)
                    onRemindRequested: function(number) { sheet.made().show(number); }
                    onReplyRequested: function(text) { phone.reply(call, text); }
                }
            }

            OnDemand {
                id: contactCard

                sourceComponent: ContactCard {
                    current: phone.current === contactCard
                    line: phone.line
                    now: statusBar.now
                    reminders: phone.reminders
                    sims: phone.sims
                    onCallRequested: function(number) { phone.call(number); }
                    onCloseRequested: phone.leaveContact()
                    onRemindRequested: function(number) { sheet.made().show(number); }
                }
            }

            OnDemand {
                id: pageScreen

                sourceComponent: PageScreen {
                    current: phone.current === pageScreen
                    onCloseRequested: phone.leave()
                }
            }

            OnDemand {
                id: quickReplies

                sourceComponent: QuickReplies {
                    current: phone.current === quickReplies
                    replies: phone.replies
                    onCloseRequested: phone.leave()
                }
            }

            OnDemand {
                id: reminderList

                sourceComponent: ReminderList {
                    current: phone.current === reminderList
                    now: statusBar.now
                    reminders: phone.reminders
                    onChosen: function(number) { phone.presentContact(number); }
                    onCloseRequested: phone.leave()
                }
            }
        }
    }

    OnDemand {
        id: sheet

        sourceComponent: RemindSheet {
            now: statusBar.now
            reminders: phone.reminders
            onChosen: function(when) {
                phone.remind(number, when);
                if (phone.current === incomingScreen && phone.incoming !== null)
                    phone.decline(phone.incoming);
            }
        }
    }

    OnDemand {
        id: simChoice

        sourceComponent: SimChoice {
            modems: phone.line.telephone !== null ? phone.line.telephone.calls.modems : []
            onChosen: function(modem) { phone.place(number, modem); }
        }
    }

    OnDemand {
        id: networkDialog

        sourceComponent: NetworkDialog {
            dialogue: phone.line.telephone !== null ? phone.line.telephone.calls.dialogue : null
        }
    }

    OnDemand {
        id: dialog

        sourceComponent: ErrorDialog {}
    }
}
