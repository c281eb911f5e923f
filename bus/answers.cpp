// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "answers.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>

namespace {

const QLatin1String busService("org.freedesktop.DBus");

bool isOwner(const QDBusMessage &ownerAnswer, const QString &sender)
{
    return isFromBus(ownerAnswer) && ownerAnswer.type() == QDBusMessage::ReplyMessage
        && ownerAnswer.arguments().value(0) == sender;
}

} // namespace

QDBusMessage busQuestion(const QString &method, const QString &name)
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        busService, QStringLiteral("/org/freedesktop/DBus"), busService, method);
    question.setArguments({name});
    return question;
}

bool isFromBus(const QDBusMessage &message)
{
    return message.service() == busService;
}

void whenAnswered(const QDBusPendingCall &call, QObject *context, const AnswerHandler &handler)
{
    // Without a bus there is no call to watch, only its error.
    const bool failedAtOnce = call.isFinished() && call.isError();
    auto *watcher = new QDBusPendingCallWatcher(
        failedAtOnce ? QDBusPendingCall::fromError(call.error()) : call, context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context, [watcher, handler] {
        watcher->deleteLater();
        handler(watcher->reply());
    });
}

void whenOwnerAnswered(const QDBusConnection &bus, const QString &service,
                       const QDBusPendingCall &call, QObject *context, const AnswerHandler &handler)
{
    whenAnswered(call, context, [=](const QDBusMessage &answer) {
        // An error that this process has made, such as a time-out, has no sender.
        if (answer.service().isEmpty() || isFromBus(answer)) {
            handler(answer);
            return;
        }
        const QDBusPendingCall owner =
            bus.asyncCall(busQuestion(QStringLiteral("GetNameOwner"), service));
        whenAnswered(owner, context, [=](const QDBusMessage &ownerAnswer) {
            handler(
                isOwner(ownerAnswer, answer.service())
                    ? answer
                    : QDBusMessage::createError(QDBusError::AccessDenied,
                                                QStringLiteral("%1 has answered in the place of %2")
                                                    .arg(answer.service(), service)));
        });
    });
}
