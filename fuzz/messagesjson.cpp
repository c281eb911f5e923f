// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// Reads any input as a file of messages. Messages that were read and written are read as the same
// again.

#include "messagesjson.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

/// Returns \a messages without leading byte-order marks, which Qt removes from some texts only.
QStringList withoutMarks(const QStringList &messages)
{
    QStringList all;
    for (QString message : messages) {
        while (message.startsWith(QChar(QChar::ByteOrderMark)))
            message.remove(0, 1);
        if (!message.trimmed().isEmpty())
            all.append(message);
    }
    return all;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QStringList messages =
        messagesFromJson(QByteArray(reinterpret_cast<const char *>(data), static_cast<int>(size)));
    QStringList expected;
    for (const QString &message : messages) {
        if (message.trimmed().isEmpty())
            std::abort();
        expected.append(message.trimmed());
    }
    if (withoutMarks(messagesFromJson(messagesToJson(messages))) != withoutMarks(expected))
        std::abort();
    return 0;
}
