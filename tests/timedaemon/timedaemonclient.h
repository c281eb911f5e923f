// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "alarm.h"
#include "literals.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QVector>

#include <functional>

// Every system has these two accounts, so that the bus admits them.
constexpr uint nobody = 65534;
constexpr uint daemonUser = 1;

const QString timed = u"com.nimbo.timed"_s;
const QString timedPath = u"/com/nimbo/timed"_s;
const QString dueAlarms = u"com.nimbo.parley.DueAlarms"_s;

/// Calls \a connect as another user. A bus takes the effective user of the process that connects.
/// Only root can do this.
void asUser(uint user, const std::function<void()> &connect);

/// A process of a user, as the bus and the time daemon see it. It hears the daemon's signals.
class TimeDaemonClient : public QObject
{
    Q_OBJECT

public:
    TimeDaemonClient(const QString &address, uint user, const QString &name);
    ~TimeDaemonClient() override;

    bool isConnected() const { return m_bus.isConnected(); }

    QDBusMessage call(const QString &method, const QVariantList &arguments = {},
                      const QString &interface = timed) const;

    /// Adds an alarm. Returns its cookie, or 0 if the call fails.
    uint add(qlonglong ticker, const QString &title = {}) const;
    QVariantList query() const;
    AttributesByCookie attributes(const QList<uint> &cookies) const;
    QList<uint> due() const;

    /// The alarm lists that it was told of: the times of each alarm.
    QVector<TickersByCookie> told() const { return m_told; }
    int dueChanges() const { return m_dueChanges; }
    void forget();

private Q_SLOTS:
    void hear(const QDBusMessage &message);

private:
    QDBusConnection m_bus;
    QVector<TickersByCookie> m_told;
    int m_dueChanges = 0;
};
