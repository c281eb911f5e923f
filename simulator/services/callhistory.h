// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QStringList>

/// The handset's call history, an application that others can launch:
/// "com.nokia.telephony.callhistory" on the session bus. The scriptable member is its interface.
class CallHistory : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.nokia.MApplicationIf")

public:
    explicit CallHistory(QObject *parent = nullptr);

    /// Registers its object and its name on \a bus.
    bool start(QDBusConnection bus);

    Q_SCRIPTABLE void launch(const QStringList &arguments) { Q_EMIT launched(arguments); }

Q_SIGNALS:
    void launched(const QStringList &arguments);
};
