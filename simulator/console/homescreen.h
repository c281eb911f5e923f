// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "command.h"

#include <QDBusConnection>
#include <QObject>
#include <QVector>

/// The handset's home screen: the process that owns "com.nimbo.canopy" and asks for the call UI.
class HomeScreen : public QObject
{
    Q_OBJECT

public:
    /// \a sessionBus is a connection to the bus at \a address.
    HomeScreen(QDBusConnection sessionBus, QString address, QObject *parent = nullptr);

    /// Takes the name. False if another process has it.
    bool start();

    /// The requests to the call UI, and the same request from another user's process.
    QVector<Command> commands();

private:
    void request(const QString &method, const QVariantList &arguments, const Finish &finish);
    void toggleAs(const QString &user, const QString &group, const Finish &finish);

    QDBusConnection m_bus;
    const QString m_address;
};
