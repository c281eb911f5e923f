// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "childprocess.h"
#include "command.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QProcessEnvironment>
#include <QTimer>

/// A service of the handset that runs as a separate process. It can be stopped and started.
class ServiceProcess : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name CONSTANT)
    /// "running", "stopped", or "hung" after the command that freezes it.
    Q_PROPERTY(QString state READ state NOTIFY stateChanged)

public:
    struct Service
    {
        QString name; ///< The name of its command.
        QString busName; ///< It has started when it owns this name.
        QString stateFolder;
        QString program = name; ///< Its name for runService().
    };

    /// \a bus is a connection to the bus of the service.
    ServiceProcess(Service service, const QDBusConnection &bus,
                   const QProcessEnvironment &environment, QObject *parent = nullptr);

    /// Starts the process. \a finish is called when it owns its name or has failed to start.
    void start(const Finish &finish);

    QString name() const { return m_service.name; }
    QString state() const;

    /// Returns the command that stops, starts, freezes and continues it.
    Command command();

Q_SIGNALS:
    /// The process has written this line to its log.
    void logged(const QString &line);
    /// The process has ended unexpectedly. \a how is a phrase that follows its name.
    void ended(const QString &how);
    void stateChanged();

private:
    void run(const QString &what, const Finish &finish);
    void stop(const Finish &finish);
    void setHung(bool hung);
    void settle(Outcome outcome, const QString &text);
    void emitLines();
    void reportError(QProcess::ProcessError error);
    void reportEnd(int code, QProcess::ExitStatus status);

    const Service m_service;
    QDBusConnection m_bus;
    ChildProcess m_process;
    QDBusServiceWatcher m_watcher;
    QTimer m_patience;
    bool m_isHung = false;
    Finish m_finish; ///< Null unless a start or a stop is under way.
};
