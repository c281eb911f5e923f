// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "interface.h"

#include "exception.h"
#include "fakeplatform.h"

#include <QDBusConnection>

#include <utility>

namespace Maemo::Timed {

Interface::Interface(QObject *parent)
    : QDBusAbstractInterface(QStringLiteral("com.nimbo.timed"), QStringLiteral("/com/nimbo/timed"),
                             "com.nimbo.timed", QDBusConnection::systemBus(), parent)
{
}

QDBusPendingCall Interface::add_event_async(const Event &event)
{
    if (std::exchange(FakePlatform::instance().throwFromSending, false))
        throw Exception();
    return asyncCall(QStringLiteral("add_event"), event.steps());
}

QDBusPendingCall Interface::replace_event_async(const Event &event, uint32_t cookie)
{
    if (std::exchange(FakePlatform::instance().throwFromSending, false))
        throw Exception();
    return asyncCall(QStringLiteral("replace_event"), event.steps(), cookie);
}

} // namespace Maemo::Timed
