// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "alarm.h"

#include <QString>

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

    /// What was saved last; nothing if there is no such file. One that cannot be read is put aside
    /// under another name, and a warning is logged.
    Content load() const;

    /// Writes it in one step: whenever this process ends, the file is the old or the new one. Logs
    /// a warning if it cannot be written.
    void save(const Content &content) const;

private:
    void putAside(const QString &why) const;

    QString m_folder;
    QString m_path;
};
