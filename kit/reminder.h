// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "reminders.h"

#include <QDateTime>
#include <QObject>
#include <QPointer>
#include <QString>

/// The reminder of the kit for one phone number.
class Reminder : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString phoneNumber READ phoneNumber WRITE setPhoneNumber NOTIFY phoneNumberChanged)
    Q_PROPERTY(QDateTime when READ when NOTIFY whenChanged)
    Q_PROPERTY(bool exists READ exists NOTIFY existsChanged)
    Q_PROPERTY(Reminders *_reminders READ reminders WRITE setReminders NOTIFY remindersChanged)

public:
    using QObject::QObject;

    QString phoneNumber() const { return m_phoneNumber; }
    void setPhoneNumber(const QString &number);
    QDateTime when() const { return m_when; }
    bool exists() const { return m_exists; }
    Reminders *reminders() const { return m_reminders; }
    void setReminders(Reminders *reminders);

    Q_INVOKABLE void remove();

Q_SIGNALS:
    void phoneNumberChanged();
    void whenChanged();
    void existsChanged();
    void remindersChanged();

private:
    void look();
    void lookLater();

    QString m_phoneNumber;
    QDateTime m_when;
    QPointer<Reminders> m_reminders;
    bool m_exists = false;
};
