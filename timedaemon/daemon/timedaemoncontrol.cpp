// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "timedaemoncontrol.h"

#include "timedaemon.h"

TimeDaemonControl::TimeDaemonControl(TimeDaemon &daemon)
    : QDBusAbstractAdaptor(&daemon)
    , m_daemon(daemon)
{
    const auto tellOf = [this](const QString &member) {
        return [this, member](uint user, uint cookie) {
            m_daemon.tell(user,
                          {QStringLiteral("com.nimbo.simulator.TimeDaemon"), member, 0,
                           [cookie] { return QVariantList{cookie}; }});
        };
    };
    connect(&daemon, &TimeDaemon::added, this, tellOf(QStringLiteral("Added")));
    connect(&daemon, &TimeDaemon::cancelled, this, tellOf(QStringLiteral("Cancelled")));
    connect(&daemon, &TimeDaemon::fired, this, tellOf(QStringLiteral("Fired")));
}

AlarmsByCookie TimeDaemonControl::List()
{
    const auto user = m_daemon.caller();
    return user ? m_daemon.alarmsOf(*user).pending() : AlarmsByCookie();
}

void TimeDaemonControl::Fire(uint cookie)
{
    const auto user = m_daemon.caller();
    if (user && !m_daemon.fireEarly(*user, cookie))
        m_daemon.sendErrorReply(QDBusError::InvalidArgs,
                                QStringLiteral("there is no alarm %1").arg(cookie));
}
