// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDBusConnection>
#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

/// Tells which user owns a connection to a bus, as the bus daemon reports it. Both functions may
/// block until it answers.
class BusUsers
{
public:
    explicit BusUsers(QDBusConnection bus);

    /// Returns the user id of a connection, which is given by its unique name. Returns nothing if
    /// there is no such connection any more.
    std::optional<uint> userOf(const QString &connection);

    /// Returns the unique names of a user's connections, without this process's own.
    QStringList connectionsOf(uint user);

private:
    QStringList allNames() const;

    const QDBusConnection m_bus;
    QHash<QString, uint> m_users; ///< By unique name. A bus never gives one to two connections.
};
