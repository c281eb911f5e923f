// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

/// A dialogue with the network, such as the one that *100# begins.
Dialog {
    id: dialog

    /// What speaks with the network; null while there is nothing.
    property var dialogue: null
    readonly property string stage: dialogue !== null ? dialogue.state : "idle"
    readonly property string said: {
        if (dialogue === null)
            return "";
        var answer = dialogue.answer;
        return dialogue.text || [answer.service, answer.status].filter(Boolean).join(": ");
    }

    function send() {
        if (field.text !== "")
            dialogue.reply(field.text);
        field.revert();
    }

    heading: stage === "active" ? qsTr("Asking the network…") : qsTr("The network says")
    icon: "network"
    summary: "network: " + (stage === "active" ? "asking" : said.replace(/\s+/g, " "))
             + (stage === "user-response" ? " (waits for a reply)" : "")
    text: stage === "active" ? "" : said || qsTr("Done")

    onCloseRequested: {
        if (stage !== "idle")
            dialogue.cancel();
    }
    // The network may begin. Wait until everything is known that it has said.
    function reveal() {
        if (stage !== "idle")
            open = true;
    }

    onStageChanged: Qt.callLater(reveal)

    TextField {
        id: field

        name: qsTr("Reply to the network")
        visible: dialog.stage === "user-response"
        width: parent.width
        onAbandoned: dialog.closeRequested()
        onFinished: function(confirmed) {
            if (confirmed)
                dialog.send();
        }
    }

    PillButton {
        text: qsTr("Send")
        visible: field.visible
        width: parent.width
        onClicked: dialog.send()
    }

    PillButton {
        text: dialog.stage === "idle" ? qsTr("Close") : qsTr("Cancel")
        width: parent.width
        onClicked: dialog.closeRequested()
    }
}
