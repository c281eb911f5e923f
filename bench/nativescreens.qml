// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0

// The same screens with one object of each native type, as call screens have them.
Screens {
    id: screens

    property QuickMessagesModel quickMessages: QuickMessagesModel {}
    property bool canDial: simFiltersHelper.anyActiveSimCanDial

    RemindersBase {
        id: base
    }

    Reminder {
        _reminders: base
        phoneNumber: "+49305551234"
    }

    ParleyUiAdaptor {
        onShow: __window.show()
        onDial: function(number) { screens.number = number; }
        onToggleCall: screens.number = ""
        onShowOngoing: console.info("marked")
    }
}
