// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QtGlobal>

class QFile;

/// The size of the largest file of messages that is read, in bytes.
constexpr qint64 largestMessagesFile = qint64{16} << 20;

/// Opens \a file, which has a name, for reading as text. Returns false if this fails, and if the
/// file is not a regular file or is larger than largestMessagesFile. Never blocks, as opening a
/// FIFO would.
bool openToRead(QFile &file);

/// Opens \a file, which has a name, for writing as text. The file is emptied, or created if it is
/// missing. Returns false if this fails, and if the file is not a regular file, which then stays as
/// it is. Never blocks.
bool openToWrite(QFile &file);
