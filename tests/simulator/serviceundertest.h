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

/// One service of the simulated handset as a process, on buses of its own. Its program is the one
/// that PARLEY_HANDSET names.
class ServiceUnderTest : public QObject
{
    Q_OBJECT

public:
    enum class Bus { Session, System };

    struct Place
    {
        QString name; ///< As the program takes it.
        Bus bus;
        QString service;
        QString path;
        QStringList heard; ///< Its signals, each with its interface before it: "interface.Member".
    };

    explicit ServiceUnderTest(Place place);
    ~ServiceUnderTest() override;

    /// Starts it and waits until it is on its bus.
    bool start();
    /// Sends it a signal and waits for its end.
    bool end(int signal);
    bool isRunning() const { return m_process && m_process->state() != QProcess::NotRunning; }

    /// A connection of this process to the service's bus.
    QDBusConnection bus() const { return m_bus; }
    /// Given to it as the folder to keep things in. It does not exist before somebody makes it.
    QString stateFolder() const { return m_folder.filePath(QStringLiteral("state")); }
    bool writeState(const QString &name, const QByteArray &content) const;

    /// Calls a method of the service and waits for the answer.
    QDBusMessage call(const QString &interface, const QString &method,
                      const QVariantList &arguments = {}) const;
    /// The same at another of its paths.
    QDBusMessage callAt(const QString &path, const QString &interface, const QString &method,
                        const QVariantList &arguments = {}) const;
    /// What busctl prints, with single blanks, for "busctl VERB SERVICE PATH ARGUMENT...".
    QStringList busctl(const QString &verb, const QStringList &arguments) const;
    /// The same at another of its paths.
    QStringList busctlAt(const QString &path, const QString &verb,
                         const QStringList &arguments) const;

    /// Waits for the next signal of that name; its arguments. Nothing if it does not come.
    QDBusMessage nextSignal(const QString &member);
    /// The signals received and not taken yet.
    QStringList pendingSignals() const;

    /// Waits for a line of its log that has \a part in it, and claims that line.
    bool logs(const QString &part);
    /// What it has logged and nobody claimed.
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
