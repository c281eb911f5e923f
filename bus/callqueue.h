// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "answers.h"

#include <QDBusPendingCall>
#include <QObject>
#include <QPointer>
#include <QQueue>

#include <functional>
#include <optional>

/// Makes calls in the order in which they are added, a limited number at a time. A bus limits how
/// many calls of a connection may wait for an answer (128 on a stock system bus, see
/// max_replies_per_connection in dbus-daemon(1)), and refuses all others. A call that waits in this
/// queue is not refused.
class CallQueue : public QObject
{
    Q_OBJECT

public:
    /// Makes a call and returns it; returns nothing if no call is needed any more.
    using Call = std::function<std::optional<QDBusPendingCall>()>;

    explicit CallQueue(QObject *parent = nullptr);

    /// Runs \a call as soon as the limit allows, which may be at once, and then \a handler with the
    /// answer. Neither runs once \a context is destroyed.
    void add(QObject *context, const Call &call, const AnswerHandler &handler);

private:
    struct Entry
    {
        QPointer<QObject> context;
        Call call;
        AnswerHandler handler;
    };

    void makeCalls();

    QQueue<Entry> m_waiting;
    int m_underWay = 0;
};
