// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "remindernotifications.h"

#include "whenanswered.h"

#include <notification.h>

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDebug>

Q_DECLARE_METATYPE(QVector<NotificationData>)

namespace {

const QLatin1String service("org.freedesktop.Notifications");
const QLatin1String path("/org/freedesktop/Notifications");
const QLatin1String category("x-nimbo-call-reminder");
const QLatin1String cookieHint("x-nimbo-alarm-cookie");

QDBusPendingCall callNotifications(const QString &method, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, service, method);
    message.setArguments(arguments);
    return QDBusConnection::sessionBus().asyncCall(message);
}

/// The call that opens the call history.
QVariantMap openCallHistory(const QString &actionName)
{
    return {
        {QStringLiteral("name"), actionName},
        {QStringLiteral("service"), QStringLiteral("com.nokia.telephony.callhistory")},
        {QStringLiteral("path"), QStringLiteral("/org/maemo/m")},
        {QStringLiteral("iface"), QStringLiteral("com.nokia.MApplicationIf")},
        {QStringLiteral("method"), QStringLiteral("launch")},
        {QStringLiteral("arguments"), QVariantList{QStringList(QStringLiteral("callHistory"))}}};
}

QVector<NotificationData> toNotifications(const QVariant &value)
{
    if (value.userType() != qMetaTypeId<QDBusArgument>())
        return value.value<QVector<NotificationData>>();
    // Reading it as another type would end the process.
    const auto argument = value.value<QDBusArgument>();
    return argument.currentSignature() == QLatin1String("a(susssasa{sv}i)")
        ? qdbus_cast<QVector<NotificationData>>(argument)
        : QVector<NotificationData>();
}

} // namespace

ReminderNotifications::ReminderNotifications(QObject *parent)
    : QObject(parent)
{
    qRegisterMetaType<NotificationData>("NotificationData");
    qDBusRegisterMetaType<NotificationData>();
    qDBusRegisterMetaType<QVector<NotificationData>>();
}

void ReminderNotifications::subscribe(QObject *receiver, const char *slot)
{
    QDBusConnection::sessionBus().connect(service, path, service,
                                          QStringLiteral("NotificationClosed"), receiver, slot);
}

uint ReminderNotifications::publish(const ReminderText &text, uint cookie, uint replaced)
{
    Notification notification;
    notification.setAppName(text.applicationName);
    notification.setCategory(category);
    notification.setSummary(text.title);
    notification.setBody(text.description);
    notification.setUrgency(Notification::Low);
    notification.setReplacesId(replaced);
    notification.setHintValue(cookieHint, cookie);
    notification.setRemoteActions(
        {openCallHistory(QStringLiteral("default")), openCallHistory(QStringLiteral("app"))});
    notification.publish();
    return notification.replacesId();
}

void ReminderNotifications::close(uint id)
{
    callNotifications(QStringLiteral("CloseNotification"), {id});
}

void ReminderNotifications::query(const Found &found)
{
    const QDBusPendingCall call =
        callNotifications(QStringLiteral("GetNotificationsByCategory"), {QString(category)});
    whenAnswered(call, this, [found](const QDBusMessage &answer) {
        if (answer.type() == QDBusMessage::ErrorMessage) {
            qWarning() << "Unable to query reminder notifications" << QDBusError(answer);
            return;
        }
        QVector<ReminderNotification> notifications;
        const auto all = toNotifications(answer.arguments().value(0));
        for (const NotificationData &data : all)
            notifications.append({data.id, data.hints.value(cookieHint).toUInt()});
        found(notifications);
    });
}
