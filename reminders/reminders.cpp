// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "reminders.h"

#include "reminder.h"

#include <utility>

// Whatever changes a Reminder runs handlers, which may do anything: no record is held across that,
// and nothing is touched afterwards before it is known that this object is still there.

Reminders::Reminders(QObject *parent)
    : QObject(parent)
{
    connect(&m_alarms, &ReminderAlarms::triggersChanged, this, &Reminders::dropGoneAlarms);
    ReminderNotifications::subscribe(this, SLOT(notificationClosed(uint, uint)));
    m_alarms.query([this](const QVector<ReminderAlarm> &alarms) { mergeAlarms(alarms); });
}

void Reminders::createWithStrings(const QString &phoneNumber, const QDateTime &when,
                                  const QString &applicationName, const QString &contactName,
                                  const QString &title, const QString &description)
{
    const QDateTime due = when.toUTC();
    const PhoneNumberKeys keys = PhoneNumberKeys::of(phoneNumber);
    const ReminderRecord *record = m_store.find(keys);
    const ReminderText text{applicationName, title, description};
    m_alarms.schedule(
        record ? record->alarmCookie : 0, keys.normalized, contactName, due,
        [this, keys, due, text](uint cookie) { alarmAdded(keys, due, text, cookie); });
}

void Reminders::alarmAdded(const PhoneNumberKeys &keys, const QDateTime &due,
                           const ReminderText &text, uint cookie)
{
    const QPointer<Reminders> self(this);
    ReminderRecord *record = m_store.findOrAppend(keys);
    m_store.setCookie(*record, cookie);
    record->when = due;
    const uint id = ReminderNotifications::publish(text, cookie, record->notificationId);
    // A client of the platform's own may have run events while it waited.
    record = self ? m_store.find(keys) : nullptr;
    if (record == nullptr)
        return;
    record->notificationId = id;
    announce(*record, cookie, due);
}

/// Reported only when the store is done with it: a handler meets every record as it is to be.
void Reminders::attachReminder(Reminder *reminder)
{
    const auto shown = m_store.bind(reminder, PhoneNumberKeys::of(reminder->phoneNumber()));
    if (shown)
        reminder->adopt(shown->exists, shown->when);
    else if (reminder->exists())
        reminder->lose();
}

void Reminders::detachReminder(Reminder *reminder)
{
    m_store.unbindFromFirst(reminder);
    if (reminder->exists())
        reminder->lose();
}

void Reminders::removeReminder(const Reminder *reminder)
{
    ReminderRecord *record = m_store.findByReminder(reminder);
    if (record == nullptr)
        return;
    closeNotification(*record);
    if (record->alarmCookie != 0) {
        m_alarms.cancel(record->alarmCookie);
        m_store.setCookie(*record, 0);
    }
    forEachBound(*record, &Reminder::lose);
}

void Reminders::notificationClosed(uint id, uint)
{
    if (ReminderRecord *record = m_store.findByNotification(id))
        record->notificationId = 0;
}

void Reminders::mergeAlarms(const QVector<ReminderAlarm> &alarms)
{
    for (const ReminderAlarm &alarm : alarms) {
        ReminderRecord *record = m_store.findOrAppend(PhoneNumberKeys::ofAlarm(alarm.phoneNumber));
        m_store.setCookie(*record, alarm.cookie);
        record->when = alarm.due;
    }
    m_notifications.query([this](const QVector<ReminderNotification> &notifications) {
        matchNotifications(notifications);
    });
}

void Reminders::matchNotifications(const QVector<ReminderNotification> &notifications)
{
    const QPointer<Reminders> self(this);
    for (const ReminderNotification &notification : notifications) {
        ReminderRecord *record = m_store.findByCookie(notification.alarmCookie);
        if (record == nullptr) {
            ReminderNotifications::close(notification.id);
            continue;
        }
        record->notificationId = notification.id;
        announce(*record, record->alarmCookie, record->when);
        if (!self)
            return;
    }
}

void Reminders::dropGoneAlarms(const Maemo::Timed::Event::Triggers &triggers)
{
    const QPointer<Reminders> self(this);
    const QVector<uint> cookies = m_store.cookies();
    for (const uint cookie : cookies) {
        ReminderRecord *record = triggers.contains(cookie) ? nullptr : m_store.findByCookie(cookie);
        if (record == nullptr)
            continue;
        m_store.setCookie(*record, 0);
        closeNotification(*record);
        if (record->reminders.isEmpty())
            m_store.erase(record);
        else
            forEachBound(*record, &Reminder::lose);
        if (!self)
            return;
    }
}

void Reminders::closeNotification(ReminderRecord &record)
{
    if (record.notificationId != 0)
        ReminderNotifications::close(std::exchange(record.notificationId, 0));
}

/// Until a handler takes the alarm away, which tells everybody by itself.
void Reminders::announce(const ReminderRecord &record, uint cookie, const QDateTime &due)
{
    forEachBound(record, [this, cookie, due](Reminder &reminder) {
        if (m_store.findByCookie(cookie) != nullptr)
            reminder.gain(due);
    });
}

/// In the order in which they were bound. Those that a handler has unbound meanwhile are passed
/// over, those that it has bound have been told already.
void Reminders::forEachBound(const ReminderRecord &record,
                             const std::function<void(Reminder &)> &change)
{
    const QPointer<Reminders> self(this);
    const QString number = record.normalizedNumber;
    const QVector<QPointer<Reminder>> bound = record.reminders;
    for (const QPointer<Reminder> &reminder : bound) {
        if (!self)
            return;
        if (reminder && m_store.isBound(number, reminder))
            change(*reminder);
    }
}
