// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "duealarmsadaptor.h"

#include "timedaemon.h"

DueAlarmsAdaptor::DueAlarmsAdaptor(TimeDaemon &daemon)
    : QDBusAbstractAdaptor(&daemon)
    , m_daemon(daemon)
{
    connect(&daemon, &TimeDaemon::dueChanged, this, [this](uint user) {
        m_daemon.tell(user,
                      {QStringLiteral("com.nimbo.parley.DueAlarms"), QStringLiteral("Changed"), 0,
                       [] { return QVariantList(); }});
    });
}

QList<uint> DueAlarmsAdaptor::List()
{
    const auto user = m_daemon.caller();
    return user ? m_daemon.alarmsOf(*user).dueInOrder() : QList<uint>();
}

Alarm DueAlarmsAdaptor::Get(uint cookie)
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

bool DueAlarmsAdaptor::Dismiss(uint cookie)
{
    const auto user = m_daemon.caller();
    return user && m_daemon.dismiss(*user, cookie);
}
