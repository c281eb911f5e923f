// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "turns.h"

#include <QPointer>

void Turns::add(const std::function<void()> &action)
{
    m_waiting.enqueue(action);
    if (m_running)
        return;
    m_running = true;
    const QPointer<Turns> self(this);
    while (self && !m_waiting.isEmpty()) {
        const auto next = m_waiting.dequeue();
        next();
    }
    if (self)
        m_running = false;
}
