// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

/// A field for a line of text.
Rectangle {
    id: field

    /// What the field is for, for a screen reader.
    property string name
    /// The text to be edited.
    property string value
    /// The text that has been typed.
    readonly property alias text: input.text
    readonly property bool changed: text !== value
    property string hint
    readonly property alias editing: input.activeFocus

    /// Editing has finished: Return was pressed (confirmed), or the field has lost the focus.
    signal finished(bool confirmed)
    /// Editing was cancelled with Escape.
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

        Accessible.description: text === "" ? field.hint : ""
        Accessible.focusable: true
        Accessible.ignored: !enabled
        Accessible.name: field.name
        Accessible.role: Accessible.EditableText

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
            cursorPosition = 0; // Show the beginning of the text.
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
        silent: true
        text: field.hint
        visible: input.text === ""
    }
}
