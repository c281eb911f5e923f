// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "alarm.h"

#include <QDBusAbstractAdaptor>

class TimeDaemon;

/// The interface for a program that shows a user's due alarms. An alarm with the reminder flag
/// stays due until it is dismissed. Each caller sees the alarms of its own user only.
class DueAlarmsAdaptor : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.nimbo.parley.DueAlarms")

public:
    /// An adaptor on the object of \a daemon, which owns it.
    explicit DueAlarmsAdaptor(TimeDaemon &daemon);

public Q_SLOTS:
    /// Returns the cookies of the due alarms: first the one with the earliest time.
    QList<uint> List();
    /// Returns a due alarm. Replies with an error (InvalidArgs) if there is none with that cookie.
    Alarm Get(uint cookie);
    /// Removes a due alarm. Returns whether there was one with that cookie.
    bool Dismiss(uint cookie);

Q_SIGNALS:
    /// The list has changed. It stands here for the introspection alone: it is not emitted but sent
    /// to the connections of the user.
    void Changed();

private:
    TimeDaemon &m_daemon;
};
