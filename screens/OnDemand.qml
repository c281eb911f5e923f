// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15

/// A part of the screens that is made when it is needed for the first time, and then kept.
Loader {
    /// Returns the item, which it makes unless it is there.
    function made() {
        active = true;
        return item;
    }

    active: false
    anchors.fill: parent
}
