// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "busvalues.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>

namespace {

bool changesDirection(QChar c)
{
    const ushort code = c.unicode();
    return code == 0x061C || code == 0x200E || code == 0x200F || (code >= 0x202A && code <= 0x202E)
        || (code >= 0x2066 && code <= 0x2069);
}

} // namespace

QVector<BusObject> busObjects(const QDBusMessage &message)
{
    QVector<BusObject> objects;
    if (message.arguments().isEmpty())
        return objects;
    const auto list = message.arguments().constFirst().value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd() && objects.size() < mostBusObjects) {
        QDBusObjectPath path;
        QVariantMap properties;
        list.beginStructure();
        list >> path >> properties;
        list.endStructure();
        objects.append({path.path(), properties});
    }
    list.endArray();
    return objects;
}

QVariantMap busProperties(const QDBusMessage &message)
{
    return qdbus_cast<QVariantMap>(message.arguments().value(0));
}

BusObject busObject(const QDBusMessage &message)
{
    return {busPath(message), qdbus_cast<QVariantMap>(message.arguments().at(1))};
}

QString busPath(const QDBusMessage &message)
{
    return message.arguments().constFirst().value<QDBusObjectPath>().path();
}

BusProperty busProperty(const QDBusMessage &message)
{
    const QVariantList arguments = message.arguments();
    return {arguments.at(0).toString(), arguments.at(1).value<QDBusVariant>().variant()};
}

QString textIn(const QVariant &value)
{
    return value.userType() == QMetaType::QString ? safeText(value.toString()) : QString();
}

QStringList textsIn(const QVariant &value)
{
    return value.userType() == QMetaType::QStringList ? value.toStringList().mid(0, mostBusObjects)
                                                      : QStringList();
}

bool isTrue(const QVariant &value)
{
    return value.userType() == QMetaType::Bool && value.toBool();
}

QString safeText(const QString &text, int limit)
{
    QString safe;
    for (const QChar c : text) {
        if (safe.size() == limit)
            break;
        if (c.category() == QChar::Other_Control || c.category() == QChar::Separator_Line
            || c.category() == QChar::Separator_Paragraph)
            safe.append(QLatin1Char(' '));
        else if (!changesDirection(c))
            safe.append(c);
    }
    if (!safe.isEmpty() && safe.at(safe.size() - 1).isHighSurrogate())
        safe.chop(1);
    return safe.trimmed();
}

QString safeLines(const QString &text)
{
    constexpr int most = 2000;
    QStringList lines = text.left(most).split(QLatin1Char('\n'));
    for (QString &line : lines)
        line = safeText(line, most);
    return lines.join(QLatin1Char('\n')).trimmed();
}
