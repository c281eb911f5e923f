// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "receivelimits.h"

#include <QDBusConnection>

#include <dbus/dbus.h>

#include <limits>

void removeReceiveLimits(const QDBusConnection &bus)
{
    auto *connection = static_cast<DBusConnection *>(bus.internalPointer());
    if (connection == nullptr)
        return;
    dbus_connection_set_max_received_size(connection, std::numeric_limits<long>::max());
    dbus_connection_set_max_received_unix_fds(connection, std::numeric_limits<long>::max());
}
