// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0

// Uses every native type, and follows the commands in the URLs that it is asked to open.
Item {
    id: screens

    property int turn: 0
    property string state: ""
    readonly property var numbers: ["+1 555 010 0", "+15550100", "5550199", "262011111111111"]

    function obey(word) {
        turn += 1;
        if (word === "remind") {
            stores.item.remind(numbers[turn % 3]);
        } else if (word === "forget") {
            stores.item.forget(turn);
        } else if (word === "rebind") {
            stores.item.rebind(numbers[turn % 4]);
        } else if (word === "again") {
            // A new store asks the services for everything.
            stores.active = false;
            stores.active = true;
        } else if (word === "replies") {
            replies.change();
        }
    }

    height: 100
    width: 100

    Loader {
        id: stores

        sourceComponent: Item {
            function remind(number) {
                base.createWithStrings(number, new Date(Date.now() + 3600000), "app", "contact",
                                       "title", "text");
            }

            function forget(index) {
                reminders.itemAt(index % reminders.count).reminder.remove();
            }

            function rebind(number) {
                reminders.itemAt(0).reminder.phoneNumber = number;
            }

            RemindersBase {
                id: base
            }

            Repeater {
                id: reminders

                model: screens.numbers

                Item {
                    property alias reminder: reminder

                    Reminder {
                        id: reminder

                        _reminders: base
                        phoneNumber: modelData
                        onExistsChanged: screens.state = phoneNumber + exists
                        onWhenChanged: screens.state = phoneNumber + when
                    }
                }
            }
        }
    }

    QuickMessagesModel {
        id: quickMessages
    }

    ListView {
        id: replies

        function change() {
            if (count < 20)
                quickMessages.append("a reply");
            else
                quickMessages.remove(0);
            quickMessages.save();
        }

        anchors.fill: parent
        model: quickMessages
        delegate: Text {
            text: display
        }
    }

    Text {
        text: [simFiltersHelper.ready, simFiltersHelper.anyActiveSimCanDial,
               simFiltersHelper.anyActiveSimCanReceive, simFiltersHelper.activeSimCount].join()
    }

    ParleyUiAdaptor {
        onShow: function(args) { screens.state = "shown " + args.length; }
        onShowOngoing: screens.state = "ongoing"
        onOpenUrl: function(arg) { arg.forEach(screens.obey); }
        onDial: function(number) {
            if (number.startsWith("check "))
                console.info(number);
        }
        onDialViaModem: function(modemPath, number) { screens.state = modemPath + number; }
        onShowCellularErrorDialog: screens.state = "error"
        onOpenContactCard: function(number) { screens.state = number; }
        onToggleCall: screens.state = "toggled"
    }

    Component.onCompleted: console.info("loaded")
}
