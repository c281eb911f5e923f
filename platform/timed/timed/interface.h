// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "event.h"

#include <QDBusAbstractInterface>
#include <QDBusPendingCall>

namespace Maemo::Timed {

/// The time daemon, "com.nimbo.timed" on the system bus.
///
/// What has no method here ("cancel", "query", "get_attributes_by_cookies") goes through call() and
/// asyncCall(). Nothing waits for the daemon; without one, calls are answered with an error.
class Interface : public QDBusAbstractInterface
{
    Q_OBJECT

public:
    explicit Interface(QObject *parent = nullptr);

    /// Adds an alarm. The reply is its cookie (a uint, never 0). Throws Exception if \a event has
    /// no ticker; nothing is sent then.
    QDBusPendingCall add_event_async(const Event &event);

    /// As add_event_async(), in place of the alarm with \a cookie, which goes if it exists.
    QDBusPendingCall replace_event_async(const Event &event, uint32_t cookie);

Q_SIGNALS:
    /// The list of alarms has changed: \a triggers are those still to fire.
    void alarm_triggers_changed(Maemo::Timed::Event::Triggers triggers);
};

} // namespace Maemo::Timed
