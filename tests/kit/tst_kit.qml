// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import QtTest 1.2
import com.nimbo.parley 1.0

TestCase {
    id: test

    property var requests: []

    name: "Kit"

    Component {
        id: service

        ParleyUiAdaptor {
            onShow: function(args) { test.requests.push(["show", args]); }
            onDialViaModem: function(modemPath, number) { test.requests.push([modemPath, number]); }
            onToggleCall: test.requests.push(["toggleCall"])
        }
    }

    Component {
        id: reminding

        Item {
            property alias base: base
            property alias reminder: reminder

            RemindersBase {
                id: base
            }

            Reminder {
                id: reminder

                _reminders: base
                phoneNumber: "+1 555 010 0199"
            }
        }
    }

    Component {
        id: replies

        ListView {
            property alias messages: messages

            height: 100
            width: 100

            delegate: Text {
                required property string display

                text: display
            }
            model: QuickMessagesModel {
                id: messages
            }
        }
    }

    SignalSpy {
        id: spy
    }

    function textsOf(list) {
        list.forceLayout();
        return Array.from({ length: list.count }, function(_, row) { return list.itemAtIndex(row).text; });
    }

    function cleanup() {
        __kit.reset();
    }

    function test_beginsWithTheDataOfItsFile() {
        compare(__prestart, true);
        compare(__window.visible, false);
        compare(__specials["*33#"].url, "settings:callbarring");
        compare(simFiltersHelper.activeSimCount, 2);
        compare(simFiltersHelper.anyActiveSimCanDial, false);
        compare(simFiltersHelper.anyActiveSimCanReceive, true);
        compare(simFiltersHelper.ready, true);
        compare(__kit.replies, ["On my way"]);
        compare(__kit.reminders.length, 1);
        var due = __kit.reminders[0].when - Date.now();
        verify(due > 500000 && due <= 600000, due);
    }

    function test_sendsRequests() {
        compare(__kit.service, null);
        var object = createTemporaryObject(service, test);
        compare(__kit.service, object);
        requests = [];
        __kit.service.show(["a", "b"]);
        __kit.service.dialViaModem("/ril_0", "555");
        __kit.service.toggleCall();
        compare(requests, [["show", ["a", "b"]], ["/ril_0", "555"], ["toggleCall"]]);
        var second = createTemporaryObject(service, test);
        compare(__kit.service, object);
        object.destroy();
        tryCompare(__kit, "service", second);
    }

    function test_reminds() {
        __kit.reminders = [];
        var screen = createTemporaryObject(reminding, test);
        var when = new Date(Date.now() + 3600000);
        screen.base.createWithStrings("5550100199", when, "Phone", "Ada", "Call Ada", "soon");
        compare(screen.reminder.exists, false); // As on a handset, the answer comes later.
        tryCompare(screen.reminder, "exists", true);
        compare(screen.reminder.when, when);
        compare(__kit.reminders, [{
            phoneNumber: "5550100199", when: when, applicationName: "Phone",
            contactName: "Ada", title: "Call Ada", description: "soon"
        }]);

        spy.target = screen.reminder;
        spy.signalName = "whenChanged";
        spy.clear();
        screen.base.createWithStrings("(555) 010-0199", new Date(0), "Phone", "Ada", "Call Ada", "");
        spy.wait();
        compare(screen.reminder.when, new Date(0));
        compare(__kit.reminders.length, 1);

        screen.reminder.remove();
        compare(screen.reminder.exists, false);
        compare(__kit.reminders, []);
        compare(screen.reminder.when, new Date(0));
        screen.reminder.phoneNumber = "5550100";
        __kit.reminders = [{ phoneNumber: "555 0100", when: 60 }];
        compare(screen.reminder.exists, true);
    }

    function test_keepsQuickReplies() {
        __kit.replies = [];
        var list = createTemporaryObject(replies, test);
        compare(textsOf(list),
                ["Please call later", "I can't talk at the moment", "I will call back"]);
        list.messages.append(" Later ");
        list.messages.append(" ");
        list.messages.remove(0);
        compare(list.messages.count, 4);
        compare(__kit.replies, []);
        list.messages.save();
        compare(__kit.replies, ["I can't talk at the moment", "I will call back", "Later"]);
        __kit.replies = ["From elsewhere"];
        compare(textsOf(list), ["From elsewhere"]);
        list.messages.reset();
        compare(list.messages.count, 3);
        compare(__kit.replies, ["From elsewhere"]);
        list.messages.active = false;
        list.messages.save();
        compare(__kit.replies, ["From elsewhere"]);
        list.messages.active = true;
        compare(textsOf(list), ["From elsewhere"]);
        list.messages.filePath = "";
        __kit.replies = ["Not shown"];
        compare(textsOf(list), ["From elsewhere"]);
    }

    function test_hasTheFiltersOfAHandset() {
        spy.target = simFiltersHelper;
        spy.signalName = "anyActiveSimCanReceiveChanged";
        spy.clear();
        __kit.sims = { activeSimCount: 1, anyActiveSimCanReceive: false };
        compare(spy.count, 1);
        compare(simFiltersHelper.anyActiveSimCanReceive, false);
        compare(simFiltersHelper.anyActiveSimCanDial, true);
        compare(simFiltersHelper.activeSimCount, 1);
        var failed = false;
        try {
            simFiltersHelper.activeSimCount = 5;
        } catch (error) {
            failed = true;
        }
        verify(failed);
        compare(simFiltersHelper.activeSimCount, 1);
    }

    function test_keepsWhatIsAskedOfTheWindow() {
        compare(__window.visible, false);
        compare(__window.active, false);
        compare(__window.title, "Phone");
        __window.showFullScreen();
        compare(__window.visibility, 5);
        compare(__window.active, true);
        __window.requestActivate();
        __window.raise();
        __window.hide();
        compare(__window.visible, false);
        __window.visible = true;
        compare(__window.visibility, 2);
        __window.close();
        compare(__window.visible, false);
        __window.resizeMode = 1;
        compare(__window.resizeMode, 1);
        __window.color = "midnightblue";
        verify(Qt.colorEqual(__window.color, "midnightblue"));
    }
}
