// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "networkcalls.h"

#include <QStringList>

#include <algorithm>
#include <iterator>

namespace {

using State = NetworkCall::State;

bool isSame(const NetworkCall &a, const NetworkCall &b)
{
    return a.state == b.state && a.isInConference == b.isInConference
        && a.isHeldByRemote == b.isHeldByRemote;
}

bool isConnected(const NetworkCall &call)
{
    return call.state == State::Active || call.state == State::Held;
}

bool isActive(const NetworkCall &call)
{
    return call.state == State::Active;
}

bool isHeld(const NetworkCall &call)
{
    return call.state == State::Held;
}

bool isWaiting(const NetworkCall &call)
{
    return call.state == State::Waiting;
}

} // namespace

QString nameOf(NetworkCall::State state)
{
    static const QStringList names{QStringLiteral("active"),   QStringLiteral("held"),
                                   QStringLiteral("dialing"),  QStringLiteral("alerting"),
                                   QStringLiteral("incoming"), QStringLiteral("waiting")};
    return names.at(static_cast<int>(state));
}

QString nameOf(NetworkCalls::Ending ending)
{
    static const QStringList names{QStringLiteral("local"), QStringLiteral("remote"),
                                   QStringLiteral("network")};
    return names.at(static_cast<int>(ending));
}

const NetworkCall *NetworkCalls::find(int id) const
{
    const auto found = m_calls.find(id);
    return found == m_calls.cend() ? nullptr : &found->second;
}

bool NetworkCalls::has(State state) const
{
    return count(state) > 0;
}

int NetworkCalls::dial(const QString &number)
{
    if (isBusy() || freeId() == 0 || (has(State::Active) && has(State::Held)))
        return 0;
    update([this] { set(State::Active, State::Held); });
    return add(State::Dialing, number);
}

bool NetworkCalls::answer()
{
    if (!has(State::Incoming))
        return false;
    update([this] { set(State::Incoming, State::Active); });
    return true;
}

bool NetworkCalls::hangUp()
{
    return endWhere([](const NetworkCall &call) { return !isWaiting(call); });
}

bool NetworkCalls::endHeldOrWaiting()
{
    return endWhere(isWaiting) || endWhere(isHeld);
}

bool NetworkCalls::endActive()
{
    if (isDialing() || !(has(State::Active) || has(State::Held)))
        return false;
    update([this] {
        const State next = has(State::Waiting) ? State::Waiting : State::Held;
        remove(isActive);
        set(next, State::Active);
    });
    return true;
}

bool NetworkCalls::end(int id)
{
    if (find(id) == nullptr)
        return false;
    update([this, id] { m_calls.erase(id); });
    return true;
}

bool NetworkCalls::swap()
{
    const bool isFull = has(State::Waiting) && has(State::Active) && has(State::Held);
    if (isFull || isDialing() || !(has(State::Active) || has(State::Held)))
        return false;
    update([this] {
        const State next = has(State::Waiting) ? State::Waiting : State::Held;
        for (auto &[id, call] : m_calls) {
            if (call.state == State::Active)
                call.state = State::Held;
            else if (call.state == next)
                call.state = State::Active;
        }
    });
    return true;
}

bool NetworkCalls::split(int id)
{
    const NetworkCall *const call = find(id);
    if (call == nullptr || !isActive(*call) || count(State::Active) < 2 || has(State::Held))
        return false;
    update([this, id] {
        set(State::Active, State::Held);
        m_calls[id].state = State::Active;
    });
    return true;
}

bool NetworkCalls::join()
{
    const int together = count(State::Active) + count(State::Held);
    if (!has(State::Active) || !has(State::Held) || together > MostInConference)
        return false;
    update([this] {
        set(State::Held, State::Active);
        for (auto &[id, call] : m_calls)
            call.isInConference = isActive(call);
    });
    return true;
}

bool NetworkCalls::endConference()
{
    return endWhere([](const NetworkCall &call) { return call.isInConference; });
}

bool NetworkCalls::transfer()
{
    return has(State::Active) && has(State::Held) && endWhere(isConnected);
}

int NetworkCalls::ring(const QString &number)
{
    if (isBusy() || freeId() == 0)
        return 0;
    return add(m_calls.empty() ? State::Incoming : State::Waiting, number);
}

bool NetworkCalls::alertRemote(int id)
{
    const NetworkCall *const call = find(id);
    if (call == nullptr || call->state != State::Dialing)
        return false;
    update([this, id] { m_calls[id].state = State::Alerting; });
    return true;
}

bool NetworkCalls::answerRemote(int id)
{
    const NetworkCall *const call = find(id);
    if (call == nullptr || (call->state != State::Dialing && call->state != State::Alerting))
        return false;
    update([this, id] { m_calls[id].state = State::Active; });
    return true;
}

bool NetworkCalls::endRemote(int id)
{
    if (find(id) == nullptr)
        return false;
    update([this, id] { m_calls.erase(id); }, Ending::Remote);
    return true;
}

bool NetworkCalls::holdRemote(int id, bool held)
{
    const NetworkCall *const call = find(id);
    if (call == nullptr || !isConnected(*call) || call->isHeldByRemote == held)
        return false;
    update([this, id, held] { m_calls[id].isHeldByRemote = held; });
    return true;
}

void NetworkCalls::lose()
{
    endWhere([](const NetworkCall &) { return true; }, Ending::Network);
}

int NetworkCalls::add(State state, const QString &number)
{
    const bool isIncoming = state == State::Incoming || state == State::Waiting;
    const NetworkCall call{freeId(), state, isIncoming, number, false, false};
    m_calls.emplace(call.id, call);
    Q_EMIT added(call);
    return call.id;
}

/// Applies a change, and tells what is different from before. Calls that are gone have ended by
/// \a ending.
void NetworkCalls::update(const std::function<void()> &change, Ending ending)
{
    const ById before = m_calls;
    change();
    settle();
    const ById now = m_calls;
    for (const auto &[id, call] : before) {
        if (now.count(id) == 0)
            Q_EMIT ended(call, ending);
    }
    for (const auto &[id, call] : now) {
        if (!isSame(before.at(id), call))
            Q_EMIT changed(call);
    }
}

/// A waiting call without others is an incoming one, and nobody is in a conference alone.
void NetworkCalls::settle()
{
    if (m_calls.size() == 1)
        set(State::Waiting, State::Incoming);
    for (auto &[id, call] : m_calls) {
        const bool isTogether = isConnected(call) && count(call.state) > 1;
        call.isInConference = call.isInConference && isTogether;
    }
}

/// Returns whether there is one.
bool NetworkCalls::endWhere(Test test, Ending ending)
{
    const auto before = m_calls.size();
    update([this, test] { remove(test); }, ending);
    return m_calls.size() < before;
}

void NetworkCalls::remove(Test test)
{
    for (auto it = m_calls.begin(); it != m_calls.end();)
        it = test(it->second) ? m_calls.erase(it) : std::next(it);
}

void NetworkCalls::set(State from, State to)
{
    for (auto &[id, call] : m_calls) {
        if (call.state == from)
            call.state = to;
    }
}

bool NetworkCalls::isDialing() const
{
    return has(State::Dialing) || has(State::Alerting);
}

/// Returns whether a call is being set up by any side.
bool NetworkCalls::isBusy() const
{
    return isDialing() || has(State::Incoming) || has(State::Waiting);
}

/// Returns 0 if there are as many calls as there can be.
int NetworkCalls::freeId() const
{
    for (int id = 1; id <= MostCalls; ++id) {
        if (find(id) == nullptr)
            return id;
    }
    return 0;
}

int NetworkCalls::count(State state) const
{
    return static_cast<int>(
        std::count_if(m_calls.cbegin(), m_calls.cend(),
                      [state](const auto &entry) { return entry.second.state == state; }));
}
