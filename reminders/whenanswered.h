// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>
#include <QObject>

/// Calls \a handler with the answer of \a call, a reply or an error, from the event loop; never
/// once \a context has gone. Without a bus the answer is an error too.
template <typename Handler>
void whenAnswered(const QDBusPendingCall &call, QObject *context, Handler handler)
{
    // Without a bus there is no call to watch.
    const bool failedAtOnce = call.isFinished() && call.isError();
    auto *watcher = new QDBusPendingCallWatcher(
        failedAtOnce ? QDBusPendingCall::fromError(call.error()) : call, context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context, [watcher, handler] {
        watcher->deleteLater();
        handler(watcher->reply());
    });
}
