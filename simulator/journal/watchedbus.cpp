// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "watchedbus.h"

#include "answers.h"
#include "runningprogram.h"

#include <QDBusMessage>
#include <QDBusPendingCall>

#include <utility>

namespace {

const QLatin1String busService("org.freedesktop.DBus");

} // namespace

WatchedBus::WatchedBus(Bus bus, QString uiProgram, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(bus))
    , m_uiProgram(std::move(uiProgram))
    , m_traffic([this](const QString &connection, const std::function<void(bool)> &answer) {
        askWhetherUi(connection, answer);
    })
{
    connect(&m_monitor, &BusMonitor::received, &m_traffic, &UiTraffic::take);
    connect(&m_monitor, &BusMonitor::ended, this,
            [this] { end(QStringLiteral("the bus has ended the connection")); });
    connect(&m_traffic, &UiTraffic::seen, this, &WatchedBus::seen);
    connect(&m_traffic, &UiTraffic::marked, this, &WatchedBus::marked);
}

void WatchedBus::start()
{
    m_isWatched = m_monitor.start(m_bus.address);
    if (m_isWatched)
        askForOwners();
    else
        end(m_monitor.error());
}

void WatchedBus::mark(const QString &mark) const
{
    QDBusMessage signal = QDBusMessage::createSignal(
        QStringLiteral("/"), QStringLiteral("com.nimbo.simulator.Journal"), QStringLiteral("Mark"));
    signal << mark;
    m_bus.connection.send(signal);
}

void WatchedBus::askWhetherUi(const QString &connection, const std::function<void(bool)> &answer)
{
    const QDBusMessage question =
        busQuestion(QStringLiteral("GetConnectionUnixProcessID"), connection);
    whenAnswered(m_bus.connection.asyncCall(question), this,
                 [this, answer](const QDBusMessage &process) {
                     answer(process.type() == QDBusMessage::ReplyMessage
                            && runsProgram(process.arguments().value(0).toUInt(), m_uiProgram));
                 });
}

/// Asks for the connections that exist already, and for their well-known names.
void WatchedBus::askForOwners()
{
    const QDBusMessage question = QDBusMessage::createMethodCall(
        busService, QStringLiteral("/"), busService, QStringLiteral("ListNames"));
    whenAnswered(m_bus.connection.asyncCall(question), this, [this](const QDBusMessage &answer) {
        const QStringList names = answer.arguments().value(0).toStringList();
        for (const QString &name : names) {
            if (name.startsWith(QLatin1Char(':')))
                m_connections.append(name);
            else if (name != busService)
                askForOwner(name);
        }
        if (m_awaitedOwners == 0)
            m_traffic.start(m_owners, m_connections);
    });
}

void WatchedBus::askForOwner(const QString &name)
{
    ++m_awaitedOwners;
    const QDBusMessage question = busQuestion(QStringLiteral("GetNameOwner"), name);
    whenAnswered(m_bus.connection.asyncCall(question), this,
                 [this, name](const QDBusMessage &answer) {
                     if (answer.type() == QDBusMessage::ReplyMessage)
                         m_owners.insert(name, answer.arguments().value(0).toString());
                     if (--m_awaitedOwners == 0)
                         m_traffic.start(m_owners, m_connections);
                 });
}

void WatchedBus::end(const QString &why)
{
    m_isWatched = false;
    Q_EMIT ended(
        QStringLiteral("The journal goes on without the %1 bus: %2.").arg(m_bus.name, why));
}
