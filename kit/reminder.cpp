// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "reminder.h"

#include "kit.h"

void Reminder::setPhoneNumber(const QString &number)
{
    if (number == m_phoneNumber)
        return;
    m_phoneNumber = number;
    lookLater();
    Q_EMIT phoneNumberChanged();
}

void Reminder::setReminders(Reminders *reminders)
{
    if (reminders == m_reminders)
        return;
    m_reminders = reminders;
    if (reminders && reminders->kit())
        connect(reminders->kit(), &Kit::remindersChanged, this, &Reminder::look,
                Qt::UniqueConnection);
    lookLater();
}

void Reminder::remove()
{
    if (m_reminders && m_exists)
        m_reminders->remove(m_phoneNumber);
}

/// On a handset, the services have to answer first.
void Reminder::lookLater()
{
    QMetaObject::invokeMethod(this, &Reminder::look, Qt::QueuedConnection);
}

void Reminder::look()
{
    const QPointer<Reminder> self(this);
    const QDateTime due = m_reminders ? m_reminders->dueTime(m_phoneNumber) : QDateTime();
    const bool existed = m_exists;
    m_exists = due.isValid();
    if (m_exists && due != m_when) {
        m_when = due;
        Q_EMIT whenChanged();
    }
    if (self && m_exists != existed)
        Q_EMIT existsChanged();
}
