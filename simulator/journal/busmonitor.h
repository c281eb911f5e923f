// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "busmessage.h"

#include <QObject>

#include <memory>

class QThread;
struct DBusConnection;

/// Reports every message on a bus, as a monitor (D-Bus Specification,
/// org.freedesktop.DBus.Monitoring.BecomeMonitor). A thread of its own reads the messages, so that
/// their times are those of their arrival, whatever the thread of the object does meanwhile.
class BusMonitor : public QObject
{
    Q_OBJECT

public:
    explicit BusMonitor(QObject *parent = nullptr);
    ~BusMonitor() override;

    /// Monitors the bus at \a address from now on. Blocks until the bus daemon has answered. Call
    /// this once. Returns false if the bus cannot be monitored; error() says why.
    bool start(const QString &address);
    QString error() const { return m_error; }

Q_SIGNALS:
    void received(const BusMessage &message);
    /// The bus has closed the connection. Emitted once.
    void ended();

private:
    Q_DISABLE_COPY(BusMonitor)

    bool becomeMonitor();
    void read();

    DBusConnection *m_connection = nullptr;
    int m_descriptor = -1; ///< The socket of the connection, which owns it.
    std::unique_ptr<QThread> m_reader;
    QString m_error;
};
