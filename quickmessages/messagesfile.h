// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QtGlobal>

class QFile;

/// The most that is read of a file of messages, in bytes.
constexpr qint64 largestMessagesFile = qint64{16} << 20;

/// Opens \a file, which has a name, to be read as text. Returns false where it cannot be, is no
/// regular file or is larger than largestMessagesFile. Never waits, as opening a FIFO would.
bool openToRead(QFile &file);

/// Opens \a file, which has a name, to be written as text, empty, and makes it if it is missing.
/// Returns false where it cannot be or is no regular file, which then stays as it is. Never waits.
bool openToWrite(QFile &file);
