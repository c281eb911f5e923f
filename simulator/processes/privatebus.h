// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "childprocess.h"

/// A message bus of our own. Any user may connect to it and own any name. It activates no service.
class PrivateBus : public QObject
{
    Q_OBJECT

public:
    /// What a connection may send, and keep waiting (dbus-daemon(1)).
    enum class Limits {
        Wide, ///< As a session bus has them: for large messages, and for many calls at a time.
        FewReplies, ///< The same, but it waits for as few replies at a time as on a system bus.
        Stock, ///< As a system bus has them.
    };

    using QObject::QObject;

    /// Starts the bus daemon, with its configuration and its socket in \a folder, and waits until
    /// it listens. \a name distinguishes it from other buses in that folder.
    bool start(const QString &folder, const QString &name, Limits limits = Limits::Wide);

    /// Ends the bus daemon. died() is not emitted.
    void stop() { m_daemon.stop(); }

    /// For DBUS_SESSION_BUS_ADDRESS or DBUS_SYSTEM_BUS_ADDRESS. Empty until it has started.
    QString address() const { return m_address; }

    /// Returns the last message of the daemon if it did not start.
    QString error() const { return m_error; }

Q_SIGNALS:
    /// The daemon has ended without being asked to.
    void died();

private:
    ChildProcess m_daemon;
    QString m_address;
    QString m_error;
};
