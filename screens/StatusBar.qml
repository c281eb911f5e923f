// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

Item {
    id: bar

    property Sims sims
    property bool watched: false
    property bool inCall: false
    property date now: new Date()

    height: Style.px(28)

    Timer {
        interval: 1000
        repeat: true
        running: bar.watched
        triggeredOnStart: true
        onTriggered: bar.now = new Date()
    }

    Icon {
        anchors.left: parent.left
        anchors.leftMargin: Style.px(14)
        anchors.verticalCenter: parent.verticalCenter
        color: Style.green
        meaning: qsTr("Call in progress")
        name: "call"
        size: 14
        visible: bar.inCall
    }

    Label {
        anchors.centerIn: parent
        font.bold: true
        size: 12
        text: Qt.formatTime(bar.now, "hh:mm")
    }

    Row {
        anchors.right: parent.right
        anchors.rightMargin: Style.px(14)
        anchors.verticalCenter: parent.verticalCenter
        spacing: Style.px(5)

        Icon {
            anchors.verticalCenter: parent.verticalCenter
            color: Style.alert
            meaning: bar.sims.reason
            name: "barred"
            size: 14
            visible: bar.sims.reason !== ""
        }

        Label {
            anchors.verticalCenter: parent.verticalCenter
            color: Style.dimText
            size: 12
            text: {
                if (!bar.sims.known)
                    return bar.sims.overdue ? qsTr("No telephony answers") : qsTr("Checking SIMs…");
                return bar.sims.count === 0 ? qsTr("No SIM") : "";
            }
            visible: text !== ""
        }

        Icon {
            anchors.verticalCenter: parent.verticalCenter
            meaning: bar.sims.count === 1 ? qsTr("1 SIM") : qsTr("%n SIMs", "", bar.sims.count)
            name: "sim"
            size: 14
            visible: bar.sims.count > 0
        }

        Label {
            anchors.verticalCenter: parent.verticalCenter
            silent: true
            size: 12
            text: bar.sims.count
            visible: bar.sims.count > 1
        }
    }
}
