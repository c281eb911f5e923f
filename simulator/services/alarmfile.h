// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "alarm.h"
#include "statefile.h"

/// The file in which the time daemon keeps its alarms.
class AlarmFile
{
public:
    struct Content
    {
        uint lastCookie = 0; ///< The largest that was ever given.
        AlarmsByCookie alarms;
    };

    /// The file is "alarms.json" in \a folder; neither needs to exist.
    explicit AlarmFile(const QString &folder);

    /// What was saved last; nothing if there is no such file, or none that can be read.
    Content load() const;

    void save(const Content &content) const;

private:
    StateFile m_file;
};
