// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "childprocess.h"
#include "uiundertest.h"

#include <QDBusConnection>
#include <QTemporaryDir>

/// The telephony of the simulated handset, with a SIM in its first modem, beside a call UI.
class SimulatedTelephony
{
public:
    explicit SimulatedTelephony(UiUnderTest &ui);
    ~SimulatedTelephony();

    /// Starts it, and makes \a ui ready for the screens, which phone with it and log what they
    /// show. Call this before the call UI is started.
    bool start();

    /// A call comes in.
    bool ring(const QString &number) const;
    /// The other side of the only call does something: "answer", "busy" or "hangup".
    bool remote(const QString &action) const;
    /// Calls a method of the first modem's org.ofono.VoiceCallManager, as another client.
    bool manage(const QString &method) const;
    /// Returns whether a modem has a call.
    bool hasCalls() const;
    /// Ends all calls, and waits until there are none.
    bool endAll() const;

private:
    Q_DISABLE_COPY(SimulatedTelephony)

    QDBusMessage call(const QString &path, const QString &interface, const QString &method,
                      const QVariantList &arguments) const;

    UiUnderTest &m_ui;
    QTemporaryDir m_state;
    QDBusConnection m_bus;
    ChildProcess m_process;
};
