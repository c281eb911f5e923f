// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "alarm.h"

#include <QByteArray>
#include <QHash>
#include <QString>

#include <optional>

/// A user's alarms.
struct Alarms
{
    uint lastCookie = 0; ///< The one that was assigned last.
    AlarmsByCookie pending; ///< Those that have yet to fire.
    AlarmsByCookie due; ///< Those that have fired, and that the user has not answered.
};

/// The file in which a user's alarms are kept. It is JSON.
class AlarmFile
{
public:
    /// The file is at \a path; neither it nor its folder needs to exist.
    explicit AlarmFile(const QString &path);

    /// Returns the alarms that were saved last; none if there is no file. A damaged file is
    /// renamed, with a warning in the log.
    Alarms load();

    /// Replaces the file in one step and returns when that is on the disk: after a power cut there
    /// is either the old content or the new one. Returns why that failed; empty if it succeeded.
    /// An alarm never changes under its cookie.
    QString save(const Alarms &alarms);

    /// Reads the content of a file. Returns nothing if it is damaged.
    static std::optional<Alarms> parse(const QByteArray &content);

private:
    QByteArray toJson(const Alarms &alarms);
    void putAside(const QString &why);

    const QString m_path;
    QHash<uint, QByteArray> m_texts; ///< The alarms in the file as they stand there, by cookie.
    bool m_isReplaceable = true; ///< False while a damaged file stands in the way.
};
