// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "callqueue.h"

#include <QObject>
#include <QString>
#include <QVector>

#include <functional>

/// A notification of a reminder, as the notification service has it.
struct ReminderNotification
{
    uint id;
    uint alarmCookie; ///< 0 if it names no alarm.
};

/// What a reminder's notification says.
struct ReminderText
{
    QString applicationName;
    QString title;
    QString description;
};

/// The notifications of call reminders in the notification service. It keeps no notifications.
/// Calls that have no answer yet, or are not sent yet, end with the object.
class ReminderNotifications : public QObject
{
    Q_OBJECT

public:
    using Found = std::function<void(const QVector<ReminderNotification> &notifications)>;

    explicit ReminderNotifications(QObject *parent = nullptr);

    /// Connects "NotificationClosed" of the service to \a slot (a SLOT()) of \a receiver.
    static void subscribe(QObject *receiver, const char *slot);

    /// Shows \a text for the alarm \a cookie, in the place of the notification \a replaced if that
    /// is not 0. Returns the id that the service gave, or \a replaced if it gave none; until it has
    /// answered events are served, whose handlers may do anything.
    static uint publish(const ReminderText &text, uint cookie, uint replaced);

    /// Takes a notification away. Whether there was one is not told.
    static void close(uint id);

    /// Closes one of many notifications. Only some of these calls are under way at a time.
    void closeLeftover(uint id);

    /// Calls \a found with all notifications of call reminders. Logs a warning and calls nothing if
    /// they cannot be had.
    void query(const Found &found);

private:
    CallQueue m_leftovers;
};
