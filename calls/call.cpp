// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "call.h"

#include <QStringList>

#include <utility>

namespace {

const QLatin1String dialing("dialing");
const QLatin1String alerting("alerting");
const QLatin1String incoming("incoming");
const QLatin1String waiting("waiting");
const QLatin1String withheld("withheld");

bool isState(const QString &text)
{
    static const QStringList states{
        QStringLiteral("active"),      QStringLiteral("held"), dialing, alerting, incoming, waiting,
        QStringLiteral("disconnected")};
    return states.contains(text);
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
    if (isText && property.name == QLatin1String("State") && isState(text))
        return assign(m_state, text, State);
    if (isText && property.name == QLatin1String("LineIdentification")) {
        // The other side has refused to tell its number.
        const bool isWithheld = text == withheld;
        return assign(m_number, isWithheld ? QString() : text, Number)
            + assign(m_withheld, isWithheld, Withheld);
    }
    if (isText && property.name == QLatin1String("Name"))
        return assign(m_name, text == withheld ? QString() : text, Name);
    if (isText && property.name == QLatin1String("StartTime"))
        return assign(m_startTime, QDateTime::fromString(text, Qt::ISODate), StartTime);
    if (isFlag && property.name == QLatin1String("RemoteHeld"))
        return assign(m_remoteHeld, flag, RemoteHeld);
    if (isFlag && property.name == QLatin1String("Multiparty"))
        return assign(m_conference, flag, Conference);
    if (isFlag && property.name == QLatin1String("Emergency"))
        return assign(m_emergency, flag, Emergency);
    return {};
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
