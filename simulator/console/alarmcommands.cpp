// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "alarmcommands.h"

#include "alarm.h"

#include <QDBusArgument>
#include <QDateTime>

namespace {

const QLatin1String service("com.nimbo.timed");
const QLatin1String path("/com/nimbo/timed");
const QLatin1String control("com.nimbo.simulator.TimeDaemon");

QVariantList itemsOf(const QVariantList &values)
{
    QVariantList items;
    const auto alarms = qdbus_cast<AlarmsByCookie>(values.value(0));
    for (auto it = alarms.cbegin(); it != alarms.cend(); ++it)
        items.append(QVariantMap{
            {QStringLiteral("cookie"), it.key()},
            {QStringLiteral("title"), it->attributes.value(QStringLiteral("TITLE"))},
            {QStringLiteral("number"), it->attributes.value(QStringLiteral("phoneNumber"))},
            {QStringLiteral("due"), it->ticker * 1000}});
    return items;
}

QString describe(const QVariantMap &alarm)
{
    const qint64 due = alarm.value(QStringLiteral("due")).toLongLong() / 1000;
    return QStringLiteral("%1, in %2 s, %3, %4")
        .arg(alarm.value(QStringLiteral("cookie")).toUInt())
        .arg(due - QDateTime::currentSecsSinceEpoch())
        .arg(alarm.value(QStringLiteral("title")).toString(),
             alarm.value(QStringLiteral("number")).toString());
}

} // namespace

AlarmCommands::AlarmCommands(const QDBusConnection &systemBus, Transcript &transcript,
                             QObject *parent)
    : ServiceTalk(systemBus, {service, path, control, QStringLiteral("alarms")}, transcript, parent)
    , m_list(
          addList({QDBusMessage::createMethodCall(service, path, control, QStringLiteral("List")),
                   QStringLiteral("a{u(uxa{ss})}"), itemsOf, QStringLiteral("cookie"), describe}))
{
    registerAlarmTypes();
    const auto tellOf = [this](const QString &member, const QString &line) {
        tell(control, member, QStringLiteral("u"),
             [line](const QVariantList &values) { return line.arg(values.value(0).toUInt()); });
    };
    tellOf(QStringLiteral("Added"), QStringLiteral("alarm %1 is set"));
    tellOf(QStringLiteral("Cancelled"), QStringLiteral("alarm %1 is cancelled"));
    tellOf(QStringLiteral("Fired"), QStringLiteral("alarm %1 has fired"));
}

QVector<Command> AlarmCommands::commands()
{
    return {
        {QStringLiteral("alarms"),
         {},
         QStringLiteral("list the alarms: cookie, time left, name, number"),
         [this](const QStringList &, const Finish &finish) {
             print(finish, QStringLiteral("no alarms"));
         }},
        {QStringLiteral("fire"),
         {QStringLiteral("COOKIE")},
         QStringLiteral("fire an alarm ahead of its time"),
         [this](const QStringList &arguments, const Finish &finish) {
             if (const auto cookie = numberIn(arguments.constFirst(), finish))
                 act(QStringLiteral("Fire"), {*cookie}, finish);
         }},
        {QStringLiteral("cancel"),
         {QStringLiteral("COOKIE")},
         QStringLiteral("cancel an alarm"),
         [this](const QStringList &arguments, const Finish &finish) {
             if (const auto cookie = numberIn(arguments.constFirst(), finish))
                 cancel(*cookie, finish);
         }},
    };
}

void AlarmCommands::cancel(uint cookie, const Finish &finish)
{
    ask(service, QStringLiteral("cancel"), {cookie}, QStringLiteral("b"), finish,
        [cookie, finish](const QVariantList &values) {
            if (values.value(0).toBool())
                finish(Outcome::Done, QStringLiteral("done"));
            else
                finish(Outcome::Failed, QStringLiteral("there is no alarm %1").arg(cookie));
        });
}
