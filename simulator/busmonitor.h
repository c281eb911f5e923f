// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "busmessage.h"
#include "childprocess.h"

/// Everything that is sent on one bus, as a process of its own, dbus-monitor, sees it.
class BusMonitor : public QObject
{
    Q_OBJECT

public:
    explicit BusMonitor(QObject *parent = nullptr);

    /// Starts it on the bus at \a address; does not wait.
    void start(const QString &address);

Q_SIGNALS:
    /// From now on, every message is received. Comes once.
    void ready();
    /// What is beyond some sixty thousand bytes of a message is missing from its body.
    void received(const BusMessage &message);
    /// It could not be started, or has ended without being asked to; \a how goes on after its name.
    /// Comes once.
    void ended(const QString &how);

private:
    void read();
    bool takeFileHeader();
    bool takeMessage();
    void report(const BusMessage &message);
    void reportError(QProcess::ProcessError error);
    void reportEnd(int code, QProcess::ExitStatus status);

    ChildProcess m_process;
    QByteArray m_pending; ///< Read, and not taken yet.
    qint64 m_unwanted = 0; ///< How many bytes more belong to a message that was cut.
    bool m_hasFileHeader = false;
    bool m_isReady = false;
};
