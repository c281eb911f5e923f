// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "notificationcommands.h"

#include "notificationlist.h"

#include <QDBusArgument>
#include <QDBusMetaType>

namespace {

const QLatin1String service("org.freedesktop.Notifications");
const QLatin1String path("/org/freedesktop/Notifications");
const QLatin1String control("com.nimbo.simulator.NotificationService");

/// \a actions has a name and a label in turn for each action.
QVariantList furtherActions(const QStringList &actions)
{
    QVariantList further;
    for (int i = 0; i < actions.size(); i += 2) {
        const QString &name = actions.at(i);
        const QString label = actions.value(i + 1);
        if (name != QLatin1String("default"))
            further.append(QVariantMap{{QStringLiteral("name"), name},
                                       {QStringLiteral("label"), label.isEmpty() ? name : label}});
    }
    return further;
}

QVariantList itemsOf(const QVariantList &values)
{
    QVariantList items;
    const auto all = qdbus_cast<NotificationList>(values.value(0));
    for (const NotificationData &data : all)
        items.append(
            QVariantMap{{QStringLiteral("id"), data.id},
                        {QStringLiteral("application"), data.appName},
                        {QStringLiteral("summary"), data.summary},
                        {QStringLiteral("body"), data.body},
                        {QStringLiteral("alarm"),
                         data.hints.value(QStringLiteral("x-nimbo-alarm-cookie")).toUInt()},
                        {QStringLiteral("actions"), furtherActions(data.actions)}});
    return items;
}

QString describe(const QVariantMap &notification)
{
    const auto text = [&notification](const QString &key) {
        return notification.value(key).toString().simplified();
    };
    QStringList parts{notification.value(QStringLiteral("id")).toString(),
                      notification.value(QStringLiteral("application")).toString(),
                      text(QStringLiteral("summary")), text(QStringLiteral("body"))};
    if (const uint cookie = notification.value(QStringLiteral("alarm")).toUInt())
        parts.append(QStringLiteral("alarm %1").arg(cookie));
    return parts.join(QLatin1String(", "));
}

/// The values are those of the Desktop Notifications Specification 1.2.
QString reason(uint value)
{
    switch (value) {
    case 1:
        return QStringLiteral("expired");
    case 2:
        return QStringLiteral("dismissed");
    case 3:
        return QStringLiteral("withdrawn");
    default:
        return QStringLiteral("reason %1").arg(value);
    }
}

} // namespace

NotificationCommands::NotificationCommands(const QDBusConnection &sessionBus,
                                           Transcript &transcript, QObject *parent)
    : ServiceTalk(sessionBus, {service, path, control, QStringLiteral("notifications")}, transcript,
                  parent)
    , m_list(
          addList({QDBusMessage::createMethodCall(service, path, control, QStringLiteral("List")),
                   QStringLiteral("a(susssasa{sv}i)"), itemsOf, QStringLiteral("id"), describe}))
{
    qDBusRegisterMetaType<NotificationData>();
    tell(control, QStringLiteral("Shown"), QStringLiteral("uss"), [](const QVariantList &values) {
        return QStringLiteral("%1 shown: %2: %3")
            .arg(values.value(0).toString(), values.value(1).toString().simplified(),
                 values.value(2).toString().simplified());
    });
    tell(service, QStringLiteral("ActionInvoked"), QStringLiteral("us"),
         [](const QVariantList &values) {
             return QStringLiteral("%1 chosen: %2")
                 .arg(values.value(0).toString(), values.value(1).toString());
         });
    tell(service, QStringLiteral("NotificationClosed"), QStringLiteral("uu"),
         [](const QVariantList &values) {
             return QStringLiteral("%1 closed (%2)")
                 .arg(values.value(0).toString(), reason(values.value(1).toUInt()));
         });
}

QVector<Command> NotificationCommands::commands()
{
    return {
        {QStringLiteral("notifications"),
         {},
         QStringLiteral("list the notifications: id, application, summary, body"),
         [this](const QStringList &, const Finish &finish) {
             print(finish, QStringLiteral("no notifications"));
         }},
        {QStringLiteral("click"),
         {QStringLiteral("ID"), QStringLiteral("[ACTION]")},
         QStringLiteral("choose an action of a notification, or its default one"),
         [this](const QStringList &arguments, const Finish &finish) {
             if (const auto id = numberIn(arguments.at(0), finish))
                 act(QStringLiteral("Click"), {*id, arguments.value(1, QStringLiteral("default"))},
                     finish);
         }},
        {QStringLiteral("dismiss"),
         {QStringLiteral("ID")},
         QStringLiteral("close a notification"),
         [this](const QStringList &arguments, const Finish &finish) {
             if (const auto id = numberIn(arguments.at(0), finish))
                 act(QStringLiteral("Dismiss"), {*id}, finish);
         }},
    };
}
