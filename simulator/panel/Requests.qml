// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import QtQuick.Layouts 1.15

Section {
    title: "Requests"

    Flow {
        Layout.fillWidth: true
        spacing: Look.gap

        Act {
            objectName: "show"
            text: "Show"
            onClicked: panel.run(["show"])
        }
        Act {
            objectName: "ongoing"
            text: "Ongoing"
            onClicked: panel.run(["ongoing"])
        }
        Act {
            objectName: "toggle"
            text: "Toggle"
            onClicked: panel.run(["toggle"])
        }
        Act {
            objectName: "toggleAs"
            text: "Toggle as a stranger"
            onClicked: panel.run(["toggle-as", "65534", "65534"])
        }
        Act {
            objectName: "errorDialog"
            text: "Error dialog"
            onClicked: panel.run(["error-dialog"])
        }
    }
    RowLayout {
        spacing: Look.gap

        Field {
            id: number

            objectName: "number"
            label: "Number"
            text: "+49 30 1234567"
            onAccepted: dial.clicked()
        }
        Act {
            id: dial

            objectName: "dial"
            text: "Dial"
            onClicked: panel.run(["dial", number.text])
        }
        Act {
            objectName: "contact"
            text: "Contact"
            onClicked: panel.run(["contact", number.text])
        }
        Act {
            objectName: "incoming"
            text: "Incoming call"
            onClicked: panel.run(["ring", number.text.replace(/[^+*#0-9]/g, "")])
        }
    }
    RowLayout {
        spacing: Look.gap

        Field {
            id: modem

            objectName: "modem"
            label: "Modem"
            text: "/ril_1"
            onAccepted: dialVia.clicked()
        }
        Act {
            id: dialVia

            objectName: "dialVia"
            text: "Dial the number through it"
            onClicked: panel.run(["dial-via", modem.text, number.text])
        }
    }
    RowLayout {
        spacing: Look.gap

        Field {
            id: url

            objectName: "url"
            label: "URL"
            text: "https://example.org/voicemail"
            onAccepted: open.clicked()
        }
        Act {
            id: open

            objectName: "open"
            text: "Open"
            onClicked: panel.run(["open", url.text])
        }
    }
}
