// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0

// Watches one number, and evaluates expressions for a test.
Item {
    height: 100
    width: 100

    function create(number, seconds) {
        base.createWithStrings(number, new Date(seconds * 1000), "app", "contact", "title", "text");
    }

    function later(text) {
        timer.text = text;
        timer.start();
    }

    function createMany(count, seconds) {
        for (var i = 0; i < count; ++i) {
            many.push(another.createObject(null, { _reminders: base, phoneNumber: "" + i }));
            create("" + i, seconds);
        }
        return many.length === count;
    }

    function existing() {
        return many.filter(function(one) { return one.exists; }).length;
    }

    function removeMany() {
        many.forEach(function(one) { one.remove(); });
        return true;
    }

    property var many: []

    Component {
        id: another

        Reminder {
        }
    }

    Timer {
        id: timer

        property string text

        interval: 1
        onTriggered: console.info(text)
    }

    RemindersBase {
        id: base
    }

    Reminder {
        id: reminder

        _reminders: base
        phoneNumber: "+1 (555) 010-0"
        onExistsChanged: console.info("exists " + exists)
        onWhenChanged: console.info("when " + when.getTime() / 1000)
    }

    ParleyUiAdaptor {
        onShow: function(args) { console.info("evaluated " + JSON.stringify(eval(args[1]))); }
    }

    Component.onCompleted: console.info("loaded")
}
