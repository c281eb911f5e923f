// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "busmessage.h"

#include <QObject>

class QSocketNotifier;
struct DBusConnection;

/// Everything that is sent on one bus, as a monitor of the bus sees it (D-Bus Specification,
/// org.freedesktop.DBus.Monitoring.BecomeMonitor).
class BusMonitor : public QObject
{
    Q_OBJECT

public:
    explicit BusMonitor(QObject *parent = nullptr);
    ~BusMonitor() override;

    /// Monitors the bus at \a address from now on. Waits for the bus daemon. To be called once.
    /// Where it cannot be done, returns false; error() says why.
    bool start(const QString &address);
    QString error() const { return m_error; }

Q_SIGNALS:
    void received(const BusMessage &message);
    /// The bus has ended the connection. Comes once.
    void ended();

private:
    Q_DISABLE_COPY(BusMonitor)

    bool becomeMonitor();
    void read();

    DBusConnection *m_connection = nullptr;
    QSocketNotifier *m_notifier = nullptr;
    QString m_error;
};
