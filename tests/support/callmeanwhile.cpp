// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "callmeanwhile.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QEventLoop>

QDBusMessage callMeanwhile(const QDBusConnection &bus, const QDBusMessage &call, int timeout)
{
    const QDBusPendingCallWatcher watcher(bus.asyncCall(call, timeout));
    QEventLoop loop;
    QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
    if (!watcher.isFinished())
        loop.exec();
    return watcher.reply();
}
