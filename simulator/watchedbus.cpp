// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "watchedbus.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFile>

#include <utility>

namespace {

const QLatin1String busService("org.freedesktop.DBus");

QString programOf(uint process)
{
    return QFile::symLinkTarget(QStringLiteral("/proc/%1/exe").arg(process));
}

} // namespace

WatchedBus::WatchedBus(Bus bus, QString uiProgram, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(bus))
    , m_uiProgram(std::move(uiProgram))
    , m_traffic([this](const QString &connection, const std::function<void(bool)> &answer) {
        askWhetherUi(connection, answer);
    })
{
    connect(&m_monitor, &BusMonitor::ready, this, &WatchedBus::begin);
    connect(&m_monitor, &BusMonitor::received, &m_traffic, &UiTraffic::take);
    connect(&m_monitor, &BusMonitor::ended, this, &WatchedBus::end);
    connect(&m_traffic, &UiTraffic::seen, this, &WatchedBus::seen);
    connect(&m_traffic, &UiTraffic::marked, this, &WatchedBus::marked);
    m_monitor.start(m_bus.address);
}

void WatchedBus::mark(const QString &mark)
{
    m_mark = mark;
    if (m_hasBegun)
        sendMark();
}

QDBusPendingCallWatcher *WatchedBus::ask(const QString &method, const QVariantList &arguments)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(busService, QStringLiteral("/"), busService, method);
    call.setArguments(arguments);
    return new QDBusPendingCallWatcher(m_bus.connection.asyncCall(call), this);
}

void WatchedBus::askWhetherUi(const QString &connection, const std::function<void(bool)> &answer)
{
    auto *watcher = ask(QStringLiteral("GetConnectionUnixProcessID"), {connection});
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, answer] {
        watcher->deleteLater();
        const QDBusPendingReply<uint> process(*watcher);
        answer(!process.isError() && programOf(process.value()) == m_uiProgram);
    });
}

/// The connections that were there before anybody watched, and their names.
void WatchedBus::askForOwners()
{
    auto *watcher = ask(QStringLiteral("ListNames"), {});
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QStringList names = QDBusPendingReply<QStringList>(*watcher).value();
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
    auto *watcher = ask(QStringLiteral("GetNameOwner"), {name});
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, name] {
        watcher->deleteLater();
        const QDBusPendingReply<QString> owner(*watcher);
        if (!owner.isError())
            m_owners.insert(name, owner.value());
        if (--m_awaitedOwners == 0)
            m_traffic.start(m_owners, m_connections);
    });
}

void WatchedBus::begin()
{
    m_hasBegun = true;
    askForOwners();
    if (!m_mark.isEmpty())
        sendMark();
}

void WatchedBus::end(const QString &how)
{
    m_isWatched = false;
    Q_EMIT ended(QStringLiteral("The journal goes on without the %1 bus: dbus-monitor %2")
                     .arg(m_bus.name, how));
}

void WatchedBus::sendMark()
{
    QDBusMessage signal = QDBusMessage::createSignal(
        QStringLiteral("/"), QStringLiteral("com.nimbo.simulator.Journal"), QStringLiteral("Mark"));
    signal << m_mark;
    m_bus.connection.send(signal);
}
