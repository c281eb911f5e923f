// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "randombody.h"
#include "randomsource.h"
#include "rawconnection.h"
#include "sentmessages.h"

#include <QByteArray>
#include <QString>

#include <deque>
#include <memory>

/// A process on a bus that answers each call at random: as the real service would, nearly so, with
/// anything, with an error, late, or not at all.
///
/// With a name it plays that service; without one it is a stranger.
class RandomPeer
{
public:
    /// Connects to the bus at \a address, with the name \a service unless that is empty.
    RandomPeer(QString address, QByteArray service, quint64 seed, SentMessages &sent);

    /// Returns the name of the service, which it may have lost; empty for a stranger.
    QByteArray service() const { return m_service; }
    RawConnection &connection() { return *m_connection; }
    /// Returns the sender of the last call; empty before the first one.
    QByteArray caller() const { return m_caller; }
    /// Returns the serial of the last call; 0 before the first one.
    quint32 lastSerial() const { return m_lastSerial; }
    /// Returns the number of calls that have come.
    int callCount() const { return m_callCount; }

    /// Sends \a message and records it.
    void send(DBusMessage *message);
    /// Answers the calls that have come, and earlier ones that have waited for long enough.
    void pump();
    /// Replaces its connection to the bus by another one, as if the service had died and started
    /// again.
    void restart();

private:
    Q_DISABLE_COPY(RandomPeer)

    struct Waiting
    {
        RawMessage call;
        quint64 turns; ///< The turn of pump() in which the call is answered.
    };

    void connectToBus();
    void take(DBusMessage *message);
    void answer(DBusMessage *call);

    const QString m_address;
    const QByteArray m_service;
    RandomSource m_random;
    RandomBody m_body{m_random};
    SentMessages &m_sent;
    std::unique_ptr<RawConnection> m_connection;
    std::deque<Waiting> m_waiting;
    QByteArray m_caller;
    quint32 m_lastSerial = 0;
    int m_callCount = 0;
};
