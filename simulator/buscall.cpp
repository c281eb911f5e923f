// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "buscall.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds patience = std::chrono::seconds(5);

} // namespace

void callBus(const QDBusConnection &bus, const QDBusMessage &call, const QString &signature,
             QObject *context, const Finish &finish,
             const std::function<void(const QVariantList &values)> &answered)
{
    auto *watcher = new QDBusPendingCallWatcher(
        bus.asyncCall(call, static_cast<int>(patience.count())), context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                     [watcher, signature, finish, answered] {
                         watcher->deleteLater();
                         const QString given = watcher->reply().signature();
                         if (watcher->isError())
                             finish(Outcome::Failed, watcher->error().message());
                         else if (given != signature)
                             finish(Outcome::Failed,
                                    QStringLiteral("the answer is of the form \"%1\", not \"%2\"")
                                        .arg(given, signature));
                         else
                             answered(watcher->reply().arguments());
                     });
}
