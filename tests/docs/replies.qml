// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0

// Logs the quick replies.
Item {
    Repeater {
        model: QuickMessagesModel {}
        delegate: Item {
            Component.onCompleted: console.info("reply " + model.display)
        }
    }
}
