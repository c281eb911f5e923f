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

/// The messages that the call UI may get on two buses where no process behaves. The services and a
/// stranger on each bus answer its calls at random, and send it random signals, calls, and replies
/// without a call.
class RandomTraffic
{
public:
    /// Starts the services, which answer in pump().
    RandomTraffic(const QString &sessionBus, const QString &systemBus, quint64 seed);

    /// Lets all processes answer the calls that have come.
    void pump();

    /// Returns whether the UI is on both buses. Nothing can be sent to it before.
    bool findUi();
    /// Sends one message of any kind to the UI, or gives a name that it knows to another process.
    void sendOne();

    /// Returns whether the UI answers a "dial" of \a number with true, and is on the system bus.
    /// Waits for each answer for \a timeout milliseconds at most, and calls \a meanwhile
    /// repeatedly.
    bool isUiAlive(const QByteArray &number, int timeout, const std::function<void()> &meanwhile);

    /// Returns how many calls of the UI the services and the strangers have got.
    int callCount() const;
    /// Returns the last messages that were sent, one in each line.
    QString lastMessages() const { return m_sent.toText(); }

private:
    struct Side
    {
        std::unique_ptr<RandomPeer> stranger;
        std::vector<std::unique_ptr<RandomPeer>> services;
        QByteArray ui; ///< The unique name of the UI.
        quint32 serial = 0; ///< The last known serial of the UI.
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
