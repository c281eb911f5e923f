// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "privatebus.h"
#include "sandbox.h"
#include "settings.h"
#include "uiprocess.h"

#include <QDBusConnection>
#include <QJsonValue>
#include <QTemporaryDir>

#include <memory>

/// The built call UI as a process, on buses and in a home of its own.
///
/// Its program is the one that PARLEY_UI names. Every line that it logs is to be claimed by the
/// test; what is left in the end is what nobody expected.
class UiUnderTest : public QObject
{
    Q_OBJECT

public:
    /// The lines that it logs at its start where the handset is missing: two control groups, and
    /// the telephony stack.
    static QStringList startUpLines();

    UiUnderTest();
    ~UiUnderTest() override;

    /// Whether the buses run.
    bool isValid() const;

    /// A folder of this test's own, in which the home is.
    QString folder() const { return m_folder.path(); }
    /// Writes \a content to a file below folder() and returns its path.
    QString writeFile(const QString &name, const QByteArray &content) const;

    PrivateBus &sessionBus() { return m_sessionBus; }
    PrivateBus &systemBus() { return m_systemBus; }
    /// A connection to the session bus, of this process.
    QDBusConnection session() const { return m_session; }
    /// What the process may find at fixed places.
    Sandbox &sandbox() { return m_sandbox; }
    /// To be set before the process is started.
    void setEnvironment(const QString &name, const QString &value);
    void setSessionBusAddress(const QString &address) { m_sessionBusAddress = address; }
    /// Puts a program and its arguments before the command, as "setpriv".
    void setPrefix(const QStringList &prefix) { m_prefix = prefix; }
    bool writeSettings(const Settings &settings) const;

    /// Says that "org.ofono" is on the system bus when the process is started.
    void setHasTelephony() { m_hasTelephony = true; }

    /// Starts the process with \a arguments.
    void start(const QStringList &arguments);
    /// Starts it with \a screens (QML that says "loaded") and \a arguments before that; waits until
    /// they are loaded, and claims startUpLines().
    bool startScreens(const QString &screens, const QStringList &arguments = {});
    /// Starts it with the probe as its screens and \a arguments before that, as startScreens().
    bool startProbe(const QStringList &arguments = {});

    bool isRunning() const { return m_process && m_process->state() == QProcess::Running; }
    /// As the bus knows it.
    qint64 processId() const;
    /// Kilobytes of memory that the process holds.
    qint64 residentMemory() const;

    /// Waits until startUpLines() have been logged, the last one only where there is no telephony,
    /// and claims them.
    bool claimStartUpLines();
    /// Waits until \a line has been logged, and claims it.
    bool logs(const QString &line);
    /// Claims the first line that begins with \a prefix, which has been or will be logged.
    QString lineBeginning(const QString &prefix);
    /// Claims everything that has been logged by now. What the process wrote before it sent a reply
    /// that has been received is part of it.
    QStringList takeLog();

    /// What the probe's QML makes of \a expression.
    QJsonValue evaluate(const QString &expression);
    /// Calls a method of the service and waits for the answer.
    QDBusMessage call(const QString &method, const QVariantList &arguments = {});

    /// Waits until it ends by itself; its exit status, or -1 for a crash or if it does not end.
    int waitForEnd();
    /// Ends it with SIGTERM.
    void stop();

private:
    void readLog(const QString &line) { m_log.append(line); }

    QTemporaryDir m_folder;
    PrivateBus m_sessionBus;
    PrivateBus m_systemBus;
    QDBusConnection m_session;
    QString m_sessionBusAddress;
    Sandbox m_sandbox;
    QStringList m_prefix;
    QMap<QString, QString> m_environment;
    bool m_hasTelephony = false;
    std::unique_ptr<UiProcess> m_process;
    QStringList m_log;
};
