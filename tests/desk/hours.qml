// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0
import "../../screens"
import "../../screens/text.js" as Words

// The status bar and the sheet of reminders, which follow the clock, and a line, which does not.
// Evaluates expressions for a
// test.
Item {
    id: probe

    /// The hour on the status bar.
    readonly property string hour: Qt.formatTime(bar.now, "hh")

    height: 640
    width: 360

    /// The choices on the sheet that name a time of day, each with its hour.
    function offered() {
        return Words.reminderChoices.slice(3)
            .filter(function(choice) { return find(sheet, choice.text).visible; })
            .map(function(choice) { return choice.text + " " + find(sheet, choice.text).detail; });
    }

    /// When the choice with that text is due, in seconds since 1970.
    function chosen(text) {
        find(sheet, text).clicked();
        sheet.open = true;
        return sheet.lastChosen.getTime() / 1000;
    }

    function find(item, name) {
        if (item.objectName === name)
            return item;
        for (var i = 0; i < item.children.length; ++i) {
            var found = find(item.children[i], name);
            if (found !== null)
                return found;
        }
        return null;
    }

    Component.onCompleted: {
        sheet.show("5550123");
        console.info("loaded");
    }

    RemindersBase {
        id: base
    }

    StatusBar {
        id: bar

        sims: Sims {
        }
        watched: true
        width: parent.width
    }

    RemindSheet {
        id: sheet

        property date lastChosen

        anchors.fill: parent
        now: bar.now
        reminders: base
        onChosen: function(when) { lastChosen = when; }
    }

    Line {
        id: line

        reminders: base
        watched: true
    }

    ParleyUiAdaptor {
        onShow: function(args) { console.info("evaluated " + JSON.stringify(eval(args[1]))); }
    }
}
