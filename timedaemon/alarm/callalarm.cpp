// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "callalarm.h"

#include <QDateTime>
#include <QLocale>

#include <utility>

namespace {

constexpr int lateAfter = 60;
constexpr int snoozeTime = 600;

} // namespace

QString CallAlarm::callAction()
{
    return QStringLiteral("call");
}

QString CallAlarm::snoozeAction()
{
    return QStringLiteral("snooze");
}

QString CallAlarm::defaultAction()
{
    return QStringLiteral("default");
}

CallAlarm::CallAlarm(Alarm alarm)
    : m_alarm(std::move(alarm))
{
}

QString CallAlarm::number() const
{
    return m_alarm.attributes.value(QStringLiteral("phoneNumber")).trimmed();
}

QString CallAlarm::name() const
{
    return m_alarm.attributes.value(QStringLiteral("TITLE")).trimmed();
}

CallAlarm::Notification CallAlarm::notification(const QDateTime &now) const
{
    //: The title of a notification that it is time to call somebody without a name and a number.
    //% "Reminder"
    QStringList titles{name(), number(), qtTrId("parley-he-reminder")};
    titles.removeAll(QString());
    Notification notification;
    notification.summary = titles.constFirst();
    QStringList lines{number(), dueTime(now)};
    lines.removeAll(QString());
    lines.removeAll(notification.summary); // The screens may name a contact after the number.
    notification.body = lines.join(QLatin1Char('\n'));

    if (!number().isEmpty()) {
        //: A button of a notification: calls the person.
        //% "Call"
        notification.actions << callAction() << qtTrId("parley-bt-call");
    }
    //: A button of a notification: shows it again in 10 minutes.
    //% "In 10 minutes"
    notification.actions << snoozeAction() << qtTrId("parley-bt-in_10_minutes");
    return notification;
}

/// Says when the alarm was due if that was a minute ago or more.
QString CallAlarm::dueTime(const QDateTime &now) const
{
    // Times before 1970 come from no clock, and QDateTime cannot hold all of them.
    if (m_alarm.ticker < 0 || m_alarm.ticker > now.toSecsSinceEpoch() - lateAfter)
        return {};
    const QDateTime due = QDateTime::fromSecsSinceEpoch(m_alarm.ticker);
    const QLocale locale;
    const QString time = due.date() == now.date()
        ? locale.toString(due.time(), QLocale::ShortFormat)
        : locale.toString(due, QLocale::ShortFormat);
    // Without a catalogue the text is its id, for which arg() would log a warning.
    //: %1 is a time, or a date and a time if that was on another day.
    //% "Due since %1"
    return qtTrId("parley-la-due_since").replace(QLatin1String("%1"), time);
}

Alarm CallAlarm::snoozed(const QDateTime &now) const
{
    Alarm alarm = m_alarm;
    alarm.ticker = now.toSecsSinceEpoch() + snoozeTime;
    const auto triggerTime = alarm.attributes.find(QStringLiteral("triggerTime"));
    if (triggerTime != alarm.attributes.end())
        *triggerTime = QString::number(alarm.ticker);
    return alarm;
}
