// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QtGlobal>

/// Counts the QDBusPendingCallWatchers that this thread creates while the object lives, with the
/// hooks that Qt has for debugging tools. There may be only one object at a time.
class WatcherCount
{
public:
    WatcherCount();
    ~WatcherCount();

    /// Returns how many of them still exist.
    int value() const;

private:
    Q_DISABLE_COPY(WatcherCount)
};
