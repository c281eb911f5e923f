// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "reminders.h"

#include "reminder.h"

#include <utility>

// A change of a Reminder runs handlers, which may do anything. Code below such a change therefore
// uses no pointer to a record from before it, and no member until it has checked that this object
// still exists.

Reminders::Reminders(QObject *parent)
    : QObject(parent)
{
    connect(&m_alarms, &ReminderAlarms::triggersChanged, this, &Reminders::alarmTriggersChanged);
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
    ReminderRecord *record = m_store.findOrAppend(keys);
    m_store.setCookie(*record, cookie);
    record->when = DueTime(due);
    m_publications.enqueue({keys, cookie, due, text});
    if (m_publications.size() == 1)
        publishNext();
}

/// Publishes the first one in the queue. The next one starts from the event loop, so that
/// publications are never nested.
void Reminders::publishNext()
{
    while (!m_publications.isEmpty() && recordOf(m_publications.head()) == nullptr)
        m_publications.dequeue();
    if (m_publications.isEmpty())
        return;

    const QPointer<Reminders> self(this);
    const Publication next = m_publications.head();
    const uint replaced = recordOf(next)->notificationId;
    const uint id = ReminderNotifications::publish(next.text, next.cookie, replaced);
    if (!self)
        return;

    // A replaced notification may have been closed before it was shown again.
    const bool isClosed = id != replaced && m_closedMeanwhile.contains(id);
    m_closedMeanwhile.clear();
    ReminderRecord *record = recordOf(m_publications.dequeue());
    if (!m_publications.isEmpty())
        QMetaObject::invokeMethod(this, &Reminders::publishNext, Qt::QueuedConnection);
    if (record != nullptr) {
        record->notificationId = isClosed ? 0 : id;
        announce(*record, next.due);
    } else if (id != 0) {
        ReminderNotifications::close(id);
    }
}

/// Returns the record of the alarm that is to be shown; null if the number has no alarm any more.
ReminderRecord *Reminders::recordOf(const Publication &publication)
{
    ReminderRecord *record = publication.isWanted ? m_store.find(publication.keys) : nullptr;
    return record != nullptr && record->alarmCookie != 0 ? record : nullptr;
}

/// Cancels the publications for the alarm of \a record, which is about to go. They stay cancelled
/// even if the number gets another alarm.
void Reminders::forgetPublications(const ReminderRecord &record)
{
    for (Publication &publication : m_publications) {
        if (m_store.find(publication.keys) == &record)
            publication.isWanted = false;
    }
}

/// Reports the change only after the store is up to date, so that handlers find it so.
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

void Reminders::forgetReminder(const Reminder *reminder)
{
    m_store.forget(reminder);
}

void Reminders::removeReminder(const Reminder *reminder)
{
    ReminderRecord *record = m_store.findByReminder(reminder);
    if (record == nullptr)
        return;
    closeNotification(*record);
    if (record->alarmCookie != 0) {
        forgetPublications(*record);
        m_alarms.cancel(record->alarmCookie);
        m_store.setCookie(*record, 0);
    }
    forEachBound(*record, &Reminder::lose);
}

void Reminders::notificationClosed(uint id, uint)
{
    if (ReminderRecord *record = m_store.findByNotification(id))
        record->notificationId = 0;
    if (!m_publications.isEmpty())
        m_closedMeanwhile.insert(id);
}

void Reminders::mergeAlarms(const QVector<ReminderAlarm> &alarms)
{
    for (const ReminderAlarm &alarm : alarms) {
        ReminderRecord *record = m_store.findOrAppend(PhoneNumberKeys::ofAlarm(alarm.phoneNumber));
        m_store.setCookie(*record, alarm.cookie);
        record->when = DueTime(alarm.due);
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
            m_notifications.closeLeftover(notification.id);
            continue;
        }
        record->notificationId = notification.id;
        announce(*record, record->when.toDateTime());
        if (!self)
            return;
    }
}

void Reminders::alarmTriggersChanged(const Maemo::Timed::Event::Triggers &triggers)
{
    const QPointer<Reminders> self(this);
    const QVector<uint> cookies = m_store.cookies();
    for (const uint cookie : cookies) {
        ReminderRecord *record = triggers.contains(cookie) ? nullptr : m_store.findByCookie(cookie);
        if (record == nullptr)
            continue;
        forgetPublications(*record);
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

/// Tells the bound objects, until a handler removes the alarm: the removal tells all of them.
void Reminders::announce(const ReminderRecord &record, const QDateTime &due)
{
    forEachBound(record, [this, cookie = record.alarmCookie, due](Reminder &reminder) {
        if (m_store.findByCookie(cookie) != nullptr)
            reminder.gain(due);
    });
}

/// Changes the bound objects in the order in which they were bound. An object that a handler has
/// unbound meanwhile is left out. An object that a handler has bound meanwhile has its state
/// already.
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
