// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// Any file of messages can be read; what has been read can be written, and reads as the same again.

#include "messagesjson.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

/// Qt takes a byte-order mark at the beginning of a text for one and leaves it out, but not of
/// every text.
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
