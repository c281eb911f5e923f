// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "rawconnection.h"

#include <QByteArray>
#include <QString>

#include <deque>

/// The last messages that were sent. They help to find the one that caused a failure.
class SentMessages
{
public:
    /// Records that \a sender has sent \a message. Its arguments must not change afterwards.
    void note(const QByteArray &sender, DBusMessage *message);

    /// Returns a line for each message with its arguments, in the order of sending.
    QString toText() const;

private:
    struct Entry
    {
        QByteArray sender;
        RawMessage message;
    };

    std::deque<Entry> m_entries;
};
