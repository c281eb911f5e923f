// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "timedaemoncontrol.h"

#include "timedaemon.h"

TimeDaemonControl::TimeDaemonControl(TimeDaemon &daemon)
    : QDBusAbstractAdaptor(&daemon)
    , m_daemon(daemon)
{
    connect(&daemon, &TimeDaemon::added, this, &TimeDaemonControl::Added);
    connect(&daemon, &TimeDaemon::cancelled, this, &TimeDaemonControl::Cancelled);
    connect(&daemon, &TimeDaemon::fired, this, &TimeDaemonControl::Fired);
}

AlarmsByCookie TimeDaemonControl::List() const
{
    return m_daemon.alarms();
}

void TimeDaemonControl::Fire(uint cookie)
{
    if (!m_daemon.fire(cookie))
        m_daemon.sendErrorReply(QDBusError::InvalidArgs,
                                QStringLiteral("there is no alarm %1").arg(cookie));
}
