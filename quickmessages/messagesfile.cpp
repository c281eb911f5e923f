// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "messagesfile.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Opens \a file if it is a regular file for which \a isSuitable returns true. The tests use the
/// open descriptor, because the name may refer to another file at any time.
template <typename Condition>
bool openRegular(QFile &file, int flags, QIODevice::OpenMode mode, Condition isSuitable)
{
    const int descriptor = ::open(QFile::encodeName(file.fileName()).constData(),
                                  flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666);
    if (descriptor < 0)
        return false;
    struct stat status = {};
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)
        || !isSuitable(descriptor, status)) {
        ::close(descriptor);
        return false;
    }
    return file.open(descriptor, mode | QIODevice::Text, QFileDevice::AutoCloseHandle);
}

} // namespace

bool openToRead(QFile &file)
{
    return openRegular(file, O_RDONLY, QIODevice::ReadOnly, [](int, const struct stat &status) {
        return status.st_size <= largestMessagesFile;
    });
}

bool openToWrite(QFile &file)
{
    return openRegular(
        file, O_WRONLY | O_CREAT, QIODevice::WriteOnly,
        [](int descriptor, const struct stat &) { return ftruncate(descriptor, 0) == 0; });
}
