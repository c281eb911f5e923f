// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "serviceprocess.h"

#include "handsetpart.h"

#include <QDBusConnectionInterface>
#include <QDBusReply>

#include <chrono>
#include <csignal>
#include <utility>

namespace {

constexpr std::chrono::seconds patience(10);

} // namespace

ServiceProcess::ServiceProcess(Service service, const QDBusConnection &bus,
                               const QProcessEnvironment &environment, QObject *parent)
    : QObject(parent)
    , m_service(std::move(service))
    , m_bus(bus)
    , m_watcher(m_service.busName, bus)
{
    m_process.setProcessEnvironment(environment);
    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.setStandardInputFile(QProcess::nullDevice());
    m_patience.setSingleShot(true);
    m_patience.setInterval(patience);
    connect(&m_process, &QProcess::readyRead, this, &ServiceProcess::emitLines);
    connect(&m_process, &QProcess::errorOccurred, this, &ServiceProcess::reportError);
    connect(&m_process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), this,
            &ServiceProcess::reportEnd);
    connect(&m_process, &QProcess::stateChanged, this, [this] { setHung(false); });
    connect(&m_watcher, &QDBusServiceWatcher::serviceRegistered, this,
            [this] { settle(Outcome::Done, QStringLiteral("started")); });
    connect(&m_watcher, &QDBusServiceWatcher::serviceUnregistered, this,
            [this] { settle(Outcome::Done, QStringLiteral("stopped")); });
    connect(&m_patience, &QTimer::timeout, this,
            [this] { settle(Outcome::Failed, QStringLiteral("nothing is heard of it")); });
}

void ServiceProcess::start(const Finish &finish)
{
    m_finish = finish;
    m_patience.start();
    m_process.start(QCoreApplication::applicationFilePath(),
                    serviceArguments(m_service.program, m_service.stateFolder),
                    QIODevice::ReadOnly);
}

Command ServiceProcess::command()
{
    return {m_service.name,
            {QStringLiteral("stop|start|hang|continue")},
            QStringLiteral("end or freeze this process of the handset, and back"),
            [this](const QStringList &arguments, const Finish &finish) {
                run(arguments.constFirst(), finish);
            }};
}

void ServiceProcess::run(const QString &what, const Finish &finish)
{
    const bool isRunning = m_process.state() != QProcess::NotRunning;
    const bool starts = what == QLatin1String("start");
    if (starts == isRunning) {
        finish(Outcome::Failed,
               isRunning ? QStringLiteral("it runs") : QStringLiteral("it does not run"));
    } else if (starts) {
        start(finish);
    } else if (what == QLatin1String("stop")) {
        stop(finish);
    } else if (what == QLatin1String("hang") || what == QLatin1String("continue")) {
        const bool hangs = what == QLatin1String("hang");
        // It may run in a sandbox, which is in the same process group.
        ::kill(-static_cast<pid_t>(m_process.processId()), hangs ? SIGSTOP : SIGCONT);
        setHung(hangs);
        finish(Outcome::Done, QStringLiteral("done"));
    } else {
        finish(Outcome::Failed, QStringLiteral("it can stop, start, hang and continue"));
    }
}

void ServiceProcess::stop(const Finish &finish)
{
    m_process.stop();
    setHung(false);
    m_finish = finish;
    if (m_bus.interface()->isServiceRegistered(m_service.busName))
        m_patience.start();
    else
        settle(Outcome::Done, QStringLiteral("stopped"));
}

QString ServiceProcess::state() const
{
    if (m_process.state() == QProcess::NotRunning)
        return QStringLiteral("stopped");
    return m_isHung ? QStringLiteral("hung") : QStringLiteral("running");
}

/// Emits stateChanged() in any case, because the process may have started or ended as well.
void ServiceProcess::setHung(bool hung)
{
    m_isHung = hung;
    Q_EMIT stateChanged();
}

void ServiceProcess::settle(Outcome outcome, const QString &text)
{
    m_patience.stop();
    if (const Finish finish = std::exchange(m_finish, nullptr))
        finish(outcome, text);
}

void ServiceProcess::emitLines()
{
    while (m_process.canReadLine()) {
        QByteArray line = m_process.readLine();
        line.chop(1);
        Q_EMIT logged(QString::fromUtf8(line));
    }
}

void ServiceProcess::reportError(QProcess::ProcessError error)
{
    if (error == QProcess::FailedToStart)
        settle(Outcome::Failed, m_process.errorString());
}

void ServiceProcess::reportEnd(int code, QProcess::ExitStatus status)
{
    emitLines();
    const QString how = status == QProcess::CrashExit
        ? QStringLiteral("was ended by signal %1").arg(code)
        : QStringLiteral("has ended with status %1").arg(code);
    if (m_finish)
        settle(Outcome::Failed, how);
    else
        Q_EMIT ended(how);
}
