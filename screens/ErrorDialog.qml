// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

/// Says that nobody can phone.
Dialog {
    id: dialog

    function show(why) {
        text = why !== "" ? why : qsTr("Calls cannot be made now. Check the SIM card and the network "
                                       + "settings, and try again.");
        open = true;
    }

    heading: qsTr("Cellular network unavailable")
    icon: "network"
    summary: "cellular error"

    Keys.onPressed: {
        if ([Qt.Key_Return, Qt.Key_Enter, Qt.Key_Space].indexOf(event.key) < 0)
            return;
        closeRequested();
        event.accepted = true;
    }

    PillButton {
        text: qsTr("OK")
        width: parent.width
        onClicked: dialog.closeRequested()
    }
}
