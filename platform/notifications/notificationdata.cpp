// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "notification.h"

#include <QDBusArgument>

QDBusArgument &operator<<(QDBusArgument &argument, const NotificationData &data)
{
    argument.beginStructure();
    argument << data.appName << data.id << data.appIcon << data.summary << data.body << data.actions
             << data.hints << data.expireTimeout;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, NotificationData &data)
{
    argument.beginStructure();
    argument >> data.appName >> data.id >> data.appIcon >> data.summary >> data.body >> data.actions
        >> data.hints >> data.expireTimeout;
    argument.endStructure();
    return argument;
}
