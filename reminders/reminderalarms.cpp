// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "reminderalarms.h"

#include "receivelimits.h"

#include <timed/exception.h>

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusMetaType>
#include <QDebug>
#include <QScopeGuard>

#include <limits>
#include <utility>

using Attributes = QMap<QString, QString>;
using AttributesByCookie = QMap<uint, Attributes>;

Q_DECLARE_METATYPE(AttributesByCookie)

namespace {

const QLatin1String applicationKey("APPLICATION");
const QLatin1String application("nimbo_parley_ui");
const QLatin1String typeKey("type");
const QLatin1String type("reminder");
const QLatin1String phoneNumberKey("phoneNumber");
const QLatin1String triggerTimeKey("triggerTime");

/// Registered this early because the signal that carries the triggers may come with the first
/// answer of the bus.
const auto triggersType = qDBusRegisterMetaType<Maemo::Timed::Event::Triggers>();

/// Returns the largest number for an invalid time, and for one that does not fit.
uint secondsSinceEpoch(const QDateTime &time)
{
    constexpr uint largest = std::numeric_limits<uint>::max();
    const qint64 seconds = time.toSecsSinceEpoch();
    return time.isValid() && seconds >= 0 && seconds < largest ? static_cast<uint>(seconds)
                                                               : largest;
}

Maemo::Timed::Event makeEvent(const QString &normalizedNumber, const QString &contactName,
                              uint seconds)
{
    Maemo::Timed::Event event;
    event.setReminderFlag();
    event.setAlarmFlag();
    event.setTicker(seconds);
    event.setAttribute(QStringLiteral("TITLE"), contactName);
    event.setAttribute(applicationKey, application);
    event.setAttribute(typeKey, type);
    event.setAttribute(phoneNumberKey, normalizedNumber);
    event.setAttribute(triggerTimeKey, QString::number(seconds));
    return event;
}

// Values from the bus are checked before they are read: reading one as another type ends the
// process.

uint toCookie(const QVariant &value)
{
    if (value.userType() != qMetaTypeId<QDBusArgument>())
        return value.toUInt();
    const auto argument = value.value<QDBusArgument>();
    return argument.currentSignature() == QLatin1String("u") ? qdbus_cast<uint>(argument) : 0;
}

QList<uint> toCookies(const QVariant &value)
{
    QVariantList values;
    // Qt 6 would make a list of other values too, such as one of the characters of a text.
    if (value.userType() == QMetaType::QVariantList || value.userType() == QMetaType::QStringList) {
        values = value.toList();
    } else if (value.userType() == qMetaTypeId<QDBusArgument>()) {
        const auto argument = value.value<QDBusArgument>();
        if (argument.currentSignature() == QLatin1String("av"))
            values = qdbus_cast<QVariantList>(argument);
    }
    QList<uint> cookies;
    for (const QVariant &cookie : std::as_const(values))
        cookies.append(cookie.toUInt());
    return cookies;
}

AttributesByCookie toAttributes(const QVariant &value)
{
    if (value.userType() != qMetaTypeId<QDBusArgument>())
        return value.value<AttributesByCookie>();
    const auto argument = value.value<QDBusArgument>();
    return argument.currentSignature() == QLatin1String("a{ua{ss}}")
        ? qdbus_cast<AttributesByCookie>(argument)
        : AttributesByCookie();
}

QVector<ReminderAlarm> toAlarms(const AttributesByCookie &attributes)
{
    QVector<ReminderAlarm> alarms;
    for (auto it = attributes.cbegin(); it != attributes.cend(); ++it) {
        const QString phoneNumber = it->value(phoneNumberKey);
        if (phoneNumber.isEmpty())
            continue;
        alarms.append({it.key(), phoneNumber,
                       QDateTime::fromSecsSinceEpoch(it->value(triggerTimeKey).toUInt())});
    }
    return alarms;
}

void warnOfFailedQuery(const QDBusMessage &answer)
{
    qWarning() << "Unable to query reminder alarms" << QDBusError(answer);
}

} // namespace

ReminderAlarms::ReminderAlarms(QObject *parent)
    : QObject(parent)
{
    removeReceiveLimits(m_timed.connection());
    qRegisterMetaType<QList<uint>>("Q_List_uint");
    qDBusRegisterMetaType<QList<uint>>();
    qRegisterMetaType<Attributes>("Q_Map_String_String");
    qDBusRegisterMetaType<Attributes>();
    qRegisterMetaType<AttributesByCookie>("Q_Map_uint_String_String");
    qDBusRegisterMetaType<AttributesByCookie>();
    connect(&m_timed, &Maemo::Timed::Interface::alarm_triggers_changed, this,
            &ReminderAlarms::triggersChanged);
}

void ReminderAlarms::schedule(uint replaced, const QString &normalizedNumber,
                              const QString &contactName, const QDateTime &due,
                              const std::function<void(uint cookie)> &added)
{
    const auto call = [=]() -> std::optional<QDBusPendingCall> {
        // Wait as long as the daemon lives: the bus goes on counting a call that has timed out
        // here.
        m_timed.setTimeout(std::numeric_limits<int>::max());
        const auto restore = qScopeGuard([this] { m_timed.setTimeout(-1); });
        try {
            const Maemo::Timed::Event event =
                makeEvent(normalizedNumber, contactName, secondsSinceEpoch(due));
            return replaced != 0 ? m_timed.replace_event_async(event, replaced)
                                 : m_timed.add_event_async(event);
        } catch (const Maemo::Timed::Exception &) {
            qWarning() << " Timed triggered an exception"; // The leading blank is meant.
            return std::nullopt;
        }
    };
    m_calls.add(this, call, [added](const QDBusMessage &answer) {
        const bool failed = answer.type() == QDBusMessage::ErrorMessage;
        const uint cookie = failed ? 0 : toCookie(answer.arguments().value(0));
        if (cookie == 0)
            qWarning() << "Failed to create alarm";
        else
            added(cookie);
    });
}

void ReminderAlarms::cancel(uint cookie)
{
    // Ask for no reply: nothing uses it, and the bus limits how many calls may wait for one.
    m_timed.call(QDBus::NoBlock, QStringLiteral("cancel"), cookie);
}

void ReminderAlarms::query(const Found &found)
{
    const QVariantMap criteria{{applicationKey, application}, {typeKey, type}};
    whenAnswered(m_timed.asyncCall(QStringLiteral("query"), criteria), this,
                 [this, found](const QDBusMessage &answer) {
                     if (answer.type() == QDBusMessage::ErrorMessage)
                         warnOfFailedQuery(answer);
                     else
                         queryAttributes(toCookies(answer.arguments().value(0)), found);
                 });
}

void ReminderAlarms::queryAttributes(const QList<uint> &cookies, const Found &found)
{
    whenAnswered(m_timed.asyncCall(QStringLiteral("get_attributes_by_cookies"),
                                   QVariant::fromValue(cookies)),
                 this, [found](const QDBusMessage &answer) {
                     if (answer.type() == QDBusMessage::ErrorMessage)
                         warnOfFailedQuery(answer);
                     else
                         found(toAlarms(toAttributes(answer.arguments().value(0))));
                 });
}
