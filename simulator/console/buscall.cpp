// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "buscall.h"

#include "answers.h"

#include <QDBusPendingCall>

#include <chrono>

namespace {

constexpr std::chrono::milliseconds patience = std::chrono::seconds(5);

} // namespace

void callBus(const QDBusConnection &bus, const QDBusMessage &call, const QString &signature,
             QObject *context, const Finish &finish,
             const std::function<void(const QVariantList &values)> &answered)
{
    whenAnswered(bus.asyncCall(call, static_cast<int>(patience.count())), context,
                 [signature, finish, answered](const QDBusMessage &answer) {
                     if (answer.type() == QDBusMessage::ErrorMessage)
                         finish(Outcome::Failed, answer.errorMessage());
                     else if (answer.signature() != signature)
                         finish(Outcome::Failed,
                                QStringLiteral("the answer is of the form \"%1\", not \"%2\"")
                                    .arg(answer.signature(), signature));
                     else
                         answered(answer.arguments());
                 });
}
