// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// Reads any bytes as the file of a user's alarms. What is read is written, and then read as the
// same.

#include "alarmfile.h"

#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

/// Qt's JSON reader leaks the first value of a key that comes twice.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the sanitizer prescribes this name
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:libQt5Core";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QTemporaryDir folder;
    const auto alarms = AlarmFile::parse(
        QByteArray::fromRawData(reinterpret_cast<const char *>(data), static_cast<int>(size)));
    if (!alarms)
        return 0;
    if (alarms->pending.contains(0) || alarms->due.contains(0))
        std::abort();
    const QString path = folder.filePath(QStringLiteral("alarms.json"));
    if (!AlarmFile(path).save(*alarms).isEmpty())
        std::abort();
    const Alarms again = AlarmFile(path).load();
    if (again.lastCookie != alarms->lastCookie || again.pending != alarms->pending
        || again.due != alarms->due)
        std::abort();
    return 0;
}
