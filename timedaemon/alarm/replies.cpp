// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "replies.h"

#include <QDBusMessage>

bool isReply(const QDBusMessage &answer, const char *signature)
{
    return answer.type() == QDBusMessage::ReplyMessage
        && answer.signature() == QLatin1String(signature);
}

QString problemOf(const QDBusMessage &answer)
{
    if (answer.type() == QDBusMessage::ErrorMessage)
        return QStringLiteral("%1: %2").arg(answer.errorName(), answer.errorMessage());
    return QStringLiteral("The answer (%1) is not as expected.").arg(answer.signature());
}
