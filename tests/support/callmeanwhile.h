// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDBusConnection>
#include <QDBusMessage>

/// Returns the answer to \a call, or an error after \a timeout milliseconds. Processes events
/// meanwhile.
///
/// Do not use QDBusConnection::call() with QDBus::BlockWithGui instead: in Qt 5 it misses an answer
/// that comes before it begins to listen, and waits for ever.
QDBusMessage callMeanwhile(const QDBusConnection &bus, const QDBusMessage &call, int timeout);
