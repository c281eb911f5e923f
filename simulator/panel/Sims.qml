// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import QtQuick.Layouts 1.15

Section {
    id: root

    readonly property var items: panel.sims.items

    title: "SIMs and rules"

    Words {
        color: Look.dimText
        text: "No telephony"
        visible: root.items.length === 0
    }
    Repeater {
        model: panel.sims

        RowLayout {
            id: row

            required property var entry
            required property int index
            readonly property bool has: entry.imsi !== ""

            spacing: Look.gap

            Words {
                Layout.preferredWidth: 48
                text: row.entry.modem
            }
            Words {
                Layout.fillWidth: true
                text: row.entry.imsi + (row.entry.locked ? ", locked" : "")
                visible: row.has
            }
            Field {
                id: imsi

                objectName: "imsi " + row.entry.modem
                label: "IMSI"
                text: "26201000000000" + (index + 1)
                visible: !row.has
                onAccepted: insert.clicked()
            }
            Act {
                id: insert

                objectName: "insert " + row.entry.modem
                subject: row.entry.modem
                text: "Insert"
                visible: !row.has
                onClicked: panel.run(["sim", "insert", imsi.text, row.entry.modem])
            }
            Act {
                objectName: (row.entry.locked ? "unlock " : "lock ") + row.entry.modem
                subject: row.entry.modem
                text: row.entry.locked ? "Unlock" : "Lock"
                visible: row.has
                onClicked: panel.run(["sim", row.entry.locked ? "unlock" : "lock", row.entry.modem])
            }
            Act {
                objectName: "remove " + row.entry.modem
                subject: row.entry.modem
                text: "Remove"
                visible: row.has
                onClicked: panel.run(["sim", "remove", row.entry.modem])
            }
        }
    }
    Filter {
        filter: "dial"
        rules: panel.dialRules.items
        sims: root.items
        title: "Dialled calls"
    }
    Filter {
        filter: "incoming"
        rules: panel.incomingRules.items
        sims: root.items
        title: "Incoming calls"
    }
}
