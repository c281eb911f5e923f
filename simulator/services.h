// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "alarms.h"
#include "callreminders.h"
#include "callrules.h"
#include "notifications.h"
#include "serviceprocess.h"
#include "sims.h"

#include <QObject>

#include <functional>
#include <memory>
#include <vector>

class Transcript;

/// The services of the handset that the call UI uses. Each is a process of its own; one that ends
/// is told of, and can be started again.
class Services : public QObject
{
    Q_OBJECT

public:
    struct World
    {
        QString sessionBus; ///< Address.
        QString systemBus; ///< Address.
        QString stateFolder; ///< What outlives a service is kept here.
    };

    /// The connections are to the buses of \a world. \a transcript is told what happens, and
    /// outlives the object.
    Services(const World &world, const QDBusConnection &session, const QDBusConnection &system,
             Transcript &transcript, QObject *parent = nullptr);

    /// Starts them; \a settled is called when each is up, or is not going to be.
    void start(const std::function<void()> &settled);

    /// What can be done with and to them.
    QVector<Command> commands();

    /// Keeps the lists of what the services have from now on.
    void follow();

    Alarms &alarms() { return m_alarms; }
    Notifications &notifications() { return m_notifications; }
    Sims &sims() { return m_sims; }
    CallRules &rules() { return m_rules; }
    const std::vector<std::unique_ptr<ServiceProcess>> &processes() const { return m_processes; }

private Q_SLOTS:
    void callHistoryLaunched(const QStringList &arguments);

private:
    void add(const ServiceProcess::Service &service, const QDBusConnection &bus,
             const QProcessEnvironment &environment);

    Transcript &m_transcript;
    Alarms m_alarms;
    Notifications m_notifications;
    CallReminders m_reminders;
    Sims m_sims;
    CallRules m_rules;
    std::vector<std::unique_ptr<ServiceProcess>> m_processes;
    std::size_t m_awaited = 0;
};
