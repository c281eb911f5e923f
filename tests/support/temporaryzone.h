// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QByteArray>

#include <ctime>

/// The time zone of this process, until the object ends.
class TemporaryZone
{
public:
    /// Sets \a zone, in the form of the variable TZ.
    explicit TemporaryZone(const QByteArray &zone)
        : m_wasSet(qEnvironmentVariableIsSet("TZ"))
        , m_before(qgetenv("TZ"))
    {
        set(zone);
    }
    ~TemporaryZone()
    {
        if (m_wasSet)
            qputenv("TZ", m_before);
        else
            qunsetenv("TZ");
        tzset();
    }
    Q_DISABLE_COPY(TemporaryZone)

    static void set(const QByteArray &zone)
    {
        qputenv("TZ", zone);
        tzset();
    }

private:
    bool m_wasSet;
    QByteArray m_before;
};
