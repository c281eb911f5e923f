// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "reminders.h"

#include <QDateTime>
#include <QObject>
#include <QPointer>
#include <QString>

/// What QML sees of the reminder for one phone number: whether there is one, and when it is due.
///
/// It shows nothing until it has both a number and a store. One whose number was cleared may still
/// be told of the reminder for the number that it had. Any number of objects may watch one number,
/// and a handler of any signal may change or destroy any of them, the store included.
class Reminder : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Reminder)

    Q_PROPERTY(QString phoneNumber READ phoneNumber WRITE setPhoneNumber NOTIFY phoneNumberChanged)
    Q_PROPERTY(QDateTime when READ when NOTIFY whenChanged)
    Q_PROPERTY(bool exists READ exists NOTIFY existsChanged)
    Q_PROPERTY(Reminders *_reminders READ reminders WRITE setReminders NOTIFY remindersChanged)

public:
    explicit Reminder(QObject *parent = nullptr);
    ~Reminder() override;

    /// The number as it was set.
    QString phoneNumber() const { return m_phoneNumber; }
    void setPhoneNumber(const QString &number);

    /// When the reminder is, or was last, due. Invalid if there was none.
    QDateTime when() const { return m_when; }

    /// Whether the number has a reminder: an alarm, and the notification that shows it.
    bool exists() const { return m_exists; }

    /// The store; null once it is gone. remindersChanged() is never emitted: rebinding is silent.
    Reminders *reminders() const { return m_reminders; }
    void setReminders(Reminders *reminders);

    /// Takes the number's alarm and notification away. Does nothing unless exists().
    Q_INVOKABLE void remove();

    /// For the store. Takes over what a record says, and reports what has changed.
    void adopt(bool exists, const QDateTime &when);
    /// For the store. The number has a reminder that is due at \a when: reported in any case.
    void gain(const QDateTime &when);
    /// For the store. The number has no reminder any more: reported in any case.
    void lose();

Q_SIGNALS:
    void phoneNumberChanged();
    void whenChanged();
    void existsChanged();
    void remindersChanged();

private:
    QString m_phoneNumber;
    QDateTime m_when;
    QPointer<Reminders> m_reminders;
    bool m_exists = false;
};
