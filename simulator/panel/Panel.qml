// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import QtQuick.Window 2.15

ApplicationWindow {
    id: window

    /// The panel opens beside the phone.
    readonly property int phoneWidth: 376
    readonly property bool isWide: width >= 760

    /// Scrolls to the item that has the keyboard focus.
    function reveal(item) {
        for (var one = item; one; one = one.parent) {
            if (one === sections) {
                var top = item.mapToItem(sections, 0, 0).y;
                var lowest = top + item.height - scroller.height;
                scroller.contentY = Math.max(Math.min(scroller.contentY, top), lowest);
                return;
            }
        }
    }

    color: Look.background
    height: Math.min(1000, Screen.desktopAvailableHeight - 40)
    minimumHeight: 300
    minimumWidth: 400
    title: "Handset"
    width: Math.max(minimumWidth, Math.min(920, Screen.width - phoneWidth))

    onActiveFocusItemChanged: reveal(activeFocusItem)

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        Banner {}

        GridLayout {
            Layout.fillHeight: true
            Layout.fillWidth: true
            Layout.margins: 6
            columnSpacing: 6
            columns: window.isWide ? 2 : 1
            rowSpacing: 6

            Flickable {
                id: scroller

                Layout.fillHeight: true
                Layout.fillWidth: !window.isWide
                Layout.preferredHeight: 300
                Layout.preferredWidth: 450
                ScrollBar.vertical: ScrollBar {}
                boundsBehavior: Flickable.StopAtBounds
                clip: true
                contentHeight: sections.height
                contentWidth: width

                ColumnLayout {
                    id: sections

                    spacing: 6
                    width: scroller.width - 10

                    Requests {}
                    Sims {}
                    Alarms {}
                    Shade {}
                    Services {}
                    Replies {}
                }
            }
            ColumnLayout {
                Layout.fillHeight: true
                Layout.fillWidth: true
                Layout.preferredHeight: 300
                Layout.preferredWidth: 300
                spacing: 6

                QmlErrors {}
                Journal {
                    Layout.fillHeight: true
                    Layout.preferredHeight: 200
                }
                Transcript {
                    Layout.fillHeight: true
                    Layout.preferredHeight: 200
                }
            }
        }
    }
}
