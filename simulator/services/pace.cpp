// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "pace.h"

#include <chrono>

namespace {

constexpr std::chrono::seconds slowness(2);

} // namespace

Pace::Pace(QObject *parent)
    : QObject(parent)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &Pace::runNext);
}

void Pace::setSpeed(Speed speed)
{
    m_speed = speed;
    m_timer.stop();
    schedule();
}

void Pace::add(const std::function<void()> &action)
{
    if (m_speed == Speed::Normal && m_waiting.isEmpty()) {
        action();
        return;
    }
    m_waiting.enqueue(action);
    schedule();
}

void Pace::clear()
{
    m_waiting.clear();
    m_timer.stop();
}

void Pace::schedule()
{
    if (m_waiting.isEmpty() || m_speed == Speed::Hung || m_timer.isActive())
        return;
    m_timer.start(m_speed == Speed::Slow ? slowness : std::chrono::seconds::zero());
}

void Pace::runNext()
{
    const auto action = m_waiting.dequeue();
    schedule();
    action();
}
