// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

/// What the SIMs in the phone may do, in words. Changes are logged.
QtObject {
    readonly property bool known: simFiltersHelper.ready
    readonly property int count: simFiltersHelper.activeSimCount
    readonly property bool mayDial: simFiltersHelper.anyActiveSimCanDial
    readonly property bool mayReceive: simFiltersHelper.anyActiveSimCanReceive

    /// Why calls do not get through; empty if they do.
    readonly property string reason: {
        if (mayDial && mayReceive)
            return "";
        if (mayDial)
            return qsTr("Calls to this phone are barred by its management");
        return mayReceive ? qsTr("Calls from this phone are barred by its management")
                          : qsTr("All calls of this phone are barred by its management");
    }
    readonly property string permissions: {
        if (!known)
            return "not known";
        return "dial " + (mayDial ? "yes" : "no") + ", receive " + (mayReceive ? "yes" : "no");
    }

    /// Whether the user has waited for an answer long enough to be told that there is none.
    property bool overdue: false

    readonly property Timer waiting: Timer {
        interval: 5000
        running: !known
        onTriggered: overdue = true
    }

    onCountChanged: Log.tell("sims: " + count)
    onPermissionsChanged: {
        if (known)
            Log.tell("filters: " + permissions);
    }
}
