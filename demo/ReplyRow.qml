// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

/// One quick reply, which can be edited or removed.
Item {
    id: row

    property string reply
    readonly property alias editing: field.editing

    signal edited(string text)
    signal removeRequested()
    signal done()

    height: field.height

    TextField {
        id: field

        anchors.left: parent.left
        anchors.right: removeButton.left
        anchors.rightMargin: Style.px(6)
        hint: "Empty: it is not saved"
        value: row.reply

        onAbandoned: {
            revert();
            row.done();
        }
        onFinished: {
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
        anchors.verticalCenter: parent.verticalCenter
        fill: "transparent"
        icon: "remove"
        iconSize: 20
        ink: Style.dimText
        size: 42
        onClicked: {
            field.revert();
            row.removeRequested();
        }
    }
}
