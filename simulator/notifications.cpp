// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "notifications.h"

#include "buscall.h"
#include "notificationlist.h"
#include "transcript.h"

#include <QDBusArgument>
#include <QDBusMetaType>

#include <utility>

namespace {

const QLatin1String service("org.freedesktop.Notifications");
const QLatin1String path("/org/freedesktop/Notifications");
const QLatin1String control("com.nimbo.simulator.NotificationService");

QString describe(const NotificationData &data)
{
    const uint cookie = data.hints.value(QStringLiteral("x-nimbo-alarm-cookie")).toUInt();
    QStringList parts{QString::number(data.id), data.appName, data.summary.simplified(),
                      data.body.simplified()};
    if (cookie != 0)
        parts.append(QStringLiteral("alarm %1").arg(cookie));
    return parts.join(QLatin1String(", "));
}

QString describe(uint reason)
{
    switch (reason) {
    case 1:
        return QStringLiteral("expired");
    case 2:
        return QStringLiteral("dismissed");
    case 3:
        return QStringLiteral("withdrawn");
    default:
        return QStringLiteral("reason %1").arg(reason);
    }
}

/// Names and labels stand in turn.
QStringList furtherActions(const QStringList &actions)
{
    QStringList names;
    for (int i = 0; i < actions.size(); i += 2) {
        if (actions.at(i) != QLatin1String("default"))
            names.append(actions.at(i));
    }
    return names;
}

QVariantList itemsOf(const QVariantList &values)
{
    QVariantList items;
    const auto all = qdbus_cast<NotificationList>(values.value(0));
    for (const NotificationData &data : all)
        items.append(QVariantMap{{QStringLiteral("id"), data.id},
                                 {QStringLiteral("application"), data.appName},
                                 {QStringLiteral("summary"), data.summary},
                                 {QStringLiteral("body"), data.body},
                                 {QStringLiteral("actions"), furtherActions(data.actions)}});
    return items;
}

} // namespace

Notifications::Notifications(QDBusConnection sessionBus, Transcript &transcript, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(sessionBus))
    , m_transcript(transcript)
    , m_list(m_bus,
             {QDBusMessage::createMethodCall(service, path, control, QStringLiteral("List")),
              QStringLiteral("a(susssasa{sv}i)"), itemsOf, QStringLiteral("id")})
{
    qDBusRegisterMetaType<NotificationData>();
    m_bus.connect(service, path, control, QStringLiteral("Shown"), this,
                  SLOT(shown(uint, QString, QString)));
    m_bus.connect(service, path, service, QStringLiteral("ActionInvoked"), this,
                  SLOT(chosen(uint, QString)));
    m_bus.connect(service, path, service, QStringLiteral("NotificationClosed"), this,
                  SLOT(closed(uint, uint)));
}

QVector<Command> Notifications::commands()
{
    return {
        {QStringLiteral("notifications"),
         {},
         QStringLiteral("list the notifications: id, application, summary, body"),
         [this](const QStringList &, const Finish &finish) { print(finish); }},
        {QStringLiteral("click"),
         {QStringLiteral("ID"), QStringLiteral("[ACTION]")},
         QStringLiteral("choose an action of a notification, or its default one"),
         [this](const QStringList &arguments, const Finish &finish) {
             act(QStringLiteral("Click"),
                 {arguments.at(0).toUInt(), arguments.value(1, QStringLiteral("default"))}, finish);
         }},
        {QStringLiteral("dismiss"),
         {QStringLiteral("ID")},
         QStringLiteral("close a notification"),
         [this](const QStringList &arguments, const Finish &finish) {
             act(QStringLiteral("Dismiss"), {arguments.at(0).toUInt()}, finish);
         }},
    };
}

void Notifications::shown(uint id, const QString &summary, const QString &body)
{
    record(QStringLiteral("%1 shown: %2: %3")
               .arg(QString::number(id), summary.simplified(), body.simplified()));
    m_list.refresh();
}

void Notifications::chosen(uint id, const QString &action)
{
    record(QStringLiteral("%1 chosen: %2").arg(QString::number(id), action));
}

void Notifications::closed(uint id, uint reason)
{
    record(QStringLiteral("%1 closed (%2)").arg(QString::number(id), describe(reason)));
    m_list.refresh();
}

void Notifications::print(const Finish &finish)
{
    const QDBusMessage call =
        QDBusMessage::createMethodCall(service, path, control, QStringLiteral("List"));
    callBus(m_bus, call, QStringLiteral("a(susssasa{sv}i)"), this, finish,
            [this, finish](const QVariantList &values) {
                const auto all = qdbus_cast<NotificationList>(values.value(0));
                for (const NotificationData &data : all)
                    record(describe(data));
                finish(Outcome::Done,
                       all.isEmpty() ? QStringLiteral("no notifications") : QString());
            });
}

void Notifications::act(const QString &method, const QVariantList &arguments, const Finish &finish)
{
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, control, method);
    call.setArguments(arguments);
    callBus(m_bus, call, QString(), this, finish,
            [finish](const QVariantList &) { finish(Outcome::Done, QStringLiteral("done")); });
}

void Notifications::record(const QString &line)
{
    m_transcript.record(QStringLiteral("notifications"), line);
}
