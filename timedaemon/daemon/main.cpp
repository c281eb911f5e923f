// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "duealarmsadaptor.h"
#include "receivelimits.h"
#include "systemclock.h"
#include "timedaemon.h"
#include "timedaemoncontrol.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDBusError>

#include <cstdlib>

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationVersion(QStringLiteral(PARLEY_VERSION));

    // systemd.exec(5) names the folder that StateDirectory= makes.
    const QString folder =
        qEnvironmentVariable("STATE_DIRECTORY", QStringLiteral("/var/lib/parley-time-daemon"));
    const QCommandLineOption state(
        QStringLiteral("state"),
        QStringLiteral("Keeps the alarms in a folder other than %1.").arg(folder),
        QStringLiteral("folder"), folder);
    const QCommandLineOption control(
        QStringLiteral("control"),
        QStringLiteral("Offers the interface through which a simulated handset fires alarms."));
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("The time daemon: keeps the alarms of each user, and fires them by the wall "
                       "clock. It offers\ncom.nimbo.timed on the system bus."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions({state, control});
    parser.process(application);
    if (!parser.positionalArguments().isEmpty()) {
        qCritical("There is no argument \"%s\".",
                  qUtf8Printable(parser.positionalArguments().constFirst()));
        return EXIT_FAILURE;
    }

    QDBusConnection bus = QDBusConnection::systemBus();
    removeReceiveLimits(bus);

    SystemClock clock;
    TimeDaemon daemon(parser.value(state), clock, bus);
    new DueAlarmsAdaptor(daemon);
    if (parser.isSet(control))
        new TimeDaemonControl(daemon);
    if (daemon.start())
        return QCoreApplication::exec();
    qCritical("There is no place on the system bus: %s", qUtf8Printable(bus.lastError().message()));
    return EXIT_FAILURE;
}
