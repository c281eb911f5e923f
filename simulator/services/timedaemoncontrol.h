// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "alarm.h"

#include <QDBusAbstractAdaptor>

class TimeDaemon;

/// The interface through which the simulator controls the time daemon.
class TimeDaemonControl : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.nimbo.simulator.TimeDaemon")

public:
    /// An adaptor on the object of \a daemon, which owns it.
    explicit TimeDaemonControl(TimeDaemon &daemon);

public Q_SLOTS:
    /// Returns all alarms.
    AlarmsByCookie List() const;
    /// Fires an alarm ahead of its time. Replies with an error if no alarm has that cookie.
    void Fire(uint cookie);

Q_SIGNALS:
    void Added(uint cookie);
    void Cancelled(uint cookie);
    void Fired(uint cookie);

private:
    TimeDaemon &m_daemon;
};
