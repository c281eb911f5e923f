// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDateTime>

/// When a reminder is due.
///
/// A QDateTime in local time keeps its hour when the zone of the handset changes, and so becomes
/// another moment. This one stays the same moment and gets another hour, as the alarm does.
class DueTime
{
public:
    /// Invalid.
    DueTime() = default;
    /// Takes \a time, which is in UTC or in local time.
    explicit DueTime(const QDateTime &time)
        : m_moment(time.toUTC())
        , m_isLocal(time.timeSpec() == Qt::LocalTime)
    {
    }

    /// Returns the moment in UTC or in local time, as it was given.
    QDateTime toDateTime() const { return m_isLocal ? m_moment.toLocalTime() : m_moment; }

private:
    QDateTime m_moment; ///< In UTC.
    bool m_isLocal = true;
};
