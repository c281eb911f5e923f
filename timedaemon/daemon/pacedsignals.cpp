// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "pacedsignals.h"

#include <QDBusMessage>
#include <QDBusPendingCall>

#include <iterator>
#include <limits>
#include <utility>

namespace {

/// So much may be on its way to a connection. A user's 256 connections (max_connections_per_user on
/// a stock system bus) stay below the 127 MB that the bus keeps for this process, even if each has
/// one list of 10,000 alarms more.
constexpr int window = 64 * 1024;
constexpr int overhead = 200; ///< Bytes of a message without arguments, at most.
constexpr int maxKnown = 1000; ///< Receivers that are not behind are forgotten beyond that.

} // namespace

PacedSignals::PacedSignals(QDBusConnection bus, QString path, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(bus))
    , m_path(std::move(path))
{
}

void PacedSignals::send(const QString &connection, const Signal &signal)
{
    if (m_receivers.size() > maxKnown) {
        for (auto it = m_receivers.begin(); it != m_receivers.end();)
            it = it->isBehind ? std::next(it) : m_receivers.erase(it);
    }
    Receiver &receiver = m_receivers[connection];
    if (receiver.isBehind) {
        receiver.waiting.insert(signal.member, signal);
        return;
    }
    QDBusMessage message =
        QDBusMessage::createTargetedSignal(connection, m_path, signal.interface, signal.member);
    message.setArguments(signal.arguments());
    m_bus.send(message);
    receiver.unread += signal.size + overhead;
    if (receiver.unread > window)
        ask(connection);
}

/// The connection answers when it has read what was sent before. Every D-Bus library answers by
/// itself, and the bus answers for a connection that ends.
void PacedSignals::ask(const QString &connection)
{
    m_receivers[connection].isBehind = true;
    const QDBusMessage ping = QDBusMessage::createMethodCall(
        connection, QStringLiteral("/"), QStringLiteral("org.freedesktop.DBus.Peer"),
        QStringLiteral("Ping"));
    constexpr int forEver = std::numeric_limits<int>::max();
    m_questions.add(
        this, [this, ping] { return m_bus.asyncCall(ping, forEver); },
        [this, connection](const QDBusMessage &) { goOn(connection); });
}

void PacedSignals::goOn(const QString &connection)
{
    const Receiver receiver = m_receivers.take(connection);
    for (const Signal &signal : receiver.waiting)
        send(connection, signal);
}
