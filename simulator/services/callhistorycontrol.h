// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDBusAbstractAdaptor>
#include <QStringList>

class CallHistory;

/// The interface through which the simulator follows the call history.
class CallHistoryControl : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.nimbo.simulator.CallHistory")

public:
    /// An adaptor on the object of \a history, which owns it.
    explicit CallHistoryControl(CallHistory &history);

Q_SIGNALS:
    void Launched(const QStringList &arguments);
};
