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

/// The built call UI as a process, with buses and a home of its own.
///
/// PARLEY_UI names its program. A test has to claim every line that the process logs. Lines that
/// are left in the end were not expected.
class UiUnderTest : public QObject
{
    Q_OBJECT

public:
    /// Returns the lines that the process logs at its start without a handset: two control groups
    /// and the telephony stack are missing.
    static QStringList startUpLines();

    UiUnderTest();
    ~UiUnderTest() override;

    /// Returns whether the buses run.
    bool isValid() const;

    /// Returns a folder of this test's own, which contains the home.
    QString folder() const { return m_folder.path(); }
    /// Writes \a content to a file below folder() and returns its path.
    QString writeFile(const QString &name, const QByteArray &content) const;

    PrivateBus &sessionBus() { return m_sessionBus; }
    PrivateBus &systemBus() { return m_systemBus; }
    /// Returns a connection of the test to the session bus.
    QDBusConnection session() const { return m_session; }
    /// The files that the process finds at fixed paths.
    Sandbox &sandbox() { return m_sandbox; }
    /// Hides the catalogues of the machine, which an installed package brings, from the process.
    void hideCatalogues();
    /// Sets an environment variable. Call this before the process is started.
    void setEnvironment(const QString &name, const QString &value);
    void setSessionBusAddress(const QString &address) { m_sessionBusAddress = address; }
    /// Sets a program with arguments, such as "setpriv", that runs the command.
    void setPrefix(const QStringList &prefix) { m_prefix = prefix; }
    /// Loads a library into the process before its own ones. Programs of the machine that start the
    /// process may be for another processor, and do not get it.
    void preload(const QString &library) { m_preloaded = library; }
    bool writeSettings(const Settings &settings) const;

    /// Declares that "org.ofono" is on the system bus when the process is started.
    void setHasTelephony() { m_hasTelephony = true; }

    /// Starts the process with \a arguments.
    void start(const QStringList &arguments);
    /// Starts the process with \a arguments and \a screens, QML that logs "loaded". Waits until
    /// they are loaded, and claims startUpLines().
    bool startScreens(const QString &screens, const QStringList &arguments = {});
    /// Does the same as startScreens(), with the probe as the screens.
    bool startProbe(const QStringList &arguments = {});

    bool isRunning() const { return m_process && m_process->state() == QProcess::Running; }
    /// Returns the id of the process that the bus knows.
    qint64 processId() const;
    /// Returns the resident memory of the process in KiB.
    qint64 residentMemory() const;

    /// Waits until startUpLines() are logged, and claims them. The last one is only expected
    /// without telephony.
    bool claimStartUpLines();
    /// Waits until \a line is logged, and claims it.
    bool logs(const QString &line);
    /// Waits for a line that begins with \a prefix, claims the first one, and returns it.
    QString lineBeginning(const QString &prefix);
    /// Claims and returns all lines that are logged by now. These include all lines that the
    /// process wrote before a reply that was received.
    QStringList takeLog();

    /// Returns the value of \a expression in the probe's QML.
    QJsonValue evaluate(const QString &expression);
    /// Calls a method of the service, waits for the answer and returns it.
    QDBusMessage call(const QString &method, const QVariantList &arguments = {});

    /// Waits until the process ends by itself. Returns its exit status, or -1 if it crashes or does
    /// not end.
    int waitForEnd();
    /// Ends the process with SIGTERM.
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
    QString m_preloaded;
    QMap<QString, QString> m_environment;
    bool m_hasTelephony = false;
    std::unique_ptr<UiProcess> m_process;
    QStringList m_log;
};
