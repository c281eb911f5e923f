// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "rawconnection.h"

#include <QByteArray>
#include <QString>

#include <deque>

/// The last messages that were sent, for whoever has to find the one that did it.
class SentMessages
{
public:
    /// Takes \a message down as sent by \a sender. Its arguments are not to be changed afterwards.
    void note(const QByteArray &sender, DBusMessage *message);

    /// A line for each message, with what it carries; the last one last.
    QString toText() const;

private:
    struct Entry
    {
        QByteArray sender;
        RawMessage message;
    };

    std::deque<Entry> m_entries;
};
