// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

import QtQuick 2.15
import "."

/// Half of a wide screen, or all of a tall one, where several panes lie above each other.
Item {
    property bool second: false

    anchors.bottom: parent.bottom
    anchors.left: second ? undefined : parent.left
    anchors.right: second ? parent.right : undefined
    anchors.top: parent.top
    width: Style.wide ? parent.width / 2 : parent.width
}
