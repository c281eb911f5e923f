// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "runservice.h"

#include "atmodems.h"
#include "callhistory.h"
#include "notificationservice.h"
#include "places.h"
#include "sandbox.h"
#include "telephonystack.h"

#include <QCoreApplication>
#include <QDBusError>
#include <QDir>
#include <QFile>
#include <QStandardPaths>

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

/// It may lie where only root's shell looks.
QString findOfono()
{
    const QString name = QStringLiteral("ofonod");
    const QString found = QStandardPaths::findExecutable(name);
    return found.isEmpty() ? QStandardPaths::findExecutable(
               name, {QStringLiteral("/usr/sbin"), QStringLiteral("/sbin")})
                           : found;
}

/// Goes on as the real oFono, with the modems that listen for it. What it keeps is kept in the
/// folder of the state, and it looks for no hardware.
int runOfono(const QString &stateFolder)
{
    const QString kept = stateFolder + QLatin1String("/ofono");
    if (const QString why = whyNoOfono(); !why.isEmpty()) {
        qWarning("%s", qUtf8Printable(why));
        return EXIT_FAILURE;
    }
    qputenv("OFONO_PHONESIM_CONFIG", QFile::encodeName(AtModems::configuration(stateFolder)));
    QDir().mkpath(kept);
    Sandbox sandbox;
    sandbox.place(QStringLiteral("/var/lib/ofono"), kept);
    QStringList command = sandbox.wrap(
        {findOfono(), QStringLiteral("--nodetach"), QStringLiteral("--noplugin=udevng")});
    const QString bubblewrap = command.takeFirst();
    return become(QStandardPaths::findExecutable(bubblewrap), bubblewrap, command);
}

} // namespace

QString whyNoOfono()
{
    if (findOfono().isEmpty())
        return QStringLiteral("oFono is not installed; it is in the package ofono.");
    if (!Sandbox::isPossible())
        return QStringLiteral("oFono needs bwrap, from the package bubblewrap, to be allowed.");
    return {};
}

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
    if (name == QLatin1String("modem"))
        return run(AtModems(stateFolder), QDBusConnection::systemBus());
    if (name == QLatin1String("ofono"))
        return runOfono(stateFolder);
    qWarning("There is no service \"%s\".", qUtf8Printable(name));
    return EXIT_FAILURE;
}
