// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "systemclock.h"

#include <QDateTime>
#include <QSocketNotifier>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <limits>

#include <sys/timerfd.h>
#include <unistd.h>

namespace {

int createTimer()
{
    constexpr int flags = TFD_NONBLOCK | TFD_CLOEXEC;
    const int waking = timerfd_create(CLOCK_REALTIME_ALARM, flags);
    return waking >= 0 ? waking : timerfd_create(CLOCK_REALTIME, flags);
}

} // namespace

SystemClock::SystemClock(QObject *parent)
    : WallClock(parent)
    , m_descriptor(createTimer())
{
    if (m_descriptor < 0)
        qFatal("There is no timer: %s", std::strerror(errno));
    auto *notifier = new QSocketNotifier(m_descriptor, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &SystemClock::read);
}

SystemClock::~SystemClock()
{
    close(m_descriptor);
}

qint64 SystemClock::now() const
{
    return QDateTime::currentSecsSinceEpoch();
}

void SystemClock::wakeAt(qint64 seconds)
{
    // A time of 0 would stop the timer.
    const qint64 time = std::clamp<qint64>(seconds, 1, std::numeric_limits<time_t>::max());
    itimerspec when = {};
    when.it_value.tv_sec = static_cast<time_t>(time);
    timerfd_settime(m_descriptor, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &when, nullptr);
}

void SystemClock::letSleep()
{
    const itimerspec never = {};
    timerfd_settime(m_descriptor, 0, &never, nullptr);
}

void SystemClock::read()
{
    uint64_t count = 0;
    const bool wasSet = ::read(m_descriptor, &count, sizeof count) < 0 && errno == ECANCELED;
    if (count > 0 || wasSet)
        Q_EMIT woke();
}
