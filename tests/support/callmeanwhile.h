// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDBusConnection>
#include <QDBusMessage>

/// The answer to \a call, or an error after \a timeout milliseconds. Events are served meanwhile.
///
/// Not QDBusConnection::call() with QDBus::BlockWithGui: in Qt 5 that one misses an answer that
/// comes before it has begun to listen, and waits for ever.
QDBusMessage callMeanwhile(const QDBusConnection &bus, const QDBusMessage &call, int timeout);
