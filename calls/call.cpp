// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "call.h"

#include <QStringList>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <utility>

namespace {

const QLatin1String active("active");

const QLatin1String dialing("dialing");
const QLatin1String alerting("alerting");
const QLatin1String incoming("incoming");
const QLatin1String waiting("waiting");
const QLatin1String withheld("withheld");

bool isState(const QString &text)
{
    static const QStringList states{
        active,  QStringLiteral("held"),        dialing, alerting, incoming,
        waiting, QStringLiteral("disconnected")};
    return states.contains(text);
}

/// Returns the time since the start of the system in milliseconds. It goes on while that sleeps.
qint64 upTime()
{
    using namespace std::chrono;
    timespec time = {};
    clock_gettime(CLOCK_BOOTTIME, &time);
    return duration_cast<milliseconds>(seconds(time.tv_sec) + nanoseconds(time.tv_nsec)).count();
}

template <typename Value>
QVector<int> assign(Value &member, const Value &value, Call::Role role)
{
    if (member == value)
        return {};
    member = value;
    return {role};
}

} // namespace

Call::Call(int id, QString modem, const BusObject &object)
    : m_id(id)
    , m_path(object.path)
    , m_modem(std::move(modem))
{
    for (auto it = object.properties.cbegin(); it != object.properties.cend(); ++it)
        set({it.key(), it.value()});
    if (isRinging() || object.properties.contains(QStringLiteral("IncomingLine")))
        m_direction = QStringLiteral("incoming");
    else if (isBeingDialled())
        m_direction = QStringLiteral("outgoing");
}

bool Call::isRinging() const
{
    return m_state == incoming || m_state == waiting;
}

bool Call::isBeingDialled() const
{
    return m_state == dialing || m_state == alerting;
}

QVector<int> Call::set(const BusProperty &property)
{
    const bool isText = property.value.userType() == QMetaType::QString;
    const bool isFlag = property.value.userType() == QMetaType::Bool;
    const QString text = textIn(property.value);
    const bool flag = isTrue(property.value);
    if (isText && property.name == QLatin1String("State") && isState(text)) {
        const QString before = m_state;
        const QVector<int> roles = assign(m_state, text, State);
        begin(before);
        return roles;
    }
    if (isText && property.name == QLatin1String("LineIdentification")) {
        // The other side has refused to tell its number.
        const bool isWithheld = text == withheld;
        return assign(m_number, isWithheld ? QString() : text, Number)
            + assign(m_withheld, isWithheld, Withheld);
    }
    if (isText && property.name == QLatin1String("Name"))
        return assign(m_name, text == withheld ? QString() : text, Name);
    if (isText && property.name == QLatin1String("StartTime")) {
        const QVector<int> roles =
            assign(m_startTime, QDateTime::fromString(text, Qt::ISODate), StartTime);
        begin(m_state);
        return roles;
    }
    if (isFlag && property.name == QLatin1String("RemoteHeld"))
        return assign(m_remoteHeld, flag, RemoteHeld);
    if (isFlag && property.name == QLatin1String("Multiparty"))
        return assign(m_conference, flag, Conference);
    if (isFlag && property.name == QLatin1String("Emergency"))
        return assign(m_emergency, flag, Emergency);
    return {};
}

/// A call that was active before it was first seen has only the clock to tell since when.
void Call::begin(const QString &stateBefore)
{
    if (m_start)
        return;
    if (m_state == active && !stateBefore.isEmpty() && stateBefore != active)
        m_start = upTime();
    else if (m_startTime.isValid())
        m_start =
            upTime() - std::max<qint64>(0, m_startTime.msecsTo(QDateTime::currentDateTimeUtc()));
}

qint64 Call::duration() const
{
    return m_start ? upTime() - *m_start : 0;
}

void Call::setReason(const QString &reason)
{
    if (reason == QLatin1String("local") || reason == QLatin1String("remote")
        || reason == QLatin1String("network"))
        m_reason = reason;
}

QVariant Call::value(int role) const
{
    switch (role) {
    case Id:
        return m_id;
    case Number:
        return m_number;
    case Name:
        return m_name;
    case Direction:
        return m_direction;
    case State:
        return m_state;
    case StartTime:
        return m_startTime.isValid() ? QVariant(m_startTime) : QVariant();
    case Modem:
        return m_modem;
    case Withheld:
        return m_withheld;
    case RemoteHeld:
        return m_remoteHeld;
    case Conference:
        return m_conference;
    case Emergency:
        return m_emergency;
    default:
        return {};
    }
}

QVariantMap Call::values() const
{
    QVariantMap values{{QStringLiteral("reason"), m_reason}};
    const QHash<int, QByteArray> names = roleNames();
    for (auto it = names.cbegin(); it != names.cend(); ++it)
        values.insert(QString::fromLatin1(it.value()), value(it.key()));
    return values;
}

QHash<int, QByteArray> Call::roleNames()
{
    return {{Id, "callId"},
            {Number, "number"},
            {Name, "name"},
            {Direction, "direction"},
            {State, "callState"},
            {StartTime, "startTime"},
            {Modem, "modem"},
            {Withheld, "withheld"},
            {RemoteHeld, "remoteHeld"},
            {Conference, "conference"},
            {Emergency, "emergency"}};
}
