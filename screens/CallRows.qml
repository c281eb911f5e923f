// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."
import "text.js" as Words

/// The calls besides the one on the call screen. Pressing one speaks with it.
ListView {
    id: list

    property Line line
    readonly property var calls: line.isConference ? [line.main].concat(line.members, line.others)
                                                   : line.others

    Accessible.ignored: !enabled || !visible
    Accessible.name: qsTr("Other calls")
    Accessible.role: Accessible.List

    boundsBehavior: Flickable.StopAtBounds
    clip: true
    height: Math.min(contentHeight, Style.px(3 * 46 + 2 * 6))
    model: calls
    spacing: Style.px(6)
    visible: calls.length > 0

    delegate: SheetRow {
        readonly property bool isMember: list.line.isConference && index <= list.line.members.length

        detail: isMember ? qsTr("Speak alone")
                         : modelData.callState === "held" ? qsTr("On hold") : qsTr("Active")
        objectName: "call " + modelData.number
        text: Words.caller(modelData)
        width: list.width
        onActiveFocusChanged: {
            if (activeFocus)
                list.positionViewAtIndex(index, ListView.Contain);
        }
        onClicked: {
            if (isMember)
                list.line.split(modelData);
            else
                list.line.swap();
        }
    }
}
