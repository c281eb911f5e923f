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
    explicit AlarmFile(QString path);

    /// Returns the alarms that were saved last; none if there is no file. A damaged file is
    /// renamed, with a warning in the log. A file that cannot be read stays, and save() fails.
    Alarms load();

    /// Replaces the file in one step and returns when that is on the disk: after a power cut there
    /// is either the old content or the new one. Returns why that failed; empty if it succeeded.
    /// An alarm never changes under its cookie.
    QString save(const Alarms &alarms);

    /// Reads the content of a file. Returns nothing if it is damaged.
    static std::optional<Alarms> parse(const QByteArray &content);

private:
    using Texts = QHash<uint, QByteArray>; ///< Alarms as they stand in the file, by cookie.

    Texts textsOf(const Alarms &alarms) const;
    void putAside();

    const QString m_path;
    Texts m_texts; ///< Those of the last save.
    bool m_isReplaceable = true; ///< False while there is a file that was not read.
};
