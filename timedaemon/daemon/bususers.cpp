// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "bususers.h"

#include "answers.h"

#include <QDBusMessage>

#include <utility>

namespace {

/// Connections that have gone are forgotten when so many are known.
constexpr int maxKnown = 1000;

} // namespace

BusUsers::BusUsers(QDBusConnection bus)
    : m_bus(std::move(bus))
{
}

std::optional<uint> BusUsers::userOf(const QString &connection)
{
    const auto known = m_users.constFind(connection);
    if (known != m_users.cend())
        return *known;
    const QDBusMessage answer =
        m_bus.call(busQuestion(QStringLiteral("GetConnectionUnixUser"), connection));
    if (!isFromBus(answer) || answer.signature() != QLatin1String("u"))
        return std::nullopt;
    if (m_users.size() >= maxKnown)
        m_users.clear();
    const uint user = answer.arguments().constFirst().toUInt();
    m_users.insert(connection, user);
    return user;
}

QStringList BusUsers::connectionsOf(uint user)
{
    QStringList its;
    const QStringList names = allNames();
    for (const QString &name : names) {
        if (name.startsWith(QLatin1Char(':')) && name != m_bus.baseService()
            && userOf(name) == user)
            its.append(name);
    }
    return its;
}

QStringList BusUsers::allNames() const
{
    const QDBusMessage answer = m_bus.call(QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("ListNames")));
    if (!isFromBus(answer) || answer.signature() != QLatin1String("as"))
        return {};
    return answer.arguments().constFirst().toStringList();
}
