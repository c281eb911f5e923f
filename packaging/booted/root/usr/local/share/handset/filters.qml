// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15

/// Tells what the SIMs may do, as soon as that is known.
Item {
    readonly property string told: simFiltersHelper.ready
        ? "sims " + simFiltersHelper.activeSimCount + " dial " + simFiltersHelper.anyActiveSimCanDial
          + " receive " + simFiltersHelper.anyActiveSimCanReceive
        : ""

    onToldChanged: console.info(told)
}
