// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "busmonitor.h"
#include "uitraffic.h"

#include <QDBusConnection>

/// Watches one bus of the handset for messages to and from the call UI.
class WatchedBus : public QObject
{
    Q_OBJECT

public:
    struct Bus
    {
        QString name; ///< For the user.
        QString address;
        QDBusConnection connection; ///< A connection of the handset.
    };

    /// The call UI is any process that runs \a uiProgram, the canonical path of an executable.
    WatchedBus(Bus bus, QString uiProgram, QObject *parent = nullptr);

    /// Starts to watch. Emits ended() if that is not possible.
    void start();

    QString name() const { return m_bus.name; }
    /// Returns false before start() and after ended().
    bool isWatched() const { return m_isWatched; }

    /// Emits marked() with \a mark after all messages that were sent before this call.
    void mark(const QString &mark) const;

Q_SIGNALS:
    /// As UiTraffic::seen().
    void seen(const BusMessage &message, bool incoming, const QString &peer);
    void marked(const QString &mark);
    /// The bus is not, or no longer, watched. \a why is a sentence. Emitted once.
    void ended(const QString &why);

private:
    void askWhetherUi(const QString &connection, const std::function<void(bool)> &answer);
    void askForOwners();
    void askForOwner(const QString &name);
    void end(const QString &why);

    const Bus m_bus;
    const QString m_uiProgram;
    UiTraffic m_traffic;
    BusMonitor m_monitor; ///< Destroyed first, because its thread emits signals to the traffic.
    QMap<QString, QString> m_owners; ///< The owners of well-known names before start().
    QStringList m_connections; ///< The connections before start().
    int m_awaitedOwners = 0;
    bool m_isWatched = false;
};
