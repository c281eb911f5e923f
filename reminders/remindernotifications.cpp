// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "remindernotifications.h"

#include "answers.h"
#include "receivelimits.h"

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

QDBusMessage callOf(const QString &method, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, service, method);
    message.setArguments(arguments);
    return message;
}

QDBusPendingCall callNotifications(const QString &method, const QVariantList &arguments)
{
    return QDBusConnection::sessionBus().asyncCall(callOf(method, arguments));
}

/// Returns an action that opens the call history.
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

using Notifications = QVector<NotificationData>;

Notifications notificationsIn(const QDBusMessage &answer)
{
    const QVariant value = answer.arguments().value(0);
    if (value.userType() == qMetaTypeId<Notifications>())
        return value.value<Notifications>();
    // The client library decides the form. Reading a value as another form would end the process.
    const QLatin1String form(
        QDBusMetaType::typeToSignature(qDBusRegisterMetaType<Notifications>()));
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() == form)
        return qdbus_cast<Notifications>(argument);
    qWarning() << "Unable to read reminder notifications of the form" << answer.signature()
               << "instead of" << form;
    return {};
}

} // namespace

ReminderNotifications::ReminderNotifications(QObject *parent)
    : QObject(parent)
{
    removeReceiveLimits(QDBusConnection::sessionBus());
    qRegisterMetaType<NotificationData>("NotificationData");
    qDBusRegisterMetaType<NotificationData>();
}

void ReminderNotifications::subscribe(QObject *receiver, const char *slot)
{
    // Subscribe with the signature: reading an argument of another type would end the process.
    QDBusConnection::sessionBus().connect(service, path, service,
                                          QStringLiteral("NotificationClosed"),
                                          QStringLiteral("uu"), receiver, slot);
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
    // Ask for no reply: nothing uses it, and the bus limits how many calls may wait for one.
    QDBusConnection::sessionBus().send(callOf(QStringLiteral("CloseNotification"), {id}));
}

void ReminderNotifications::closeLeftover(uint id)
{
    m_leftovers.add(
        this, [id] { return callNotifications(QStringLiteral("CloseNotification"), {id}); },
        [](const QDBusMessage &) {});
}

void ReminderNotifications::query(const Found &found)
{
    const QDBusPendingCall call =
        callNotifications(QStringLiteral("GetNotificationsByCategory"), {QString(category)});
    const QDBusConnection bus = QDBusConnection::sessionBus();
    whenOwnerAnswered(bus, service, call, this, [found](const QDBusMessage &answer) {
        if (answer.type() == QDBusMessage::ErrorMessage) {
            qWarning() << "Unable to query reminder notifications" << QDBusError(answer);
            return;
        }
        QVector<ReminderNotification> notifications;
        const auto all = notificationsIn(answer);
        for (const NotificationData &data : all)
            notifications.append({data.id, data.hints.value(cookieHint).toUInt()});
        found(notifications);
    });
}
