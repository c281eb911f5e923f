// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "alarm.h"
#include "messagelog.h"
#include "privatebus.h"
#include "scriptedservice.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QTemporaryDir>

#include <memory>

/// Private buses with the services that an alarm deals with. The test answers for each of them. A
/// failed expectation is logged, and is among the lines that end() returns.
class AlarmScene
{
public:
    /// Returns an alarm with a number but no name, which becomes due in a minute so that no text
    /// depends on the time.
    static Alarm alarm(const QString &number = QStringLiteral("5551234"));

    /// Starts the buses and makes them those of this process.
    bool start();

    PrivateBus &sessionBus() { return m_sessionBus; }
    PrivateBus &systemBus() { return m_systemBus; }

    /// Starts the services, and collects the log from here on.
    void begin();
    /// Returns what was not expected: calls that nobody has taken, and lines of the log.
    QStringList end();

    /// Takes the lines of the log.
    QStringList takeLog() { return m_log->take(); }
    /// Handles all messages that are under way.
    void settle();

    void startDaemon();
    void stopDaemon() { m_daemon.reset(); }
    ScriptedService &daemon() { return *m_daemon; }
    /// Says that the list of due alarms has changed.
    void change();
    /// Takes the request for the list and answers it.
    void list(const QList<uint> &cookies);
    /// Takes the request for an alarm.
    QDBusMessage takeGet(uint cookie);
    /// Takes the request for an alarm and answers it.
    void get(uint cookie, const Alarm &alarm);
    /// Takes the request to dismiss an alarm.
    QDBusMessage takeDismiss(uint cookie);
    /// Takes the request to dismiss an alarm and answers it.
    void dismiss(uint cookie);

    /// Starts the notification server.
    void startServer();
    void stopServer() { m_server.reset(); }
    ScriptedService &server() { return *m_server; }
    /// Takes the question for the server's capabilities and answers it.
    void answerCapabilities(const QStringList &capabilities = {});
    /// Takes the request for a notification with that number as its summary, and answers it.
    void show(uint id, const QString &number = QStringLiteral("5551234"));
    /// Takes the request to close a notification.
    void takeClose(uint id);
    /// Says that a notification was closed.
    void closed(uint id, uint reason);
    /// Says that an action was chosen.
    void invoked(uint id, const QString &action);
    /// Takes the question that is asked before an alarm is dismissed, and answers it.
    void answerInformation();

    ScriptedService &callUi() { return *m_callUi; }
    /// Takes the request to call a number.
    QDBusMessage takeDial(const QString &number = QStringLiteral("5551234"));

private:
    QDBusMessage take(ScriptedService &service, const QString &interface, const QString &method,
                      const QVariantList &arguments);

    QTemporaryDir m_folder;
    PrivateBus m_sessionBus;
    PrivateBus m_systemBus;
    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<ScriptedService> m_daemon;
    std::unique_ptr<ScriptedService> m_server;
    std::unique_ptr<ScriptedService> m_callUi;
};
