// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QtGlobal>

/// Counts the QDBusPendingCallWatchers that this thread makes while the object lives, by the hooks
/// that Qt has for debugging tools. One at a time.
class WatcherCount
{
public:
    WatcherCount();
    ~WatcherCount();

    /// Those that are still there.
    int value() const;

private:
    Q_DISABLE_COPY(WatcherCount)
};
