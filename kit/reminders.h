// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDateTime>
#include <QObject>
#include <QQmlParserStatus>
#include <QString>

class Kit;

/// The call reminders of the kit. Like those of a handset, they change after the call has returned.
class Reminders : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)

public:
    using QObject::QObject;

    Q_INVOKABLE void createWithStrings(const QString &phoneNumber, const QDateTime &when,
                                       const QString &applicationName, const QString &contactName,
                                       const QString &title, const QString &description);

    void classBegin() override;
    void componentComplete() override { }

    /// Returns when the reminder of \a number is due; invalid if there is none.
    QDateTime dueTime(const QString &number) const;
    void remove(const QString &number);

    /// For Reminder, in C++ alone.
    Kit *kit() const { return m_kit; }

private:
    int indexOf(const QString &number) const;

    Kit *m_kit = nullptr;
};
