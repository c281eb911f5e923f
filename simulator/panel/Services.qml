// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import QtQuick.Layouts 1.15

Section {
    title: "Services"

    RowLayout {
        spacing: Look.gap

        Words {
            Layout.preferredWidth: 150
            text: "call UI"
        }
        Words {
            Layout.fillWidth: true
            color: panel.uiEnd === "" ? Look.good : Look.bad
            objectName: "state ui"
            text: panel.uiEnd === "" ? "running" : "ended"
        }
        Act {
            objectName: "restart"
            subject: "the call UI"
            text: "Restart"
            onClicked: panel.run(["restart"])
        }
    }
    Repeater {
        model: panel.services

        RowLayout {
            id: row

            readonly property string name: modelData.name
            readonly property string status: modelData.state

            spacing: Look.gap

            Words {
                Layout.preferredWidth: 150
                text: row.name
            }
            Words {
                Layout.fillWidth: true
                color: row.status === "running" ? Look.good : Look.bad
                objectName: "state " + row.name
                text: row.status
            }
            Act {
                enabled: row.status !== "stopped"
                objectName: "hang " + row.name
                subject: row.name
                text: row.status === "hung" ? "Continue" : "Hang"
                onClicked: panel.run([row.name, row.status === "hung" ? "continue" : "hang"])
            }
            Act {
                objectName: "stop " + row.name
                subject: row.name
                text: row.status === "stopped" ? "Start" : "Stop"
                onClicked: panel.run([row.name, row.status === "stopped" ? "start" : "stop"])
            }
        }
    }
}
