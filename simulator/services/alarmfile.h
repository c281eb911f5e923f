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
        uint lastCookie = 0; ///< The largest one that was ever assigned.
        AlarmsByCookie alarms;
    };

    /// The file is "alarms.json" in \a folder; neither needs to exist.
    explicit AlarmFile(const QString &folder);

    /// Returns the content that was saved last. It is empty if the file does not exist or cannot be
    /// read.
    Content load() const;

    void save(const Content &content) const;

private:
    StateFile m_file;
};
