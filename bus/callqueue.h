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

/// Makes calls in the order in which they are added, a limited number at a time. A bus refuses a
/// connection more calls than it may have without an answer (128 on a stock system bus, see
/// max_replies_per_connection in dbus-daemon(1)); what waits here is not refused.
class CallQueue : public QObject
{
    Q_OBJECT

public:
    /// Makes a call. Nothing if there is none to make after all.
    using Call = std::function<std::optional<QDBusPendingCall>()>;

    explicit CallQueue(QObject *parent = nullptr);

    /// Has \a call made, at once where it can be, and \a handler called with the answer; neither
    /// once \a context has gone.
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
