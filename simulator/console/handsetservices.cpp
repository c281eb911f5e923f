// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "handsetservices.h"

#include "atmodems.h"
#include "transcript.h"

#include <algorithm>

namespace {

QProcessEnvironment environmentOf(const HandsetServices::World &world)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *variable :
         {"QT_MESSAGE_PATTERN", "QT_LOGGING_RULES", "QT_LOGGING_CONF", "DBUS_STARTER_ADDRESS"})
        environment.remove(QString::fromLatin1(variable));
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), world.sessionBus);
    environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), world.systemBus);
    environment.insert(QStringLiteral("QT_FORCE_STDERR_LOGGING"), QStringLiteral("1"));
    return environment;
}

/// Returns the service that is told about SIMs and calls.
QString modemService(const HandsetServices::World &world)
{
    return world.hasOfono ? AtModems::busName() : QStringLiteral("org.ofono");
}

} // namespace

HandsetServices::HandsetServices(const World &world, const QDBusConnection &session,
                                 const QDBusConnection &system, Transcript &transcript,
                                 QObject *parent)
    : QObject(parent)
    , m_transcript(transcript)
    , m_alarms(system, transcript)
    , m_notifications(session, transcript)
    , m_reminders(session, system)
    , m_sims(system, modemService(world), transcript)
    , m_calls(system, modemService(world), transcript)
    , m_rules(system, !world.hasOfono, transcript)
{
    const QProcessEnvironment environment = environmentOf(world);
    const QString callHistory = QStringLiteral("com.nokia.telephony.callhistory");
    ServiceProcess *const timeDaemon =
        add({QStringLiteral("time-daemon"), QStringLiteral("com.nimbo.timed"), world.stateFolder},
            system, environment);
    add({QStringLiteral("notification-service"), QStringLiteral("org.freedesktop.Notifications"),
         world.stateFolder},
        session, environment);
    // It would log that there is no time daemon.
    m_followers[timeDaemon] = add({QStringLiteral("alarm-service"),
                                   QStringLiteral("com.nimbo.parley.alarm"), world.stateFolder},
                                  session, environment);
    add({QStringLiteral("call-history"), callHistory, world.stateFolder}, session, environment);
    const QString telephony = QStringLiteral("telephony");
    if (world.hasOfono) {
        ServiceProcess *const modem = add(
            {QStringLiteral("modem"), AtModems::busName(), world.stateFolder}, system, environment);
        // It reads where the modems are, and is of use when they are online.
        m_followers[modem] =
            add({telephony, AtModems::onlineName(), world.stateFolder, QStringLiteral("ofono")},
                system, environment);
    } else {
        add({telephony, QStringLiteral("org.ofono"), world.stateFolder}, system, environment);
    }
    QDBusConnection(session).connect(callHistory, QStringLiteral("/org/maemo/m"),
                                     QStringLiteral("com.nimbo.simulator.CallHistory"),
                                     QStringLiteral("Launched"), this,
                                     SLOT(callHistoryLaunched(QStringList)));
}

ServiceProcess *HandsetServices::add(const ServiceProcess::Service &service,
                                     const QDBusConnection &bus,
                                     const QProcessEnvironment &environment)
{
    auto process = std::make_unique<ServiceProcess>(service, bus, environment);
    const QString source = QString(service.name).replace(QLatin1Char('-'), QLatin1Char(' '));
    const auto record = [this, source](const QString &line) { m_transcript.record(source, line); };
    connect(process.get(), &ServiceProcess::logged, this, record);
    connect(process.get(), &ServiceProcess::ended, this, record);
    m_processes.push_back(std::move(process));
    return m_processes.back().get();
}

void HandsetServices::start(const std::function<void()> &settled)
{
    m_awaited = m_processes.size();
    for (const auto &process : m_processes) {
        const auto comesAfter = [&process](const auto &pair) {
            return pair.second == process.get();
        };
        if (std::none_of(m_followers.cbegin(), m_followers.cend(), comesAfter))
            start(process.get(), settled);
    }
}

void HandsetServices::start(ServiceProcess *process, const std::function<void()> &settled)
{
    process->start([this, process, settled](Outcome outcome, const QString &text) {
        if (outcome == Outcome::Failed)
            m_transcript.say(
                QStringLiteral("The %1 did not start: %2").arg(process->command().name, text));
        const auto follower = m_followers.find(process);
        if (follower != m_followers.cend())
            start(follower->second, settled);
        if (--m_awaited == 0)
            settled();
    });
}

QVector<Command> HandsetServices::commands()
{
    QVector<Command> all = m_reminders.commands();
    for (ServiceTalk *talk : talks())
        all += talk->commands();
    for (const auto &process : m_processes)
        all += process->command();
    return all;
}

void HandsetServices::follow()
{
    for (ServiceTalk *talk : talks())
        talk->follow();
}

std::array<ServiceTalk *, 5> HandsetServices::talks()
{
    return {&m_alarms, &m_notifications, &m_sims, &m_calls, &m_rules};
}

void HandsetServices::callHistoryLaunched(const QStringList &arguments)
{
    m_transcript.record(QStringLiteral("call history"),
                        QStringLiteral("launched with ") + arguments.join(QLatin1Char(' ')));
}
