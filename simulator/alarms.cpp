// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "alarms.h"

#include "alarm.h"
#include "buscall.h"
#include "transcript.h"

#include <QDBusArgument>
#include <QDateTime>

#include <utility>

namespace {

const QLatin1String service("com.nimbo.timed");
const QLatin1String path("/com/nimbo/timed");
const QLatin1String control("com.nimbo.simulator.TimeDaemon");

QString describe(uint cookie, const Alarm &alarm)
{
    return QStringLiteral("%1, in %2 s, %3, %4")
        .arg(cookie)
        .arg(alarm.ticker - QDateTime::currentSecsSinceEpoch())
        .arg(alarm.attributes.value(QStringLiteral("TITLE")),
             alarm.attributes.value(QStringLiteral("phoneNumber")));
}

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

} // namespace

Alarms::Alarms(QDBusConnection systemBus, Transcript &transcript, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(systemBus))
    , m_transcript(transcript)
    , m_list(m_bus,
             {QDBusMessage::createMethodCall(service, path, control, QStringLiteral("List")),
              QStringLiteral("a{u(uxa{ss})}"), itemsOf, QStringLiteral("cookie")})
{
    registerAlarmTypes();
    m_bus.connect(service, path, control, QStringLiteral("Added"), this, SLOT(added(uint)));
    m_bus.connect(service, path, control, QStringLiteral("Cancelled"), this, SLOT(cancelled(uint)));
    m_bus.connect(service, path, control, QStringLiteral("Fired"), this, SLOT(fired(uint)));
}

QVector<Command> Alarms::commands()
{
    return {
        {QStringLiteral("alarms"),
         {},
         QStringLiteral("list the alarms: cookie, time left, name, number"),
         [this](const QStringList &, const Finish &finish) { print(finish); }},
        {QStringLiteral("fire"),
         {QStringLiteral("COOKIE")},
         QStringLiteral("fire an alarm ahead of its time"),
         [this](const QStringList &arguments, const Finish &finish) {
             fire(arguments.constFirst(), finish);
         }},
        {QStringLiteral("cancel"),
         {QStringLiteral("COOKIE")},
         QStringLiteral("cancel an alarm"),
         [this](const QStringList &arguments, const Finish &finish) {
             cancel(arguments.constFirst(), finish);
         }},
    };
}

void Alarms::added(uint cookie)
{
    record(QStringLiteral("alarm %1 is set").arg(cookie));
    m_list.refresh();
}

void Alarms::cancelled(uint cookie)
{
    record(QStringLiteral("alarm %1 is cancelled").arg(cookie));
    m_list.refresh();
}

void Alarms::fired(uint cookie)
{
    record(QStringLiteral("alarm %1 has fired").arg(cookie));
    m_list.refresh();
}

void Alarms::print(const Finish &finish)
{
    const QDBusMessage call =
        QDBusMessage::createMethodCall(service, path, control, QStringLiteral("List"));
    callBus(m_bus, call, QStringLiteral("a{u(uxa{ss})}"), this, finish,
            [this, finish](const QVariantList &values) {
                const auto alarms = qdbus_cast<AlarmsByCookie>(values.value(0));
                for (auto it = alarms.cbegin(); it != alarms.cend(); ++it)
                    record(describe(it.key(), *it));
                finish(Outcome::Done, alarms.isEmpty() ? QStringLiteral("no alarms") : QString());
            });
}

void Alarms::fire(const QString &cookie, const Finish &finish)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, path, control, QStringLiteral("Fire"));
    call.setArguments({cookie.toUInt()});
    callBus(m_bus, call, QString(), this, finish,
            [finish](const QVariantList &) { finish(Outcome::Done, QStringLiteral("done")); });
}

void Alarms::cancel(const QString &cookie, const Finish &finish)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, path, service, QStringLiteral("cancel"));
    call.setArguments({cookie.toUInt()});
    callBus(m_bus, call, QStringLiteral("b"), this, finish,
            [cookie, finish](const QVariantList &values) {
                if (values.value(0).toBool())
                    finish(Outcome::Done, QStringLiteral("done"));
                else
                    finish(Outcome::Failed, QStringLiteral("there is no alarm %1").arg(cookie));
            });
}

void Alarms::record(const QString &line)
{
    m_transcript.record(QStringLiteral("alarms"), line);
}
