// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QObject>

/// The wall clock, and a way to be woken by it. It may be set forwards and backwards at any time.
class WallClock : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Returns the time in seconds since 1970-01-01 00:00 UTC.
    virtual qint64 now() const = 0;

    /// Asks for woke() once the clock shows \a seconds since 1970-01-01 00:00 UTC or more. Takes
    /// the place of an earlier request.
    virtual void wakeAt(qint64 seconds) = 0;

    /// Withdraws the request.
    virtual void letSleep() = 0;

Q_SIGNALS:
    /// The time has come, or the clock was set and the time may have come. It is emitted from the
    /// event loop. In the second case the request no longer stands: make it again.
    void woke();
};
