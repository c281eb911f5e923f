// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "duetime.h"

#include <QPointer>
#include <QString>
#include <QVector>

class Reminder;

/// The two forms of a phone number by which a record is found: the exact one, and a loose one that
/// is the same for numbers that differ only in their prefixes.
struct PhoneNumberKeys
{
    QString normalized;
    QString minimized;

    /// The keys of a number that a caller gives: the loose key is made from the exact one.
    static PhoneNumberKeys of(const QString &number);
    /// The keys of a number that is read back from an alarm: both are made from the text itself,
    /// and this is meant.
    static PhoneNumberKeys ofAlarm(const QString &number);
};

/// What is known about the reminder for one phone number.
struct ReminderRecord
{
    using Age = quint64;

    Age age; ///< Greater than that of every record that was added before. Never changes.
    QString normalizedNumber;
    QString minimizedNumber;
    DueTime when; ///< When the alarm is due; invalid until there has been one.
    /// The objects that watch the number, in the order in which they were bound. A destroyed object
    /// may stay listed as a null pointer.
    QVector<QPointer<Reminder>> reminders;
    uint alarmCookie = 0; ///< 0 for no alarm. Set by the store, which has an index of it.
    uint notificationId = 0; ///< 0 for no notification.

    bool hasReminder() const { return alarmCookie != 0 && notificationId != 0; }
    bool isUnused() const { return reminders.isEmpty() && alarmCookie == 0 && notificationId == 0; }
};
