// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "duealarms.h"

#include "timedaemon.h"

DueAlarms::DueAlarms(TimeDaemon &daemon)
    : QDBusAbstractAdaptor(&daemon)
    , m_daemon(daemon)
{
    connect(&daemon, &TimeDaemon::dueChanged, this, [this](uint user) {
        m_daemon.tell(user, QStringLiteral("com.nimbo.parley.DueAlarms"), QStringLiteral("Changed"),
                      {});
    });
}

QList<uint> DueAlarms::List()
{
    const auto user = m_daemon.caller();
    return user ? m_daemon.alarmsOf(*user).dueInOrder() : QList<uint>();
}

Alarm DueAlarms::Get(uint cookie)
{
    const auto user = m_daemon.caller();
    if (!user)
        return {};
    const AlarmsByCookie &due = m_daemon.alarmsOf(*user).due();
    const auto found = due.constFind(cookie);
    if (found != due.cend())
        return *found;
    m_daemon.sendErrorReply(QDBusError::InvalidArgs,
                            QStringLiteral("there is no due alarm %1").arg(cookie));
    return {};
}

bool DueAlarms::Dismiss(uint cookie)
{
    const auto user = m_daemon.caller();
    return user && m_daemon.dismiss(*user, cookie);
}
