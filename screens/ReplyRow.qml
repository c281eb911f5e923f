// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

/// One quick reply, which can be edited or removed.
Item {
    id: row

    /// The position of the reply, from 1.
    property int number
    property string reply
    readonly property alias editing: field.editing

    signal edited(string text)
    signal removeRequested()
    signal done()

    Accessible.ignored: !enabled
    Accessible.name: field.name
    Accessible.role: Accessible.ListItem

    height: field.height

    TextField {
        id: field

        anchors.left: parent.left
        anchors.right: removeButton.left
        anchors.rightMargin: Style.px(6)
        name: qsTr("Reply %1").arg(row.number)
        hint: qsTr("Empty: it is not saved")
        value: row.reply

        onAbandoned: {
            revert();
            row.done();
        }
        onFinished: function(confirmed) {
            if (changed) {
                row.edited(text);
                revert();
            }
            if (confirmed)
                row.done();
        }
    }

    RoundButton {
        id: removeButton

        anchors.right: parent.right
        anchors.rightMargin: Style.px(4) // room for the focus ring
        anchors.verticalCenter: parent.verticalCenter
        fill: "transparent"
        icon: "remove"
        iconSize: 20
        name: qsTr("Remove reply %1").arg(row.number)
        ink: Style.dimText
        size: 42
        onClicked: {
            field.revert();
            row.removeRequested();
        }
    }
}
