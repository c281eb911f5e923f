// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "wallclocktimer.h"

#include <QSocketNotifier>

#include <algorithm>
#include <cerrno>
#include <cstdint>

#include <sys/timerfd.h>
#include <unistd.h>

WallClockTimer::WallClockTimer(QObject *parent)
    : QObject(parent)
    , m_descriptor(timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC))
{
    auto *notifier = new QSocketNotifier(m_descriptor, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &WallClockTimer::read);
}

WallClockTimer::~WallClockTimer()
{
    close(m_descriptor);
}

void WallClockTimer::start(qint64 seconds)
{
    itimerspec when = {};
    when.it_value.tv_sec = std::max<qint64>(seconds, 1); // 0 would stop the timer.
    timerfd_settime(m_descriptor, TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &when, nullptr);
}

void WallClockTimer::stop()
{
    const itimerspec never = {};
    timerfd_settime(m_descriptor, 0, &never, nullptr);
}

void WallClockTimer::read()
{
    uint64_t count = 0;
    const bool clockWasSet = ::read(m_descriptor, &count, sizeof count) < 0 && errno == ECANCELED;
    if (count > 0 || clockWasSet)
        Q_EMIT wentOff();
}
