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

/// A process on a bus that answers each call at random: as the service would that is called, nearly
/// so, with anything, with an error, late, or not at all.
///
/// With a name it is that service; without one it is a stranger.
class RandomPeer
{
public:
    /// On the bus at \a address, with the name \a service unless that is empty.
    RandomPeer(QString address, QByteArray service, quint64 seed, SentMessages &sent);

    /// The name of the service, which it may have lost; empty for a stranger.
    QByteArray service() const { return m_service; }
    RawConnection &connection() { return *m_connection; }
    /// The last one that called; empty before that.
    QByteArray caller() const { return m_caller; }
    /// The serial of the caller's last call; 0 before that.
    quint32 lastSerial() const { return m_lastSerial; }
    /// Calls that have come.
    int callCount() const { return m_callCount; }

    /// Sends \a message and takes it down.
    void send(DBusMessage *message);
    /// Answers what has come, and what it has left waiting for long enough.
    void pump();
    /// Leaves the bus and comes back as another connection, as a service that has died.
    void restart();

private:
    Q_DISABLE_COPY(RandomPeer)

    struct Waiting
    {
        RawMessage call;
        quint64 turns; ///< Of pump() until it is answered.
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
