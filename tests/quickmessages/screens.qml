// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0

// Logs each change of the messages, and evaluates expressions for a test.
Item {
    height: 100
    width: 100

    QuickMessagesModel {
        id: messages

        onActiveChanged: console.info("told active: " + active)
        onCountChanged: console.info("told count: " + count)
        onHasErrorChanged: console.info("told error: " + hasError)
    }

    Repeater {
        id: shown

        model: messages
        delegate: Item {
            readonly property string text: model.display
            readonly property string editedText: model.edit
        }
    }

    function texts() {
        var texts = [];
        for (var i = 0; i < shown.count; ++i)
            texts.push(shown.itemAt(i).text);
        return texts;
    }

    ParleyUiAdaptor {
        onShow: function(args) { console.info("evaluated " + JSON.stringify(eval(args[1]))); }
    }

    Component.onCompleted: console.info("loaded")
}
