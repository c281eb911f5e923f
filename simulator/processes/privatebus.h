// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "childprocess.h"

/// A message bus of our own. Any user may connect to it and own any name. It activates no service.
class PrivateBus : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Starts the bus daemon, with its configuration and its socket in \a folder, and waits until
    /// it listens. \a name distinguishes it from other buses in that folder. A connection may wait
    /// for \a mostReplies replies at a time.
    bool start(const QString &folder, const QString &name, int mostReplies = 1000000);

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
