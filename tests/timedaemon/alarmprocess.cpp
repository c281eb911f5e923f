// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "alarmprocess.h"

#include <QProcessEnvironment>
#include <QTest>

#include <algorithm>
#include <utility>

namespace {

constexpr int patience = 30000;

} // namespace

AlarmProcess::AlarmProcess(const QString &sessionBus, const QString &systemBus)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *variable : {"LANGUAGE", "QT_MESSAGE_PATTERN", "QT_LOGGING_RULES",
                                 "QT_LOGGING_CONF", "DBUS_STARTER_ADDRESS"})
        environment.remove(QString::fromLatin1(variable));
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), sessionBus);
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), systemBus);
    environment.insert(QStringLiteral("QT_FORCE_STDERR_LOGGING"), QStringLiteral("1"));
    setProcessEnvironment(environment);
    setProcessChannelMode(QProcess::MergedChannels);
    connect(this, &QProcess::readyRead, this, &AlarmProcess::readLog);
}

void AlarmProcess::setEnvironment(const QString &name, const QString &value)
{
    QProcessEnvironment environment = processEnvironment();
    environment.insert(name, value);
    setProcessEnvironment(environment);
}

void AlarmProcess::start(const QStringList &arguments)
{
    QStringList command =
        m_sandbox.wrap(QStringList(qEnvironmentVariable("PARLEY_ALARM")) + arguments);
    const QString program = command.takeFirst();
    ChildProcess::start(program, command);
}

bool AlarmProcess::logs(const QString &prefix)
{
    const auto find = [&] {
        return std::find_if(m_log.begin(), m_log.end(),
                            [&prefix](const QString &line) { return line.startsWith(prefix); });
    };
    if (!QTest::qWaitFor([&] { return find() != m_log.end(); }, patience))
        return false;
    m_log.erase(find());
    return true;
}

QStringList AlarmProcess::takeLog()
{
    readLog();
    return std::exchange(m_log, {});
}

int AlarmProcess::waitForEnd()
{
    const bool ended = QTest::qWaitFor([this] { return state() == NotRunning; }, patience);
    return ended && exitStatus() == NormalExit ? exitCode() : -1;
}

void AlarmProcess::readLog()
{
    while (canReadLine())
        m_log.append(QString::fromUtf8(readLine()).trimmed());
}
