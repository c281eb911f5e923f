// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "uiundertest.h"

#include <QDateTime>
#include <QString>

/// The clock of one process, which the test sets before the process starts and while it runs. It
/// goes on from there.
class SettableClock
{
public:
    /// Gives \a ui, which is started later, this clock.
    explicit SettableClock(UiUnderTest &ui);

    /// Returns whether the clock was set.
    bool set(const QDateTime &time) const;

private:
    QString m_fileName;
};
