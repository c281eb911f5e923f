// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "command.h"

#include <QDBusConnection>
#include <QObject>
#include <QVector>

/// The home screen of the handset. It owns "com.nimbo.canopy", so that the call UI trusts it, and
/// sends requests to the call UI.
class HomeScreen : public QObject
{
    Q_OBJECT

public:
    /// \a sessionBus is a connection to the bus at \a address.
    HomeScreen(QDBusConnection sessionBus, QString address, QObject *parent = nullptr);

    /// Takes the name. Returns false if another process has it.
    bool start();

    /// Returns whether a request was sent that "replay" can send again.
    bool hasRequested() const { return !m_lastMethod.isEmpty(); }

    /// Returns the commands that send requests to the call UI, one of them as another user.
    QVector<Command> commands();

private:
    void request(const QString &method, const QVariantList &arguments, const Finish &finish);
    void replay(const Finish &finish);
    void toggleAs(const QString &user, const QString &group, const Finish &finish);

    QDBusConnection m_bus;
    const QString m_address;
    QString m_lastMethod;
    QVariantList m_lastArguments;
};
