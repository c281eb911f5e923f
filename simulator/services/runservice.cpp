// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "runservice.h"

#include "callhistory.h"
#include "notificationservice.h"
#include "telephonystack.h"

#include <QCoreApplication>
#include <QDBusError>
#include <QFile>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include <unistd.h>

namespace {

template <typename Service>
int run(Service &&service, const QDBusConnection &bus)
{
    if (service.start(bus))
        return QCoreApplication::exec();
    qWarning("There is no place on the bus: %s", qUtf8Printable(bus.lastError().message()));
    return EXIT_FAILURE;
}

/// Goes on as the time daemon that handsets ship.
int becomeTimeDaemon(const QString &stateFolder)
{
    execl(PARLEY_TIME_DAEMON, "time-daemon", "--control", "--state",
          QFile::encodeName(stateFolder + QLatin1String("/alarms")).constData(), nullptr);
    qWarning("%s cannot be run: %s", PARLEY_TIME_DAEMON, std::strerror(errno));
    return EXIT_FAILURE;
}

} // namespace

int runService(const QString &name, const QString &stateFolder)
{
    if (name == QLatin1String("time-daemon"))
        return becomeTimeDaemon(stateFolder);
    if (name == QLatin1String("notification-service"))
        return run(NotificationService(), QDBusConnection::sessionBus());
    if (name == QLatin1String("call-history"))
        return run(CallHistory(), QDBusConnection::sessionBus());
    if (name == QLatin1String("telephony"))
        return run(TelephonyStack(stateFolder), QDBusConnection::systemBus());
    qWarning("There is no service \"%s\".", qUtf8Printable(name));
    return EXIT_FAILURE;
}
