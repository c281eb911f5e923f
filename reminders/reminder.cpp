// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "reminder.h"

Reminder::Reminder(QObject *parent)
    : QObject(parent)
{
}

Reminder::~Reminder()
{
    if (m_reminders && !m_phoneNumber.isEmpty())
        m_reminders->detachReminder(this);
    if (m_reminders)
        m_reminders->forgetReminder(this);
}

void Reminder::setPhoneNumber(const QString &number)
{
    if (m_phoneNumber == number)
        return;

    const QPointer<Reminder> self(this);
    m_phoneNumber = number;
    if (m_reminders) {
        if (number.isEmpty())
            m_reminders->detachReminder(this);
        else
            m_reminders->attachReminder(this);
    }
    if (self)
        Q_EMIT phoneNumberChanged();
}

void Reminder::setReminders(Reminders *reminders)
{
    if (m_reminders == reminders)
        return;

    const QPointer<Reminder> self(this);
    const QPointer<Reminders> next(reminders);
    if (m_reminders && !m_phoneNumber.isEmpty())
        m_reminders->detachReminder(this);
    if (!self)
        return;
    m_reminders = next;
    if (m_reminders && !m_phoneNumber.isEmpty())
        m_reminders->attachReminder(this);
}

void Reminder::remove()
{
    if (m_reminders && m_exists)
        m_reminders->removeReminder(this);
}

void Reminder::adopt(bool exists, const QDateTime &when)
{
    const QPointer<Reminder> self(this);
    const bool existsDiffers = m_exists != exists;
    const bool whenDiffers = this->when() != when;
    m_when = DueTime(when);
    m_exists = exists;
    if (whenDiffers)
        Q_EMIT whenChanged();
    if (self && existsDiffers)
        Q_EMIT existsChanged();
}

void Reminder::gain(const QDateTime &when)
{
    const QPointer<Reminder> self(this);
    m_exists = true;
    m_when = DueTime(when);
    Q_EMIT whenChanged();
    if (self)
        Q_EMIT existsChanged();
}

void Reminder::lose()
{
    m_exists = false;
    Q_EMIT existsChanged();
}
