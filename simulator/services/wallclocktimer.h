// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QObject>

/// A timer for a time of the wall clock, which follows changes of the clock.
class WallClockTimer : public QObject
{
    Q_OBJECT

public:
    explicit WallClockTimer(QObject *parent = nullptr);
    ~WallClockTimer() override;

    /// Sets the time in \a seconds since 1970-01-01 00:00 UTC. A time in the past means now.
    void start(qint64 seconds);
    void stop();

Q_SIGNALS:
    /// The time has come, or the clock was set and the time may have come. In the second case,
    /// start the timer again.
    void wentOff();

private:
    Q_DISABLE_COPY(WallClockTimer)

    void read();

    const int m_descriptor;
};
