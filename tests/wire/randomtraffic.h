// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "randombody.h"
#include "randompeer.h"
#include "randomsource.h"
#include "rawconnection.h"
#include "sentmessages.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <vector>

/// What may come to the call UI on two buses where nobody behaves: its services and a stranger on
/// either bus, which answer its calls at random, and which send it random signals, calls, and
/// replies that it never asked them for.
class RandomTraffic
{
public:
    /// The services are there from now on, and answer in pump().
    RandomTraffic(const QString &sessionBus, const QString &systemBus, quint64 seed);

    /// Lets everybody answer what has come.
    void pump();

    /// Whether the UI is on both buses; nothing can be sent to it before.
    bool findUi();
    /// Sends one message of any kind to the UI, or moves one of the names that it knows.
    void sendOne();

    /// Whether the UI answers a "dial" of \a number with true, and is on the system bus. Waits for
    /// the answers for \a timeout milliseconds each, and calls \a meanwhile again and again.
    bool isUiAlive(const QByteArray &number, int timeout, const std::function<void()> &meanwhile);

    /// Calls of the UI that the services and the strangers have had.
    int callCount() const;
    /// The last messages that were sent, a line each.
    QString lastMessages() const { return m_sent.toText(); }

private:
    struct Side
    {
        std::unique_ptr<RandomPeer> stranger;
        std::vector<std::unique_ptr<RandomPeer>> services;
        QByteArray ui; ///< Its unique name.
        quint32 serial = 0; ///< The last one of the UI's that is known.
    };

    Side makeSide(const QString &address, const std::vector<QByteArray> &services, quint64 seed);
    static void pump(Side &side);
    RandomPeer *find(Side &side, const QByteArray &service);
    RawMessage ask(Side &side, DBusMessage *call, int timeout,
                   const std::function<void()> &meanwhile);

    void sendSignal();
    void sendCall();
    void sendOrder();
    void sendReply(Side &side);
    void moveName(Side &side);

    RandomSource m_random;
    RandomBody m_body{m_random};
    SentMessages m_sent;
    Side m_session;
    Side m_system;
};
