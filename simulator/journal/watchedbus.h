// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "busmonitor.h"
#include "uitraffic.h"

#include <QDBusConnection>

/// One bus of the handset, watched for what the call UI sends and gets on it.
class WatchedBus : public QObject
{
    Q_OBJECT

public:
    struct Bus
    {
        QString name; ///< For people.
        QString address;
        QDBusConnection connection; ///< The handset's own.
    };

    /// The call UI is any process that runs \a uiProgram, the canonical path of an executable.
    WatchedBus(Bus bus, QString uiProgram, QObject *parent = nullptr);

    /// Watches from now on.
    void start();

    QString name() const { return m_bus.name; }
    /// False before start() and after ended().
    bool isWatched() const { return m_isWatched; }

    /// Has marked() emitted with \a mark when everything sent on the bus before this call has been
    /// seen.
    void mark(const QString &mark) const;

Q_SIGNALS:
    /// As UiTraffic::seen().
    void seen(const BusMessage &message, bool incoming, const QString &peer);
    void marked(const QString &mark);
    /// It is not, or no longer, watched; \a why is a sentence. Comes once.
    void ended(const QString &why);

private:
    void askWhetherUi(const QString &connection, const std::function<void(bool)> &answer);
    void askForOwners();
    void askForOwner(const QString &name);
    void end(const QString &why);

    const Bus m_bus;
    const QString m_uiProgram;
    BusMonitor m_monitor;
    UiTraffic m_traffic;
    QMap<QString, QString> m_owners; ///< Of the names that were taken before.
    QStringList m_connections; ///< That were there before.
    int m_awaitedOwners = 0;
    bool m_isWatched = false;
};
