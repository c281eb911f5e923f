// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QObject>

/// Goes off at a time of the wall clock, also where the clock is set before that.
class WallClockTimer : public QObject
{
    Q_OBJECT

public:
    explicit WallClockTimer(QObject *parent = nullptr);
    ~WallClockTimer() override;

    /// To go off at \a seconds since 1970-01-01 00:00 UTC, instead of any time before. A time in
    /// the past is now.
    void start(qint64 seconds);
    void stop();

Q_SIGNALS:
    /// The time has come, or the clock was set and the time may have come. The timer may need to be
    /// started again.
    void wentOff();

private:
    Q_DISABLE_COPY(WallClockTimer)

    void read();

    const int m_descriptor;
};
