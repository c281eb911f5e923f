// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "reminderalarms.h"
#include "remindernotifications.h"
#include "reminderstore.h"

#include <QDateTime>
#include <QObject>
#include <QQueue>
#include <QSet>
#include <QString>

#include <functional>

class Reminder;

/// The call reminders of this handset: for each phone number an alarm of the time daemon, and a
/// notification that shows it. Both outlive this process, and a new object reads them back.
///
/// Reminder objects show QML the reminder for a number, and report its changes. Their handlers may
/// call this object, rebind or destroy any Reminder, and destroy this object too.
class Reminders : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Reminders)

public:
    explicit Reminders(QObject *parent = nullptr);

    /// Reminds the user at \a when to call \a phoneNumber: adds an alarm named \a contactName, or
    /// replaces the alarm of the number, and then shows a notification with \a applicationName,
    /// \a title and \a description. Returns at once. Logs a warning if the reminder cannot be made.
    Q_INVOKABLE void createWithStrings(const QString &phoneNumber, const QDateTime &when,
                                       const QString &applicationName, const QString &contactName,
                                       const QString &title, const QString &description);

    // For Reminder.

    /// Binds \a reminder, whose number is not empty, to the record of its number.
    void attachReminder(Reminder *reminder);
    /// Unbinds \a reminder as ReminderStore::unbindFromFirst() does; it shows no reminder any more.
    void detachReminder(Reminder *reminder);
    /// Removes \a reminder, which is being destroyed, from the index.
    void forgetReminder(const Reminder *reminder);
    /// Removes the alarm and the notification that \a reminder shows.
    void removeReminder(const Reminder *reminder);

private Q_SLOTS:
    void notificationClosed(uint id, uint reason);

private:
    /// A notification that is to be shown for an alarm that exists.
    struct Publication
    {
        PhoneNumberKeys keys;
        uint cookie;
        QDateTime due;
        ReminderText text;
        bool isWanted = true; ///< False once the alarm is gone.
    };

    void alarmAdded(const PhoneNumberKeys &keys, const QDateTime &due, const ReminderText &text,
                    uint cookie);
    void publishNext();
    ReminderRecord *recordOf(const Publication &publication);
    void forgetPublications(const ReminderRecord &record);
    void mergeAlarms(const QVector<ReminderAlarm> &alarms);
    void matchNotifications(const QVector<ReminderNotification> &notifications);
    void alarmTriggersChanged(const Maemo::Timed::Event::Triggers &triggers);
    void announce(const ReminderRecord &record, const QDateTime &due);
    static void closeNotification(ReminderRecord &record);
    void forEachBound(const ReminderRecord &record, const std::function<void(Reminder &)> &change);

    ReminderStore m_store;
    ReminderAlarms m_alarms;
    ReminderNotifications m_notifications;
    /// In the order of the alarms. Only the first one is under way, because a later one for the
    /// same number replaces the notification of the first.
    QQueue<Publication> m_publications;
    /// The notifications that the service has closed since the current publication began.
    QSet<uint> m_closedMeanwhile;
};
