// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

/// Waits until \a condition holds, for at most so many \a milliseconds, and returns whether it
/// does. QTest::qWaitFor() sleeps between two looks. This looks after each event as well, which
/// makes a difference where a test waits for a hundred answers, one after the other.
template <typename Condition>
bool waitFor(const Condition &condition, int milliseconds)
{
    QTimer look; // for a condition that no event announces
    look.start(10);
    const QDeadlineTimer deadline(milliseconds);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}
