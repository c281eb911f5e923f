// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "command.h"

#include <QDBusConnection>
#include <QObject>

/// Reminders to call somebody back, as an earlier call UI left them: an alarm, and a notification
/// that shows it. The call UI that runs learns of them at its next start.
class CallReminders : public QObject
{
    Q_OBJECT

public:
    CallReminders(QDBusConnection sessionBus, QDBusConnection systemBus, QObject *parent = nullptr);

    /// "remind".
    Command command();

private:
    void remind(const QString &number, const QString &seconds, const QString &name,
                const Finish &finish);
    void notify(uint cookie, const QString &number, const QString &name, const Finish &finish);

    QDBusConnection m_sessionBus;
    QDBusConnection m_systemBus;
};
