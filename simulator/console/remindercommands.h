// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "command.h"

#include <QDBusConnection>
#include <QObject>
#include <QVector>

/// The command that leaves a reminder as an earlier run of the call UI would have: an alarm, and a
/// notification for it. The call UI finds them at its next start.
class ReminderCommands : public QObject
{
    Q_OBJECT

public:
    ReminderCommands(QDBusConnection sessionBus, QDBusConnection systemBus,
                     QObject *parent = nullptr);

    QVector<Command> commands();

private:
    void remind(const QString &number, const QString &seconds, const QString &name,
                const Finish &finish);
    void notify(uint cookie, const QString &number, const QString &name, const Finish &finish);

    QDBusConnection m_sessionBus;
    QDBusConnection m_systemBus;
};
