// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "callqueue.h"

#include <timed/interface.h>

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QVector>

#include <functional>

/// An alarm of a reminder, as the time daemon has it.
struct ReminderAlarm
{
    uint cookie;
    QString phoneNumber; ///< As it was written into the alarm.
    QDateTime due; ///< Local time.
};

/// The alarms of call reminders in the time daemon. It keeps no alarms: what comes of a
/// call is handed to whoever called. Calls that have no answer yet, or are not sent yet, end with
/// the object.
class ReminderAlarms : public QObject
{
    Q_OBJECT

public:
    using Found = std::function<void(const QVector<ReminderAlarm> &alarms)>;

    explicit ReminderAlarms(QObject *parent = nullptr);

    /// Adds an alarm for \a normalizedNumber at \a due (UTC), or puts it in the place of the one
    /// with the cookie \a replaced if that is not 0. Calls \a added with the new cookie, which is
    /// not 0; logs a warning and calls nothing if there is none.
    void schedule(uint replaced, const QString &normalizedNumber, const QString &contactName,
                  const QDateTime &due, const std::function<void(uint cookie)> &added);

    /// Takes an alarm away. Whether there was one is not told.
    void cancel(uint cookie);

    /// Calls \a found with all alarms of call reminders in the order of their cookies. Logs a
    /// warning and calls nothing if they cannot be had.
    void query(const Found &found);

Q_SIGNALS:
    /// The alarms of the daemon, of whatever kind, are now \a triggers.
    void triggersChanged(const Maemo::Timed::Event::Triggers &triggers);

private:
    void queryAttributes(const QList<uint> &cookies, const Found &found);

    Maemo::Timed::Interface m_timed;
    CallQueue m_calls; ///< The calls that make alarms; there may be many at once.
};
