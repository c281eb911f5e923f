// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "alarm.h"

#include <QDBusAbstractAdaptor>

class TimeDaemon;

/// The interface through which a simulated handset controls the time daemon. Each caller sees and
/// fires the alarms of its own user only.
class TimeDaemonControl : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.nimbo.simulator.TimeDaemon")

public:
    /// An adaptor on the object of \a daemon, which owns it.
    explicit TimeDaemonControl(TimeDaemon &daemon);

public Q_SLOTS:
    /// Returns all alarms that have yet to fire.
    AlarmsByCookie List();
    /// Fires an alarm ahead of its time. Replies with an error if no alarm has that cookie.
    void Fire(uint cookie);

Q_SIGNALS:
    /// The signals stand here for the introspection alone: they are not emitted but sent to the
    /// connections of the user.
    void Added(uint cookie);
    void Cancelled(uint cookie);
    void Fired(uint cookie);

private:
    TimeDaemon &m_daemon;
};
