// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "callqueue.h"

#include <QDBusMessage>

namespace {

/// The limit leaves room for the calls that other objects make on the same connection.
constexpr int mostUnderWay = 32;

} // namespace

CallQueue::CallQueue(QObject *parent)
    : QObject(parent)
{
}

void CallQueue::add(QObject *context, const Call &call, const AnswerHandler &handler)
{
    m_waiting.enqueue({context, call, handler});
    makeCalls();
}

void CallQueue::makeCalls()
{
    while (m_underWay < mostUnderWay && !m_waiting.isEmpty()) {
        const Entry next = m_waiting.dequeue();
        const auto call = next.context ? next.call() : std::nullopt;
        if (!call)
            continue;
        ++m_underWay;
        // The bus counts the call until it is answered, even if nobody wants the answer any more.
        whenAnswered(*call, this, [this, next](const QDBusMessage &answer) {
            --m_underWay;
            makeCalls();
            if (next.context)
                next.handler(answer); // The handler may destroy this object.
        });
    }
}
