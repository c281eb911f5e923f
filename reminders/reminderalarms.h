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

/// The alarm of a reminder, as the time daemon stores it.
struct ReminderAlarm
{
    uint cookie;
    QString phoneNumber; ///< The text that was written into the alarm.
    QDateTime due; ///< Local time.
};

/// The alarms of call reminders in the time daemon. An object stores no alarms: it hands the result
/// of a call to the caller. Calls that wait for an answer, or to be sent, end with the object.
class ReminderAlarms : public QObject
{
    Q_OBJECT

public:
    using Found = std::function<void(const QVector<ReminderAlarm> &alarms)>;

    explicit ReminderAlarms(QObject *parent = nullptr);

    /// Adds an alarm for \a normalizedNumber at \a due (UTC). If \a replaced is not 0, the new
    /// alarm replaces the one with that cookie. Calls \a added with the new cookie, which is not 0;
    /// if there is none, logs a warning instead.
    void schedule(uint replaced, const QString &normalizedNumber, const QString &contactName,
                  const QDateTime &due, const std::function<void(uint cookie)> &added);

    /// Removes an alarm. Does not report whether there was one.
    void cancel(uint cookie);

    /// Calls \a found with all alarms of call reminders in the order of their cookies. If the
    /// daemon does not provide them, logs a warning instead.
    void query(const Found &found);

Q_SIGNALS:
    /// The daemon's alarms of all kinds are now \a triggers.
    void triggersChanged(const Maemo::Timed::Event::Triggers &triggers);

private:
    void queryAttributes(const QList<uint> &cookies, const Found &found);

    Maemo::Timed::Interface m_timed;
    CallQueue m_calls; ///< The calls that make alarms. There may be many at once.
};
