// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "phoneline.h"

#include <algorithm>
#include <chrono>

namespace {

/// How long the network searches for a phone that is called, before that rings.
constexpr std::chrono::milliseconds search(300);

} // namespace

PhoneLine::PhoneLine(const Sim &sim, QObject *parent)
    : QObject(parent)
    , m_sim(sim)
{
    update();
    m_search.setSingleShot(true);
    m_search.setInterval(search);
    connect(&m_search, &QTimer::timeout, this, &PhoneLine::followDialled);
    connect(&m_calls, &NetworkCalls::added, this, [this](const NetworkCall &call) {
        if (!call.isIncoming)
            m_search.start();
    });
}

bool PhoneLine::isNumber(const QString &text, int mostDigits)
{
    const QString digits = text.startsWith(QLatin1Char('+')) ? text.mid(1) : text;
    const auto isDigit = [](QChar character) {
        return QStringLiteral("0123456789*#").contains(character);
    };
    return !digits.isEmpty() && digits.size() <= mostDigits
        && std::all_of(digits.cbegin(), digits.cend(), isDigit);
}

void PhoneLine::setOn(bool on)
{
    m_isOn = on;
    if (!on)
        m_calls.lose();
    update();
}

void PhoneLine::setSim(const Sim &sim)
{
    m_sim = sim;
    update();
    Q_EMIT simChanged();
}

void PhoneLine::setCondition(Condition condition)
{
    if (m_condition == condition)
        return;
    m_condition = condition;
    if (condition == Condition::Slow)
        m_pace.setSpeed(Pace::Speed::Slow);
    else if (condition == Condition::Hang)
        m_pace.setSpeed(Pace::Speed::Hung);
    else
        m_pace.setSpeed(Pace::Speed::Normal);
    update();
    Q_EMIT conditionChanged();
}

bool PhoneLine::isReady() const
{
    return m_isOn && m_sim.isPresent() && !m_sim.locked && m_condition != Condition::Gone;
}

QString PhoneLine::networkName() const
{
    return m_isRegistered ? homeNetwork() : QString();
}

QStringList PhoneLine::emergencyNumbers() const
{
    const QStringList always{QStringLiteral("112"), QStringLiteral("911")};
    const QStringList withoutSim{QStringLiteral("000"), QStringLiteral("08"),
                                 QStringLiteral("110"), QStringLiteral("118"),
                                 QStringLiteral("119"), QStringLiteral("999")};
    return m_sim.isPresent() && !m_sim.locked ? always : always + withoutSim;
}

int PhoneLine::dial(const QString &number)
{
    const bool isPossible = m_isOn && m_condition != Condition::Gone
        && (emergencyNumbers().contains(number)
            || (m_isRegistered && m_condition != Condition::Refuse));
    const int id = isPossible ? m_calls.dial(number) : 0;
    if (id != 0)
        Q_EMIT dialled(number);
    return id;
}

int PhoneLine::ring(const QString &number)
{
    const bool isPossible =
        m_isRegistered && m_condition != Condition::Refuse && m_condition != Condition::Hang;
    return isPossible ? m_calls.ring(number) : 0;
}

bool PhoneLine::sendTones(const QString &tones)
{
    const bool isPossible = m_calls.has(NetworkCall::State::Active);
    if (isPossible)
        Q_EMIT tonesSent(tones);
    return isPossible;
}

bool PhoneLine::takesMessages() const
{
    return m_isRegistered && m_condition != Condition::Refuse;
}

bool PhoneLine::sendMessage(const QString &number, const QString &text)
{
    if (takesMessages())
        Q_EMIT messageSent(number, text);
    return takesMessages();
}

std::optional<PhoneLine::ServiceAnswer> PhoneLine::request(const QString &code)
{
    m_isAsked = code == QLatin1String("*101#");
    if (!m_isRegistered || m_condition == Condition::Refuse)
        return std::nullopt;
    Q_EMIT serviceRequested(code);
    if (code == QLatin1String("*100#"))
        return ServiceAnswer{QStringLiteral("Your credit is 12.34."), false};
    if (m_isAsked)
        return ServiceAnswer{QStringLiteral("1 Credit\n2 Network"), true};
    return std::nullopt;
}

std::optional<PhoneLine::ServiceAnswer> PhoneLine::reply(const QString &text)
{
    if (!m_isAsked)
        return std::nullopt;
    m_isAsked = false;
    if (text == QLatin1String("1"))
        return ServiceAnswer{QStringLiteral("Your credit is 12.34."), false};
    if (text == QLatin1String("2"))
        return ServiceAnswer{networkName(), false};
    return std::nullopt;
}

void PhoneLine::update()
{
    const bool isRegistered = isReady() && m_condition != Condition::Lost;
    if (isRegistered == m_isRegistered)
        return;
    m_isRegistered = isRegistered;
    m_isAsked = m_isAsked && isRegistered;
    if (!isRegistered)
        m_calls.lose();
    Q_EMIT registeredChanged();
}

/// Only one call at a time is being dialled.
void PhoneLine::followDialled()
{
    for (const auto &[id, call] : m_calls.all()) {
        if (call.state == NetworkCall::State::Dialing) {
            m_calls.alertRemote(id);
            return;
        }
    }
}
