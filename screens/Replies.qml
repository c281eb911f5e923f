// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0
import "."
import "text.js" as Words

/// The quick replies. They are logged after each change.
QuickMessagesModel {
    id: replies

    /// Whether there are changes that save() has not written.
    property bool unsaved: false

    function has(index) {
        return index >= 0 && index < count;
    }

    function text(index) {
        return Words.clean(data(replies.index(index, 0), Qt.DisplayRole));
    }

    function add(text) {
        append(text);
        changed(true);
    }

    function edit(index, text) {
        setData(replies.index(index, 0), text, Qt.EditRole);
        changed(true);
    }

    function take(index) {
        remove(index);
        changed(true);
    }

    function write() {
        save();
        changed(hasError);
    }

    function restore() {
        reset();
        changed(true);
    }

    function changed(isUnsaved) {
        unsaved = isUnsaved;
        Qt.callLater(report); // Log one line for all changes of one event.
    }

    function report() {
        var texts = [];
        for (var i = 0; i < count && i < 20; ++i)
            texts.push(text(i));
        var state = (unsaved ? " unsaved" : "") + (hasError ? " (error)" : "");
        Log.tell("replies: " + count + state + ": " + texts.join(" | "));
    }

    // Another process has written the file, or the defaults were restored.
    onModelReset: changed(false)
    onHasErrorChanged: Qt.callLater(report)
}
