// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDateTime>
#include <QPointer>
#include <QString>
#include <QVector>

class Reminder;

/// The two forms of a phone number by which a record is found: exactly, or loosely, where two
/// numbers differ in their prefixes alone.
struct PhoneNumberKeys
{
    QString normalized;
    QString minimized;

    /// Of a number that somebody asks about: the loose key is that of the exact one.
    static PhoneNumberKeys of(const QString &number);
    /// Of a number read back from an alarm: both keys are those of the text itself. This is meant.
    static PhoneNumberKeys ofAlarm(const QString &number);
};

/// What is known of the reminder for one phone number.
struct ReminderRecord
{
    using Age = quint64;

    Age age; ///< Greater than that of every record that was added before. Never changes.
    QString normalizedNumber;
    QString minimizedNumber;
    QDateTime when; ///< When the alarm is due; invalid while there was none.
    /// Who watches the number, in the order in which they came. One that is destroyed may stay
    /// listed, as null.
    QVector<QPointer<Reminder>> reminders;
    uint alarmCookie = 0; ///< 0 for no alarm. Set by the store, which finds the record by it.
    uint notificationId = 0; ///< 0 for no notification.

    bool hasReminder() const { return alarmCookie != 0 && notificationId != 0; }
    bool isUnused() const { return reminders.isEmpty() && alarmCookie == 0 && notificationId == 0; }
};
