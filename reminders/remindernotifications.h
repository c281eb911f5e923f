// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "callqueue.h"

#include <QObject>
#include <QString>
#include <QVector>

#include <functional>

/// The notification of a reminder, as the notification service stores it.
struct ReminderNotification
{
    uint id;
    uint alarmCookie; ///< 0 if the notification names no alarm.
};

/// The text of a reminder's notification.
struct ReminderText
{
    QString applicationName;
    QString title;
    QString description;
};

/// The notifications of call reminders in the notification service. An object stores no
/// notifications. Calls that wait for an answer, or to be sent, end with the object.
class ReminderNotifications : public QObject
{
    Q_OBJECT

public:
    using Found = std::function<void(const QVector<ReminderNotification> &notifications)>;

    explicit ReminderNotifications(QObject *parent = nullptr);

    /// Connects "NotificationClosed" of the service to \a slot (a SLOT()) of \a receiver.
    static void subscribe(QObject *receiver, const char *slot);

    /// Shows \a text for the alarm \a cookie. If \a replaced is not 0, the new notification
    /// replaces the one with that id. Returns the id from the service, or \a replaced if the
    /// service gives none. Until the service has answered, events are processed, whose handlers may
    /// do anything.
    static uint publish(const ReminderText &text, uint cookie, uint replaced);

    /// Closes a notification. Does not report whether there was one.
    static void close(uint id);

    /// Closes one of many notifications. Only a limited number of these calls is under way at a
    /// time.
    void closeLeftover(uint id);

    /// Calls \a found with all notifications of call reminders. If the service does not provide
    /// them, logs a warning instead.
    void query(const Found &found);

private:
    CallQueue m_leftovers;
};
