// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import QtQuick.Layouts 1.15

/// Says that the call UI has ended.
Rectangle {
    Layout.fillWidth: true
    color: Look.alert
    implicitHeight: row.implicitHeight + 2 * Look.gap
    objectName: "banner"
    visible: panel.uiEnd !== ""

    RowLayout {
        id: row

        anchors.fill: parent
        anchors.margins: Look.gap
        spacing: Look.gap

        Words {
            Layout.fillWidth: true
            font.bold: true
            objectName: "bannerText"
            text: panel.uiEnd
        }
        Act {
            objectName: "startAgain"
            text: "Start it again"
            onClicked: panel.run(["restart"])
        }
    }
}
