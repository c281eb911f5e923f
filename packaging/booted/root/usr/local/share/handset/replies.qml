// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import com.nimbo.parley 1.0

/// Tells how many quick replies there are.
Item {
    QuickMessagesModel {
        Component.onCompleted: console.info("replies", count)
    }
}
