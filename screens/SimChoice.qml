// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."
import "text.js" as Words

/// Asks through which SIM a number is to be called.
Dialog {
    id: dialog

    property string number
    /// The paths of the modems that can call.
    property var modems: []

    signal chosen(string modem)

    function ask(wanted) {
        number = wanted;
        open = true;
    }

    heading: qsTr("Call %1 with").arg(Words.isolated(Words.display(number)))
    icon: "sim"
    summary: "SIM for " + number

    Repeater {
        model: dialog.modems

        SheetRow {
            detail: modelData
            objectName: "sim " + modelData
            text: qsTr("SIM %1").arg(index + 1)
            width: parent.width
            onClicked: {
                dialog.open = false;
                dialog.chosen(modelData);
            }
        }
    }

    PillButton {
        text: qsTr("Cancel")
        width: parent.width
        onClicked: dialog.closeRequested()
    }
}
