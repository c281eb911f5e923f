// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import QtQuick.Layouts 1.15

/// A part of the panel with a title.
Rectangle {
    id: root

    property string title
    default property alias content: column.data

    Accessible.name: title
    Accessible.role: Accessible.Grouping

    Layout.fillWidth: true
    color: Look.surface
    implicitHeight: column.implicitHeight + 2 * Look.gap + 4
    radius: 6

    ColumnLayout {
        id: column

        anchors.fill: parent
        anchors.margins: Look.gap + 2
        spacing: Look.gap

        Words {
            color: Look.accent
            font.bold: true
            text: root.title
        }
    }
}
