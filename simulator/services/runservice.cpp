// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "runservice.h"

#include "callhistory.h"
#include "notificationservice.h"
#include "places.h"
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

/// Goes on as a program that handsets ship. \a name takes the place of its own.
int become(const QString &program, const QString &name, const QStringList &arguments)
{
    const QByteArray file = QFile::encodeName(program);
    QByteArrayList words{QFile::encodeName(name)};
    for (const QString &argument : arguments)
        words.append(QFile::encodeName(argument));
    QVector<char *> pointers;
    for (QByteArray &word : words)
        pointers.append(word.data());
    pointers.append(nullptr);
    execv(file.constData(), pointers.data());
    qWarning("%s cannot be run: %s", file.constData(), std::strerror(errno));
    return EXIT_FAILURE;
}

} // namespace

int runService(const QString &name, const QString &stateFolder)
{
    const Places places = Places::find();
    if (name == QLatin1String("time-daemon"))
        return become(places.timeDaemon, name,
                      {QStringLiteral("--control"), QStringLiteral("--state"),
                       stateFolder + QLatin1String("/alarms")});
    if (name == QLatin1String("alarm-service"))
        return become(places.alarm, name, {QStringLiteral("--translations"), places.translations});
    if (name == QLatin1String("notification-service"))
        return run(NotificationService(), QDBusConnection::sessionBus());
    if (name == QLatin1String("call-history"))
        return run(CallHistory(), QDBusConnection::sessionBus());
    if (name == QLatin1String("telephony"))
        return run(TelephonyStack(stateFolder), QDBusConnection::systemBus());
    qWarning("There is no service \"%s\".", qUtf8Printable(name));
    return EXIT_FAILURE;
}
