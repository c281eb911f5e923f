// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "event.h"

#include <QDBusAbstractInterface>
#include <QDBusPendingCall>

namespace Maemo::Timed {

/// The time daemon, "com.nimbo.timed" on the system bus.
///
/// Use asyncCall(), or call() with QDBus::NoBlock, for the methods that are not listed here
/// ("cancel", "query" and "get_attributes_by_cookies"). No function blocks until the daemon
/// answers. Without a daemon, calls are answered with an error.
class Interface : public QDBusAbstractInterface
{
    Q_OBJECT

public:
    explicit Interface(QObject *parent = nullptr);

    /// Adds an alarm. The reply is its cookie (a uint, never 0). Throws Exception and sends nothing
    /// if \a event has no ticker.
    QDBusPendingCall add_event_async(const Event &event);

    /// Does the same as add_event_async(), and removes the alarm with \a cookie if it exists.
    QDBusPendingCall replace_event_async(const Event &event, uint32_t cookie);

Q_SIGNALS:
    /// The list of alarms has changed: \a triggers are the alarms that have yet to fire.
    void alarm_triggers_changed(Maemo::Timed::Event::Triggers triggers);
};

} // namespace Maemo::Timed
