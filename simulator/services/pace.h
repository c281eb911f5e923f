// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QQueue>
#include <QTimer>

#include <functional>

/// How fast a modem does what it is told: at once, some seconds later, or not for now. What it is
/// told is done one after the other in any case.
class Pace : public QObject
{
    Q_OBJECT

public:
    enum class Speed { Normal, Slow, Hung };

    explicit Pace(QObject *parent = nullptr);

    Speed speed() const { return m_speed; }
    /// What waits is done at the new speed.
    void setSpeed(Speed speed);
    /// Does \a action when its turn comes. It may add others, and destroy this object.
    void add(const std::function<void()> &action);
    /// Drops what waits.
    void clear();

private:
    void schedule();
    void runNext();

    Speed m_speed = Speed::Normal;
    QQueue<std::function<void()>> m_waiting;
    QTimer m_timer;
};
