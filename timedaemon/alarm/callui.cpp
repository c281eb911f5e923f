// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "callui.h"

#include "answers.h"
#include "replies.h"

#include <QDBusMessage>
#include <QDBusPendingCall>

#include <utility>

namespace {

const QLatin1String service("com.nimbo.parley.ui");

} // namespace

CallUi::CallUi(QDBusConnection sessionBus)
    : m_bus(std::move(sessionBus))
{
}

void CallUi::dial(const QString &number, QObject *context,
                  const std::function<void(bool succeeded)> &handler) const
{
    QDBusMessage call = QDBusMessage::createMethodCall(service, QStringLiteral("/"), service,
                                                       QStringLiteral("dial"));
    call.setArguments({number});
    whenOwnerAnswered(
        m_bus, service, m_bus.asyncCall(call), context, [handler](const QDBusMessage &answer) {
            const bool succeeded = isReply(answer, "b");
            if (!succeeded)
                qWarning("The call UI cannot dial: %s", qUtf8Printable(problemOf(answer)));
            handler(succeeded);
        });
}
