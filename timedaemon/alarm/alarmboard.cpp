// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "alarmboard.h"

#include <algorithm>

AlarmBoard::AlarmBoard(const QDBusConnection &sessionBus, const QDBusConnection &systemBus,
                       const ShownAlarm::Delays &delays, QObject *parent)
    : QObject(parent)
    , m_delays(delays)
    , m_daemon(systemBus)
    , m_server(sessionBus)
    , m_callUi(sessionBus)
{
    connect(&m_daemon, &DueAlarms::listed, this, &AlarmBoard::setDue);
}

AlarmBoard::~AlarmBoard() = default;

void AlarmBoard::start()
{
    m_server.start();
    m_daemon.start();
}

void AlarmBoard::setDue(const QList<uint> &cookies)
{
    ++m_lists;
    m_due = cookies;
    m_unreadable.clear();
    m_isSilent = false;

    const QSet<uint> due(cookies.cbegin(), cookies.cend());
    for (auto it = m_shown.begin(); it != m_shown.end();) {
        if (due.contains(it->first)) {
            it->second->dismissAgain();
            ++it;
        } else {
            it = m_shown.erase(it);
        }
    }
    fillUp();
}

void AlarmBoard::fillUp()
{
    int free = freePlaces();
    for (auto it = m_due.cbegin(); it != m_due.cend() && free > 0 && !m_isSilent; ++it) {
        if (m_shown.count(*it) > 0 || m_reading.contains(*it) || m_unreadable.contains(*it))
            continue;
        read(*it);
        --free;
    }
}

int AlarmBoard::freePlaces() const
{
    const auto taken = std::count_if(m_shown.cbegin(), m_shown.cend(),
                                     [](const auto &one) { return !one.second->isAnswered(); });
    return mostShown - static_cast<int>(taken) - static_cast<int>(m_reading.size());
}

void AlarmBoard::read(uint cookie)
{
    m_reading.insert(cookie);
    m_daemon.read(cookie, this,
                  [this, cookie, list = m_lists](DueAlarms::Outcome outcome, const Alarm &alarm) {
                      m_reading.remove(cookie);
                      // An older failure says nothing of a daemon that has answered since.
                      if (outcome == DueAlarms::Outcome::Read || list == m_lists)
                          handleRead(cookie, outcome, alarm);
                      fillUp();
                  });
}

void AlarmBoard::handleRead(uint cookie, DueAlarms::Outcome outcome, const Alarm &alarm)
{
    switch (outcome) {
    case DueAlarms::Outcome::Read:
        if (m_due.contains(cookie))
            add(cookie, alarm);
        break;
    case DueAlarms::Outcome::Unanswered:
        m_isSilent = true;
        break;
    case DueAlarms::Outcome::Gone:
    case DueAlarms::Outcome::Unreadable:
        m_unreadable.insert(cookie);
        break;
    }
}

void AlarmBoard::add(uint cookie, const Alarm &alarm)
{
    auto shown = std::make_unique<ShownAlarm>(
        cookie, alarm, ShownAlarm::Services{m_daemon, m_server, m_callUi}, m_delays);
    connect(shown.get(), &ShownAlarm::answered, this, &AlarmBoard::fillUp);
    connect(shown.get(), &ShownAlarm::ended, this, [this, cookie] { remove(cookie); });
    m_shown[cookie] = std::move(shown);
}

/// The alarm is emitting a signal, so it is deleted later.
void AlarmBoard::remove(uint cookie)
{
    const auto found = m_shown.find(cookie);
    if (found == m_shown.end())
        return;
    found->second.release()->deleteLater();
    m_shown.erase(found);
    m_due.removeAll(cookie);
    fillUp();
}
