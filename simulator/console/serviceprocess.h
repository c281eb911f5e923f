// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "childprocess.h"
#include "command.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QProcessEnvironment>
#include <QTimer>

/// A service of the handset as a process of its own, which can be stopped and started.
class ServiceProcess : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name CONSTANT)
    /// "running", "stopped" or "hung" (by its command).
    Q_PROPERTY(QString state READ state NOTIFY stateChanged)

public:
    struct Service
    {
        QString name; ///< As runService() knows it; the name of its command, too.
        QString busName; ///< What it owns when it is up.
        QString stateFolder;
    };

    /// \a bus is where the service belongs, \a environment what the process gets.
    ServiceProcess(Service service, const QDBusConnection &bus,
                   const QProcessEnvironment &environment, QObject *parent = nullptr);

    /// Starts it; \a finish is called when it is up, or is not going to be.
    void start(const Finish &finish);

    QString name() const { return m_service.name; }
    QString state() const;

    /// What can be done to it.
    Command command();

Q_SIGNALS:
    /// A line that it has written to its log.
    void logged(const QString &line);
    /// It has ended without being asked to; \a how goes on after its name.
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
    Finish m_finish; ///< Of a start or a stop that is under way.
};
