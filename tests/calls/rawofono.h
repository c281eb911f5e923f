// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "rawconnection.h"

#include <QByteArray>
#include <QTimer>
#include <QVector>

/// An oFono that a test can stop in the middle of anything, and whose messages it writes byte by
/// byte. It has one modem, which can call.
class RawOfono
{
public:
    struct Call
    {
        QByteArray member;
        QByteArray path;
        QByteArray sender;
        quint32 serial = 0;
    };

    /// Starts on the bus at \a address. It answers pings, and questions if \a answers.
    RawOfono(const QString &address, bool answers);

    RawConnection &connection() { return m_connection; }
    /// Goes on after hang().
    void goOn() { m_turn.start(1); }
    /// Reads nothing more from the bus.
    void hang() { m_turn.stop(); }
    /// Waits for a call of \a member that was not answered, and returns it. Its serial is 0 if none
    /// comes.
    Call next(const QByteArray &member);
    /// Answers a question: GetModems with the modem, GetCalls and GetProperties with nothing.
    static RawMessage answerTo(const Call &call);

private:
    void take(DBusMessage *message);

    RawConnection m_connection;
    const bool m_answers;
    QTimer m_turn;
    QVector<Call> m_calls;
};
