// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QObject>
#include <QQueue>

#include <functional>

/// Runs what it is given one after the other. What comes while something runs waits until that has
/// returned. So a handler in QML may run an event loop, and what that delivers does not change the
/// lists under those who are being told of the previous change.
class Turns : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Runs \a action, at once unless another one runs. An action may destroy this object; those
    /// that wait are dropped then.
    void add(const std::function<void()> &action);

private:
    QQueue<std::function<void()>> m_waiting;
    bool m_running = false;
};
