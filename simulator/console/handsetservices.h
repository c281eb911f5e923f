// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "alarmcommands.h"
#include "callcommands.h"
#include "callrulecommands.h"
#include "notificationcommands.h"
#include "remindercommands.h"
#include "serviceprocess.h"
#include "simcommands.h"

#include <QObject>

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <vector>

class Transcript;

/// The services of the handset that the call UI uses. Each runs as a separate process. The end of a
/// service is recorded in the transcript, and a command can start it again.
class HandsetServices : public QObject
{
    Q_OBJECT

public:
    struct World
    {
        QString sessionBus; ///< The address of the bus.
        QString systemBus; ///< The address of the bus.
        QString stateFolder; ///< The services keep their state here.
        bool hasOfono = false; ///< The telephony is the real oFono.
    };

    /// The connections are to the buses of \a world. \a transcript must outlive the object.
    HandsetServices(const World &world, const QDBusConnection &session,
                    const QDBusConnection &system, Transcript &transcript,
                    QObject *parent = nullptr);

    /// Starts the services. Calls \a settled when each of them has started or failed.
    void start(const std::function<void()> &settled);

    /// Returns the commands for the services and their processes.
    QVector<Command> commands();

    /// Keeps the lists of what the services have up to date from now on.
    void follow();

    AlarmCommands &alarms() { return m_alarms; }
    NotificationCommands &notifications() { return m_notifications; }
    SimCommands &sims() { return m_sims; }
    CallCommands &calls() { return m_calls; }
    CallRuleCommands &rules() { return m_rules; }
    const std::vector<std::unique_ptr<ServiceProcess>> &processes() const { return m_processes; }

private Q_SLOTS:
    void callHistoryLaunched(const QStringList &arguments);

private:
    std::array<ServiceTalk *, 5> talks();
    ServiceProcess *add(const ServiceProcess::Service &service, const QDBusConnection &bus,
                        const QProcessEnvironment &environment);
    void start(ServiceProcess *process, const std::function<void()> &settled);

    Transcript &m_transcript;
    AlarmCommands m_alarms;
    NotificationCommands m_notifications;
    ReminderCommands m_reminders;
    SimCommands m_sims;
    CallCommands m_calls;
    CallRuleCommands m_rules;
    std::vector<std::unique_ptr<ServiceProcess>> m_processes;
    /// What starts when another process has.
    std::map<ServiceProcess *, ServiceProcess *> m_followers;
    std::size_t m_awaited = 0;
};
