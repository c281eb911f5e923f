// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "remindercommands.h"

#include "buscall.h"

#include <timed/event.h>

#include <QDBusMetaType>
#include <QDateTime>
#include <QRegularExpression>

#include <utility>

namespace {

/// A remote action that opens the call history.
const QVariantMap openCallHistory{
    {QStringLiteral("service"), QStringLiteral("com.nokia.telephony.callhistory")},
    {QStringLiteral("path"), QStringLiteral("/org/maemo/m")},
    {QStringLiteral("iface"), QStringLiteral("com.nokia.MApplicationIf")},
    {QStringLiteral("method"), QStringLiteral("launch")},
    {QStringLiteral("arguments"), QVariantList{QStringList(QStringLiteral("callHistory"))}}};

/// Alarms have numbers without characters that only make them easier to read.
QString normalized(QString number)
{
    return number.remove(QRegularExpression(QStringLiteral("[^0-9+*#]")));
}

} // namespace

ReminderCommands::ReminderCommands(QDBusConnection sessionBus, QDBusConnection systemBus,
                                   QObject *parent)
    : QObject(parent)
    , m_sessionBus(std::move(sessionBus))
    , m_systemBus(std::move(systemBus))
{
    qDBusRegisterMetaType<Maemo::Timed::Event>();
}

QVector<Command> ReminderCommands::commands()
{
    return {{QStringLiteral("remind"),
             {QStringLiteral("NUMBER"), QStringLiteral("SECONDS"), QStringLiteral("[NAME]")},
             QStringLiteral("leave a reminder, which the call UI learns of at its next start"),
             [this](const QStringList &arguments, const Finish &finish) {
                 remind(arguments.at(0), arguments.at(1), arguments.value(2, arguments.at(0)),
                        finish);
             }}};
}

void ReminderCommands::remind(const QString &number, const QString &seconds, const QString &name,
                              const Finish &finish)
{
    bool isNumber = false;
    const qint64 due = QDateTime::currentSecsSinceEpoch() + seconds.toInt(&isNumber);
    if (!isNumber) {
        finish(Outcome::Failed, QStringLiteral("\"%1\" is no number of seconds").arg(seconds));
        return;
    }
    if (normalized(number).isEmpty()) {
        finish(Outcome::Failed, QStringLiteral("\"%1\" is no number").arg(number));
        return;
    }
    Maemo::Timed::Event event;
    event.setReminderFlag();
    event.setAlarmFlag();
    event.setTicker(due);
    event.setAttribute(QStringLiteral("TITLE"), name);
    event.setAttribute(QStringLiteral("APPLICATION"), QStringLiteral("nimbo_parley_ui"));
    event.setAttribute(QStringLiteral("type"), QStringLiteral("reminder"));
    event.setAttribute(QStringLiteral("phoneNumber"), normalized(number));
    event.setAttribute(QStringLiteral("triggerTime"), QString::number(due));
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("com.nimbo.timed"), QStringLiteral("/com/nimbo/timed"),
        QStringLiteral("com.nimbo.timed"), QStringLiteral("add_event"));
    call.setArguments({QVariant::fromValue(event)});
    callBus(m_systemBus, call, QStringLiteral("u"), this, finish,
            [this, number, name, finish](const QVariantList &values) {
                notify(values.value(0).toUInt(), number, name, finish);
            });
}

void ReminderCommands::notify(uint cookie, const QString &number, const QString &name,
                              const Finish &finish)
{
    const QStringList actions{QStringLiteral("default"), QString(), QStringLiteral("app"),
                              QString()};
    const QVariantMap hints{{QStringLiteral("urgency"), QVariant::fromValue<uchar>(0)},
                            {QStringLiteral("category"), QStringLiteral("x-nimbo-call-reminder")},
                            {QStringLiteral("x-nimbo-alarm-cookie"), cookie},
                            {QStringLiteral("x-nimbo-remote-action-default"), openCallHistory},
                            {QStringLiteral("x-nimbo-remote-action-app"), openCallHistory}};
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.Notifications"),
        QStringLiteral("/org/freedesktop/Notifications"),
        QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"));
    const QString summary = QStringLiteral("Call ") + name;
    call.setArguments(
        {QStringLiteral("Phone"), 0U, QString(), summary, number, actions, hints, -1});
    callBus(m_sessionBus, call, QStringLiteral("u"), this, finish,
            [cookie, finish](const QVariantList &values) {
                finish(Outcome::Done,
                       QStringLiteral("alarm %1, notification %2")
                           .arg(cookie)
                           .arg(values.value(0).toUInt()));
            });
}
