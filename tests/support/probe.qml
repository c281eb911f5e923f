// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0

// Reports each request that reaches the QML as a line of JSON, and evaluates expressions for a
// test.
Item {
    width: 100
    height: 100

    function report(what, value) {
        console.info(what + " " + JSON.stringify(value));
    }

    ParleyUiAdaptor {
        onShow: function(args) {
            if (args[0] === "evaluate")
                report("evaluated", eval(args[1]));
            else
                report("show", args);
        }
        onShowOngoing: report("showOngoing", [])
        onOpenUrl: function(arg) { report("openUrl", arg); }
        onDial: function(number) { report("dial", number); }
        onDialViaModem: function(modemPath, number) { report("dialViaModem", [modemPath, number]); }
        onShowCellularErrorDialog: report("showCellularErrorDialog", [])
        onOpenContactCard: function(number) { report("openContactCard", number); }
        onToggleCall: report("toggleCall", [])
    }

    Component.onCompleted: console.info("loaded")
}
