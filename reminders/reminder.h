// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "duetime.h"
#include "reminders.h"

#include <QDateTime>
#include <QObject>
#include <QPointer>
#include <QString>

/// The reminder for one phone number, as QML sees it: whether there is one, and when it is due.
///
/// An object shows no reminder until it has both a number and a store. An object whose number was
/// cleared may still report changes of the reminder for its former number. Any number of objects
/// may watch the same number. A handler of any signal may change or destroy any of them, and the
/// store.
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

    /// The number, exactly as it was set.
    QString phoneNumber() const { return m_phoneNumber; }
    void setPhoneNumber(const QString &number);

    /// When the reminder is due, or the last one was. Invalid if there has been none.
    QDateTime when() const { return m_when.toDateTime(); }

    /// Whether the number has a reminder: an alarm, and the notification that shows it.
    bool exists() const { return m_exists; }

    /// The store; null once it is destroyed. remindersChanged() is never emitted, and this is
    /// meant.
    Reminders *reminders() const { return m_reminders; }
    void setReminders(Reminders *reminders);

    /// Removes the number's alarm and notification. Does nothing unless exists().
    Q_INVOKABLE void remove();

    /// For the store: takes over the state of a record, and reports what has changed.
    void adopt(bool exists, const QDateTime &when);
    /// For the store: the number has a reminder that is due at \a when. This is always reported.
    void gain(const QDateTime &when);
    /// For the store: the number has no reminder any more. This is always reported.
    void lose();

Q_SIGNALS:
    void phoneNumberChanged();
    void whenChanged();
    void existsChanged();
    void remindersChanged();

private:
    QString m_phoneNumber;
    DueTime m_when;
    QPointer<Reminders> m_reminders;
    bool m_exists = false;
};
