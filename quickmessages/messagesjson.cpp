// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "messagesjson.h"

#include <QJsonArray>
#include <QJsonDocument>

QStringList messagesFromJson(const QByteArray &json)
{
    QStringList messages;
    const QJsonArray values = QJsonDocument::fromJson(json).array();
    for (const QJsonValue &value : values) {
        const QString message = value.toString();
        if (!message.trimmed().isEmpty())
            messages.append(message);
    }
    return messages;
}

QByteArray messagesToJson(const QStringList &messages)
{
    QJsonArray values;
    for (const QString &message : messages) {
        const QString trimmed = message.trimmed();
        if (!trimmed.isEmpty())
            values.append(trimmed);
    }
    return QJsonDocument(values).toJson(QJsonDocument::Indented);
}
