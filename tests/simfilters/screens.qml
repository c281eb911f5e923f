// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0

// Logs each change of what the SIMs may do, with the whole state at that moment, and evaluates
// expressions for a test.
Item {
    height: 100
    width: 100

    function state() {
        var words = [];
        if (simFiltersHelper.ready)
            words.push("ready");
        if (simFiltersHelper.anyActiveSimCanDial)
            words.push("dial");
        if (simFiltersHelper.anyActiveSimCanReceive)
            words.push("receive");
        words.push(simFiltersHelper.activeSimCount);
        return words.join(" ");
    }

    function tell(what) {
        console.info("told " + what + ": " + state());
    }

    Connections {
        target: simFiltersHelper

        function onReadyChanged() {
            tell("ready");
        }

        function onAnyActiveSimCanDialChanged() {
            tell("dial");
        }

        function onAnyActiveSimCanReceiveChanged() {
            tell("receive");
        }

        function onActiveSimCountChanged() {
            tell("count");
        }
    }

    ParleyUiAdaptor {
        onShow: function(args) { console.info("evaluated " + JSON.stringify(eval(args[1]))); }
    }

    Component.onCompleted: console.info("loaded")
}
