// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0

// Three objects watch one number. The first one that reports a change runs the deed, only once.
Item {
    id: root

    property var base: null
    property var reminders: []
    property string deed
    property int reports: 0

    height: 100
    width: 100

    function begin(what) {
        reports = 0;
        deed = "";
        base = store.createObject(root);
        reminders = [watcher.createObject(root), watcher.createObject(root), watcher.createObject(root)];
        deed = what;
    }

    function create() {
        base.createWithStrings("5550100", new Date(1893585600000), "app", "contact", "title", "text");
    }

    function end() {
        deed = "";
        reminders.concat([base]).forEach(function(object) {
            try {
                object.destroy();
            } catch (gone) {
                // A deed has destroyed it already.
            }
        });
        return reports;
    }

    function report(reminder) {
        ++reports;
        var what = deed;
        deed = "";
        if (what !== "")
            eval(what);
        console.info("reported");
    }

    Component {
        id: store

        RemindersBase {}
    }

    Component {
        id: watcher

        Reminder {
            _reminders: root.base
            phoneNumber: "5550100"
            onExistsChanged: root.report(this)
            onWhenChanged: root.report(this)
        }
    }

    ParleyUiAdaptor {
        onShow: function(args) { console.info("evaluated " + JSON.stringify(eval(args[1]))); }
    }

    Component.onCompleted: console.info("loaded")
}
