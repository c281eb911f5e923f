// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15

/// The errors and warnings of the QML engine in the call UI.
Rectangle {
    id: root

    readonly property var items: panel.qmlErrors.items

    Layout.fillWidth: true
    border.color: Look.bad
    color: Look.well
    implicitHeight: Math.min(160, list.contentHeight + 2 * Look.gap)
    objectName: "qmlErrors"
    radius: 6
    visible: items.length > 0

    ListView {
        id: list

        ScrollBar.vertical: ScrollBar {}
        anchors.fill: parent
        anchors.margins: Look.gap
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        model: root.items

        delegate: Words {
            color: Look.bad
            elide: Text.ElideNone
            objectName: "qmlError " + index
            text: modelData.file + ":" + modelData.line
                + (modelData.column > 0 ? ":" + modelData.column : "") + ": " + modelData.text
            width: ListView.view.width - 10
            wrapMode: Text.Wrap
        }
    }
}
