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
        onShow: {
            if (args[0] === "evaluate")
                report("evaluated", eval(args[1]));
            else
                report("show", args);
        }
        onShowOngoing: report("showOngoing", [])
        onOpenUrl: report("openUrl", arg)
        onDial: report("dial", number)
        onDialViaModem: report("dialViaModem", [modemPath, number])
        onShowCellularErrorDialog: report("showCellularErrorDialog", [])
        onOpenContactCard: report("openContactCard", number)
        onToggleCall: report("toggleCall", [])
    }

    Component.onCompleted: console.info("loaded")
}
