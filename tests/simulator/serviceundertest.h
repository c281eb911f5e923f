// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "childprocess.h"
#include "privatebus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QTemporaryDir>
#include <QVector>

#include <memory>

/// Runs one service of the simulated handset as a process with private buses. PARLEY_HANDSET names
/// its program.
class ServiceUnderTest : public QObject
{
    Q_OBJECT

public:
    enum class Bus { Session, System };

    struct Place
    {
        QString name; ///< The name for the program.
        Bus bus;
        QString service;
        QString path;
        QStringList heard; ///< The signals to receive, as "interface.Member".
        PrivateBus::Limits limits = PrivateBus::Limits::Wide; ///< Of the system bus.
    };

    explicit ServiceUnderTest(Place place);
    ~ServiceUnderTest() override;

    /// Starts the service and waits until it is on its bus.
    bool start();
    /// Sends a signal to the process and waits for its end.
    bool end(int signal);
    bool isRunning() const { return m_process && m_process->state() != QProcess::NotRunning; }

    /// Returns the address of the bus of the service. Other users may connect to it.
    QString address() const;
    /// Returns a connection of this process to the bus of the service.
    QDBusConnection bus() const { return m_bus; }
    /// Returns the folder for the state of the service. It does not exist at first.
    QString stateFolder() const { return m_folder.filePath(QStringLiteral("state")); }
    bool writeState(const QString &name, const QByteArray &content) const;

    /// Calls a method of the service and waits for the reply.
    QDBusMessage call(const QString &interface, const QString &method,
                      const QVariantList &arguments = {}) const;
    /// The same for another object path.
    QDBusMessage callAt(const QString &path, const QString &interface, const QString &method,
                        const QVariantList &arguments = {}) const;
    /// Returns what "busctl VERB SERVICE PATH ARGUMENT..." prints, with single blanks.
    QStringList busctl(const QString &verb, const QStringList &arguments) const;
    /// The same for another object path.
    QStringList busctlAt(const QString &path, const QString &verb,
                         const QStringList &arguments) const;

    /// Waits for the next signal of that name. Returns its arguments, or none if it does not come.
    QDBusMessage nextSignal(const QString &member);
    /// Returns the signals that were received and not taken.
    QStringList pendingSignals() const;

    /// Waits for a line of the log that contains \a part, and takes it.
    bool logs(const QString &part);
    /// Takes the lines of the log that were not taken so far.
    QStringList takeLog();

private Q_SLOTS:
    void received(const QDBusMessage &message);

private:
    void readLog();

    const Place m_place;
    QTemporaryDir m_folder;
    PrivateBus m_sessionBus;
    PrivateBus m_systemBus;
    QDBusConnection m_bus;
    QVector<QDBusMessage> m_signals;
    QStringList m_log;
    std::unique_ptr<ChildProcess> m_process;
};
