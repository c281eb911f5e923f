// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// Any file of messages can be read; what has been read can be written, and reads as the same again.

#include "messagesjson.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

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
    if (messagesFromJson(messagesToJson(messages)) != expected)
        std::abort();
    return 0;
}
