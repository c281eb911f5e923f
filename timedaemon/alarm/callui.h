// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDBusConnection>

#include <functional>

class QObject;

/// The call UI, "com.nimbo.parley.ui" on the session bus.
class CallUi
{
public:
    explicit CallUi(QDBusConnection sessionBus);

    /// Asks the call UI to call \a number, and calls \a handler with whether it has taken the
    /// request, unless \a context is destroyed before. Logs a failure. The bus starts the call UI
    /// if it can.
    void dial(const QString &number, QObject *context,
              const std::function<void(bool succeeded)> &handler) const;

private:
    QDBusConnection m_bus;
};
