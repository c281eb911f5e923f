// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "interface.h"

#include "exception.h"

#include <QDBusConnection>
#include <QDBusMetaType>

namespace Maemo::Timed {

namespace {

QVariant toArgument(const Event &event)
{
    if (!event.hasTicker())
        throw Exception("an event needs a ticker");
    return QVariant::fromValue(event);
}

} // namespace

Interface::Interface(QObject *parent)
    : QDBusAbstractInterface(QStringLiteral("com.nimbo.timed"), QStringLiteral("/com/nimbo/timed"),
                             "com.nimbo.timed", QDBusConnection::systemBus(), parent)
{
    qDBusRegisterMetaType<Event>();
}

QDBusPendingCall Interface::add_event_async(const Event &event)
{
    return asyncCall(QStringLiteral("add_event"), toArgument(event));
}

QDBusPendingCall Interface::replace_event_async(const Event &event, uint32_t cookie)
{
    return asyncCall(QStringLiteral("replace_event"), toArgument(event), cookie);
}

} // namespace Maemo::Timed
