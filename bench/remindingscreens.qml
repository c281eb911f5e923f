// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import QtQuick.Window 2.15
import com.nimbo.parley 1.0

// Call screens that make a reminder for each number that they are asked to open, and show the state
// of the handset. They log when they are drawn and know the rules of the SIMs, and when the first
// call comes.
Screens {
    id: screens

    property QuickMessagesModel quickMessages: QuickMessagesModel {}
    property bool canDial: simFiltersHelper.anyActiveSimCanDial
    property bool canReceive: simFiltersHelper.anyActiveSimCanReceive
    property int sims: simFiltersHelper.activeSimCount
    property bool drawn
    property bool ready: drawn && simFiltersHelper.ready
    property date due: new Date(Date.now() + 24 * 60 * 60 * 1000)

    onReadyChanged: console.info("ready")

    Connections {
        target: screens.Window.window

        function onFrameSwapped() {
            screens.drawn = true;
        }
    }

    RemindersBase {
        id: base
    }

    Reminder {
        _reminders: base
        phoneNumber: "+49305550000"
    }

    ParleyUiAdaptor {
        onDial: function(number) {
            if (!screens.number)
                console.info("dialled");
            screens.number = number;
        }
        onOpenUrl: function(arg) {
            for (var i = 0; i < arg.length; ++i)
                base.createWithStrings(arg[i], screens.due, "Phone", "Ada", "Call Ada", "tomorrow");
        }
    }
}
