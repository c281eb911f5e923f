// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "uiprocess.h"

#include <QDir>
#include <QFile>

namespace {

bool isSet(const QProcessEnvironment &environment, const QString &name)
{
    return !environment.value(name).isEmpty();
}

bool hasDisplay(const QProcessEnvironment &environment)
{
    return isSet(environment, QStringLiteral("DISPLAY"))
        || isSet(environment, QStringLiteral("WAYLAND_DISPLAY"));
}

QProcessEnvironment environmentOf(const UiProcess::World &world)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const QString home = world.folder + QLatin1String("/home");
    const QString settingsProfile = world.folder + QLatin1String("/dconf-profile");

    // The display's key is in the user's home, which the process does not see.
    if (!environment.contains(QStringLiteral("XAUTHORITY")))
        environment.insert(QStringLiteral("XAUTHORITY"),
                           QDir::homePath() + QLatin1String("/.Xauthority"));
    // The socket of a Wayland display is in the user's runtime folder.
    if (isSet(environment, QStringLiteral("WAYLAND_DISPLAY"))) {
        const QDir runtimeFolder(environment.value(QStringLiteral("XDG_RUNTIME_DIR")));
        environment.insert(
            QStringLiteral("WAYLAND_DISPLAY"),
            runtimeFolder.filePath(environment.value(QStringLiteral("WAYLAND_DISPLAY"))));
    }
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), home);

    for (const char *variable :
         {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME",
          "QT_MESSAGE_PATTERN", "QT_LOGGING_RULES", "QT_LOGGING_CONF", "DBUS_STARTER_ADDRESS"})
        environment.remove(QString::fromLatin1(variable));
    environment.insert(QStringLiteral("HOME"), home);
    environment.insert(QStringLiteral("DCONF_PROFILE"), settingsProfile);
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), world.sessionBus);
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), world.systemBus);
    environment.insert(QStringLiteral("QT_FORCE_STDERR_LOGGING"), QStringLiteral("1"));
    if (!hasDisplay(environment)) {
        environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        environment.insert(QStringLiteral("QT_QUICK_BACKEND"), QStringLiteral("software"));
    }
    return environment;
}

void makeHome(const QString &folder)
{
    QDir().mkpath(folder + QLatin1String("/home"));
    QFile::setPermissions(folder + QLatin1String("/home"),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    QFile profile(folder + QLatin1String("/dconf-profile"));
    if (profile.open(QIODevice::WriteOnly))
        profile.write("user-db:user\n");
}

} // namespace

UiProcess::UiProcess(const World &world, QObject *parent)
    : ChildProcess(parent)
{
    makeHome(world.folder);
    setProcessEnvironment(environmentOf(world));
    setReadChannel(QProcess::StandardError);
    setStandardInputFile(QProcess::nullDevice());
    connect(this, &QProcess::readyReadStandardError, this, &UiProcess::emitLines);
    connect(this, &QProcess::errorOccurred, this, &UiProcess::reportError);
    connect(this, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            &UiProcess::reportEnd);
}

void UiProcess::start(const QString &program, const QStringList &arguments)
{
    ChildProcess::start(program, arguments, QIODevice::ReadOnly);
}

void UiProcess::readLog()
{
    if (state() == Running)
        waitForReadyRead(0);
    emitLines();
}

void UiProcess::emitLines()
{
    while (canReadLine()) {
        QByteArray line = readLine();
        line.chop(1);
        Q_EMIT logged(QString::fromUtf8(line));
    }
}

void UiProcess::reportError(QProcess::ProcessError error)
{
    if (error == QProcess::FailedToStart)
        Q_EMIT ended(QStringLiteral("The call UI could not be started: ") + errorString());
}

/// A sandbox ends with 128 + N if the process inside was ended by signal N.
void UiProcess::reportEnd(int code, QProcess::ExitStatus status)
{
    const bool signalledWithin = program() == QLatin1String("bwrap") && code > 128;
    const bool signalled = status == QProcess::CrashExit || signalledWithin;
    emitLines();
    if (const QByteArray rest = readAll(); !rest.isEmpty())
        Q_EMIT logged(QString::fromUtf8(rest));
    Q_EMIT ended(signalled ? QStringLiteral("The call UI was ended by signal %1")
                                 .arg(signalledWithin ? code - 128 : code)
                           : QStringLiteral("The call UI has ended with status %1").arg(code));
}
