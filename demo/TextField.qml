// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

/// A line of text to be typed.
Rectangle {
    id: field

    /// What there is to change.
    property string value
    /// What has been typed.
    readonly property alias text: input.text
    readonly property bool changed: text !== value
    property string hint
    readonly property alias editing: input.activeFocus

    /// The text is to be taken over: Return was pressed, or the keyboard went elsewhere.
    signal finished(bool confirmed)
    /// The text is not wanted: Escape was pressed.
    signal abandoned()

    function revert() {
        input.text = Qt.binding(function() { return field.value; });
    }

    border.color: editing ? Style.accent : Style.outline
    border.width: Math.max(1, Style.px(editing ? 2 : 1))
    clip: true
    color: Style.surface
    height: Style.px(46)
    radius: Style.px(12)

    TextInput {
        id: input

        readonly property bool tabStop: true

        anchors.fill: parent
        anchors.leftMargin: Style.px(14)
        anchors.rightMargin: Style.px(14)
        clip: true
        color: Style.text
        font.family: Style.family
        font.pixelSize: Math.max(1, Style.px(15))
        maximumLength: 500
        selectByMouse: true
        selectedTextColor: Style.backgroundBottom
        selectionColor: Style.accent
        text: field.value
        verticalAlignment: TextInput.AlignVCenter

        Keys.onEscapePressed: field.abandoned()
        Keys.onReturnPressed: field.finished(true)
        Keys.onEnterPressed: field.finished(true)
        onActiveFocusChanged: {
            if (activeFocus)
                return;
            field.finished(false);
            cursorPosition = 0; // the beginning is what tells one text from another
        }
        onTextChanged: {
            if (!activeFocus)
                cursorPosition = 0;
        }
    }

    Label {
        anchors.fill: input
        color: Style.dimText
        horizontalAlignment: Text.AlignLeft
        text: field.hint
        visible: input.text === ""
    }
}
