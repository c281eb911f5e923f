// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "settableclock.h"

#include "literals.h"

#include <QFile>

#include <cstdint>
#include <ctime>

#include <sys/syscall.h>
#include <unistd.h>

namespace {

/// Asks the kernel, because the clock of this process may be shifted as well.
int64_t kernelTime()
{
    timespec time = {};
    syscall(SYS_clock_gettime, CLOCK_REALTIME, &time);
    return time.tv_sec;
}

} // namespace

SettableClock::SettableClock(UiUnderTest &ui)
    : m_fileName(ui.writeFile(u"clock-shift"_s, QByteArray(sizeof(int64_t), '\0')))
{
    ui.setEnvironment(u"PARLEY_CLOCK_SHIFT"_s, m_fileName);
    ui.preload(QStringLiteral(PARLEY_SHIFTED_CLOCK));
}

bool SettableClock::set(const QDateTime &time) const
{
    const int64_t shift = time.toSecsSinceEpoch() - kernelTime();
    QFile file(m_fileName);
    return file.open(QIODevice::ReadWrite | QIODevice::Unbuffered)
        && file.write(reinterpret_cast<const char *>(&shift), sizeof shift) == sizeof shift;
}
