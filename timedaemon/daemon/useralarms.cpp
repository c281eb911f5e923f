// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "useralarms.h"

#include <QDBusError>
#include <QDebug>

#include <algorithm>
#include <numeric>

namespace {

constexpr uint reminderFlag = 1;

qsizetype bytesOf(const Alarm &alarm)
{
    qsizetype bytes = 0;
    for (auto it = alarm.attributes.cbegin(); it != alarm.attributes.cend(); ++it)
        bytes += it.key().toUtf8().size() + it.value().toUtf8().size();
    return bytes;
}

qsizetype charactersOf(const Alarm &alarm)
{
    auto characters = qsizetype{8} * alarm.attributes.size();
    for (auto it = alarm.attributes.cbegin(); it != alarm.attributes.cend(); ++it)
        characters += it.key().size() + it.value().size();
    return characters;
}

qsizetype charactersOf(const AlarmsByCookie &alarms)
{
    return std::accumulate(
        alarms.cbegin(), alarms.cend(), qsizetype{0},
        [](qsizetype characters, const Alarm &alarm) { return characters + charactersOf(alarm); });
}

Refusal limited(const QString &text)
{
    return {QDBusError::errorString(QDBusError::LimitsExceeded), text};
}

bool meets(const Alarm &alarm, const QVariantMap &criteria)
{
    for (auto it = criteria.cbegin(); it != criteria.cend(); ++it) {
        const auto attribute = alarm.attributes.constFind(it.key());
        if (attribute == alarm.attributes.cend() || it->userType() != QMetaType::QString
            || it->toString() != *attribute)
            return false;
    }
    return true;
}

uint cookieAfter(const Alarms &alarms)
{
    uint cookie = alarms.lastCookie;
    do
        ++cookie;
    while (cookie == 0 || alarms.pending.contains(cookie) || alarms.due.contains(cookie));
    return cookie;
}

} // namespace

UserAlarms::UserAlarms(const QString &path)
    : m_file(path)
    , m_alarms(m_file.load())
{
}

QList<uint> UserAlarms::dueInOrder() const
{
    QList<uint> cookies = m_alarms.due.keys();
    std::stable_sort(cookies.begin(), cookies.end(), [this](uint one, uint other) {
        return m_alarms.due[one].ticker < m_alarms.due[other].ticker;
    });
    return cookies;
}

std::optional<qint64> UserAlarms::nextTicker() const
{
    const auto earlier = [](const Alarm &one, const Alarm &other) {
        return one.ticker < other.ticker;
    };
    const auto next = std::min_element(m_alarms.pending.cbegin(), m_alarms.pending.cend(), earlier);
    return next == m_alarms.pending.cend() ? std::nullopt : std::optional<qint64>(next->ticker);
}

std::variant<uint, Refusal> UserAlarms::add(const Alarm &alarm, uint replaced)
{
    if (alarm.attributes.size() > maxAttributes)
        return limited(QStringLiteral("an alarm has at most %1 attributes").arg(maxAttributes));
    if (bytesOf(alarm) > maxAlarmSize)
        return limited(
            QStringLiteral("the attributes of an alarm have at most %1 bytes").arg(maxAlarmSize));

    Alarms changed = m_alarms;
    changed.pending.remove(replaced);
    if (changed.pending.size() >= maxAlarms)
        return limited(QStringLiteral("a user has at most %1 alarms").arg(maxAlarms));
    if (charactersOf(changed.pending) + charactersOf(alarm) > maxCharacters)
        return limited(
            QStringLiteral("the attributes of a user's alarms have at most %1 characters")
                .arg(maxCharacters));
    changed.lastCookie = cookieAfter(m_alarms);
    changed.pending.insert(changed.lastCookie, alarm);
    if (const auto refusal = change(changed))
        return *refusal;
    return changed.lastCookie;
}

std::variant<bool, Refusal> UserAlarms::cancel(uint cookie)
{
    Alarms changed = m_alarms;
    if (changed.pending.remove(cookie) == 0)
        return false;
    if (const auto refusal = change(changed))
        return *refusal;
    return true;
}

QList<uint> UserAlarms::find(const QVariantMap &criteria) const
{
    QList<uint> cookies;
    for (auto it = m_alarms.pending.cbegin(); it != m_alarms.pending.cend(); ++it) {
        if (meets(*it, criteria))
            cookies.append(it.key());
    }
    return cookies;
}

QList<uint> UserAlarms::fire(qint64 now)
{
    QList<uint> cookies;
    for (auto it = m_alarms.pending.cbegin(); it != m_alarms.pending.cend(); ++it) {
        if (it->ticker <= now)
            cookies.append(it.key());
    }
    if (!cookies.isEmpty())
        makeDue(cookies);
    return cookies;
}

bool UserAlarms::fireEarly(uint cookie)
{
    if (!m_alarms.pending.contains(cookie))
        return false;
    makeDue({cookie});
    return true;
}

std::variant<bool, Refusal> UserAlarms::dismiss(uint cookie)
{
    Alarms changed = m_alarms;
    if (changed.due.remove(cookie) == 0)
        return false;
    if (const auto refusal = change(changed))
        return *refusal;
    return true;
}

std::optional<Refusal> UserAlarms::change(const Alarms &alarms)
{
    const QString error = m_file.save(alarms);
    if (!error.isEmpty())
        return Refusal{QStringLiteral("org.freedesktop.DBus.Error.IOError"),
                       QStringLiteral("the alarms cannot be kept: %1").arg(error)};
    m_alarms = alarms;
    return std::nullopt;
}

/// Removes pending alarms. Those with the reminder flag are due then.
void UserAlarms::makeDue(const QList<uint> &cookies)
{
    for (const uint cookie : cookies) {
        const Alarm alarm = m_alarms.pending.take(cookie);
        if (alarm.flags & reminderFlag)
            m_alarms.due.insert(cookie, alarm);
    }
    dropEarliestDue();
    const QString error = m_file.save(m_alarms);
    // The user is told of a due alarm in any case. At worst it is due once more after a restart.
    if (!error.isEmpty())
        qWarning("Due alarms cannot be kept: %s", qUtf8Printable(error));
}

void UserAlarms::dropEarliestDue()
{
    int count = 0;
    qsizetype characters = charactersOf(m_alarms.due);
    const QList<uint> cookies = dueInOrder();
    for (const uint cookie : cookies) {
        if (m_alarms.due.size() <= maxAlarms && characters <= maxCharacters)
            break;
        characters -= charactersOf(m_alarms.due.take(cookie));
        ++count;
    }
    if (count > 0)
        qWarning("%d due alarms are dropped, because nobody has dismissed them", count);
}
