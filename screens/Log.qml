// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

pragma Singleton

import QtQuick 2.15

/// What the screens show, as lines of the log. They hold numbers, names and texts of the user, so
/// they are only written where the environment asks for them: QT_LOGGING_RULES=screens.info=true.
QtObject {
    readonly property LoggingCategory category: LoggingCategory {
        defaultLogLevel: LoggingCategory.Warning
        name: "screens"
    }

    function tell(text) {
        console.info(category, text);
    }
}
