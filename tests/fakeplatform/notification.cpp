// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "notification.h"

#include "fakeplatform.h"

#include <QDBusArgument>
#include <QJsonDocument>

#include <utility>

namespace {

bool hasAnotherForm = false;

void record(const char *setter, const QString &value)
{
    FakePlatform::instance().record(QStringLiteral("%1(%2)").arg(QLatin1String(setter), value));
}

} // namespace

void useAnotherNotificationForm()
{
    hasAnotherForm = true;
}

QDBusArgument &operator<<(QDBusArgument &argument, const NotificationData &data)
{
    argument.beginStructure();
    if (hasAnotherForm)
        argument << data.id << data.hints;
    else
        argument << QString() << data.id << QString() << QString() << QString() << QStringList()
                 << data.hints << -1;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, NotificationData &data)
{
    QString text;
    QStringList actions;
    int timeout = 0;
    argument.beginStructure();
    if (hasAnotherForm)
        argument >> data.id >> data.hints;
    else
        argument >> text >> data.id >> text >> text >> text >> actions >> data.hints >> timeout;
    argument.endStructure();
    return argument;
}

Notification::Notification(QObject *parent)
    : QObject(parent)
{
    record("Notification", parent ? QStringLiteral("parent") : QString());
}

Notification::~Notification()
{
    record("~Notification", {});
}

void Notification::setAppName(const QString &name)
{
    record("setAppName", name);
}

void Notification::setCategory(const QString &category)
{
    record("setCategory", category);
}

void Notification::setSummary(const QString &summary)
{
    record("setSummary", summary);
}

void Notification::setBody(const QString &body)
{
    record("setBody", body);
}

void Notification::setUrgency(Urgency urgency)
{
    record("setUrgency", QString::number(urgency));
}

void Notification::setReplacesId(uint id)
{
    record("setReplacesId", QString::number(id));
    m_id = id;
}

void Notification::setHintValue(const QString &hint, const QVariant &value)
{
    record(
        "setHintValue",
        QStringLiteral("%1, %2 %3").arg(hint, QLatin1String(value.typeName()), value.toString()));
}

void Notification::setRemoteActions(const QVariantList &actions)
{
    const QByteArray json = QJsonDocument::fromVariant(actions).toJson(QJsonDocument::Compact);
    record("setRemoteActions", QString::fromUtf8(json));
}

void Notification::publish()
{
    record("publish", {});
    FakePlatform &platform = FakePlatform::instance();
    if (const auto deed = std::exchange(platform.whilePublishing, {}))
        deed();
    if (platform.nextNotificationId == 0)
        return;
    if (m_id == 0)
        m_id = platform.nextNotificationId++;
}
