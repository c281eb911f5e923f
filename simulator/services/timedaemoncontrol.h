// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "alarm.h"

#include <QDBusAbstractAdaptor>

class TimeDaemon;

/// What a simulated handset can do with its time daemon beyond what the daemon offers to others.
class TimeDaemonControl : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.nimbo.simulator.TimeDaemon")

public:
    /// Stands beside the interface of \a daemon, which owns it.
    explicit TimeDaemonControl(TimeDaemon &daemon);

public Q_SLOTS:
    /// All alarms.
    AlarmsByCookie List() const;
    /// Fires an alarm ahead of its time. An error if there is none with that cookie.
    void Fire(uint cookie);

Q_SIGNALS:
    void Added(uint cookie);
    void Cancelled(uint cookie);
    void Fired(uint cookie);

private:
    TimeDaemon &m_daemon;
};
