// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "wallclock.h"

/// The clock of the machine. It wakes a machine that sleeps if this process has the capability for
/// that (CAP_WAKE_ALARM, capabilities(7)).
class SystemClock : public WallClock
{
    Q_OBJECT

public:
    explicit SystemClock(QObject *parent = nullptr);
    ~SystemClock() override;

    qint64 now() const override;
    void wakeAt(qint64 seconds) override;
    void letSleep() override;

private:
    Q_DISABLE_COPY(SystemClock)

    void read();

    const int m_descriptor; ///< A timerfd, see timerfd_create(2).
};
