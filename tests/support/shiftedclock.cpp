// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// Loaded into processes with LD_PRELOAD: shifts the clock that tells the time of day, and leaves
// the monotonic clock as it is. PARLEY_CLOCK_SHIFT names a file with a signed 64-bit number of
// seconds in the byte order of the machine, which is added to every time that is read, and taken
// from every time at which a timer is to wake. A process that has opened the file sees each change
// of it at once, as it would see somebody set the clock. Timers do not see the change. The kernel
// is called directly, because to look up the C library's functions takes a lock, and time is asked
// for by threads that hold it.

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/timerfd.h>
#include <unistd.h>

#define EXPORTED extern "C" __attribute__((visibility("default")))

namespace {

const volatile int64_t *mapShift()
{
    static const int64_t none = 0;
    const char *name = std::getenv("PARLEY_CLOCK_SHIFT");
    if (name == nullptr)
        return &none;
    const int file = open(name, O_RDONLY | O_CLOEXEC);
    void *page =
        file < 0 ? MAP_FAILED : mmap(nullptr, sizeof(int64_t), PROT_READ, MAP_SHARED, file, 0);
    if (page == MAP_FAILED) {
        std::perror(name);
        std::abort();
    }
    close(file);
    return static_cast<const int64_t *>(page);
}

int64_t shift()
{
    static const volatile int64_t *const seconds = mapShift();
    return *seconds;
}

bool tellsTime(clockid_t clock)
{
    return clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE
        || clock == CLOCK_REALTIME_ALARM;
}

/// The descriptors of timers that wake at a time of day.
std::array<std::atomic<bool>, 4096> wakers;

} // namespace

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the C library's are reserved.
EXPORTED int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    const auto status = static_cast<int>(syscall(SYS_clock_gettime, clock, time));
    if (status == 0 && tellsTime(clock))
        time->tv_sec = static_cast<time_t>(time->tv_sec + shift());
    return status;
}

EXPORTED int gettimeofday(timeval *time, void *zone) noexcept
{
    if (zone != nullptr)
        *static_cast<struct timezone *>(zone) = {};
    timespec now = {};
    const int status = clock_gettime(CLOCK_REALTIME, &now);
    *time = {now.tv_sec, static_cast<suseconds_t>(now.tv_nsec / 1000)};
    return status;
}

EXPORTED time_t time(time_t *result) noexcept
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME_COARSE, &now);
    if (result != nullptr)
        *result = now.tv_sec;
    return now.tv_sec;
}

EXPORTED int timerfd_create(int clock, int flags) noexcept
{
    const auto timer = static_cast<int>(syscall(SYS_timerfd_create, clock, flags));
    if (timer >= 0 && static_cast<size_t>(timer) < wakers.size())
        wakers[static_cast<size_t>(timer)] = tellsTime(clock);
    return timer;
}

EXPORTED int timerfd_settime(int timer, int flags, const itimerspec *value,
                             itimerspec *old) noexcept
{
    itimerspec shifted = *value;
    time_t &seconds = shifted.it_value.tv_sec;
    const bool isWaker = timer >= 0 && static_cast<size_t>(timer) < wakers.size()
        && wakers[static_cast<size_t>(timer)];
    // A time of 0 would stop the timer.
    if (isWaker && (flags & TFD_TIMER_ABSTIME) != 0 && seconds > 0) {
        int64_t time = 0;
        if (__builtin_sub_overflow(int64_t{seconds}, shift(), &time))
            time = std::numeric_limits<time_t>::max();
        seconds =
            static_cast<time_t>(std::clamp<int64_t>(time, 1, std::numeric_limits<time_t>::max()));
    }
    return static_cast<int>(syscall(SYS_timerfd_settime, timer, flags, &shifted, old));
}
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
