// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "callalarm.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QSet>
#include <QVector>

#include <functional>

/// The notification server of the session, "org.freedesktop.Notifications" on the session bus
/// (Desktop Notifications Specification 1.2). It may be absent, be replaced or end at any time; the
/// ids of its notifications are void then. Nothing blocks until it answers.
///
/// Of several failures, only the first is logged until a notification is shown again.
class NotificationServer : public QObject
{
    Q_OBJECT

public:
    /// Why a notification was closed. Other values are possible, too.
    enum Reason : uint { Expired = 1, Dismissed = 2, Closed = 3, Undefined = 4 };

    explicit NotificationServer(QDBusConnection sessionBus, QObject *parent = nullptr);
    /// Waits until the bus has taken all requests, for a second at most.
    ~NotificationServer() override;

    /// Looks for the server now, and watches for it from then on.
    void start();

    /// Returns whether the server is there and has said what it is capable of.
    bool isReady() const { return m_isReady; }
    /// Asks the bus to start the server if there is none. It emits ready() when the server is
    /// there, and unavailable() if the server may be started later.
    void wake();

    /// Shows an alarm until it is closed. Calls \a handler with the id of the notification, or with
    /// 0 after an error. The handler does not run if the server ends before it answers. If \a
    /// context is destroyed before that, the notification is closed. Call this only if the server
    /// is ready.
    ///
    /// There is no limit to the time that the server may take, because the id of a notification
    /// that is shown later would be unknown.
    void show(const CallAlarm::Notification &notification, QObject *context,
              const std::function<void(uint id)> &handler);
    /// Closes a notification of show(). It does not emit closed() for it unless the server does.
    void close(uint id);

    /// Calls \a handler when everything that the server has said so far has arrived, unless \a
    /// context is destroyed before.
    void settle(QObject *context, const std::function<void()> &handler);

Q_SIGNALS:
    /// A server is there that was not there before.
    void ready();
    /// The server has gone, or could not be started.
    void unavailable();
    /// A notification was closed. It may be another program's.
    void closed(uint id, uint reason);
    /// An action of a notification was chosen. It may be another program's.
    void invoked(uint id, const QString &action);

private Q_SLOTS:
    void signalled(const QDBusMessage &signal);

private:
    void askForOwner();
    void setOwner(const QString &owner);
    void setCapabilities(const QDBusMessage &answer);
    void shown(const QDBusMessage &answer, bool isWanted, const std::function<void(uint)> &handler);
    void emitSignal(const QDBusMessage &signal);
    void emitEarlySignals(uint id);
    void report(const char *problem, const QDBusMessage &answer);
    QDBusMessage makeCall(const QString &method, const QVariantList &arguments = {}) const;

    QDBusConnection m_bus;
    QString m_owner; ///< The unique name of the server; empty if there is none.
    bool m_isReady = false;
    bool m_isWaking = false;
    bool m_hasBodyMarkup = false;
    bool m_hasReported = false;
    int m_underWay = 0; ///< How many notifications the server was asked to show.
    QSet<uint> m_ids; ///< The notifications of show() that are shown.
    /// What the server has said of unknown notifications while some are under way. A signal may be
    /// delivered before the answer that has the id.
    QVector<QDBusMessage> m_earlySignals;
};
