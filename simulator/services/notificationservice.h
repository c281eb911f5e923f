// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "notificationlist.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QMap>
#include <QObject>

/// The handset's notification service, "org.freedesktop.Notifications" on the session bus. The
/// scriptable members are its interface, that of the Desktop Notifications Specification 1.2 with
/// one method of the platform. The notifications are lost when the process ends.
class NotificationService : public QObject, public QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    explicit NotificationService(QObject *parent = nullptr);

    /// Registers its object and its name on \a bus, on which it also makes the calls of remote
    /// actions.
    bool start(const QDBusConnection &bus);

    /// Returns all notifications in the order of their ids.
    NotificationList notifications() const;

    /// Returns whether a notification is shown and, if \a action is not empty, has that action.
    bool has(uint id, const QString &action = {}) const;
    /// Chooses an action of a notification as the user. This makes its remote call and closes the
    /// notification.
    void choose(uint id, const QString &action);
    /// Closes a notification as the user. Returns false if it is not shown.
    bool dismiss(uint id);

    /// Shows a notification and returns its id. This is \a replacesId if such a notification is
    /// shown, otherwise one that was never used before.
    Q_SCRIPTABLE uint Notify(const QString &appName, uint replacesId, const QString &appIcon,
                             const QString &summary, const QString &body,
                             const QStringList &actions, const QVariantMap &hints,
                             int expireTimeout);
    /// Replies with an empty error if the notification is not shown.
    Q_SCRIPTABLE void CloseNotification(uint id);
    Q_SCRIPTABLE QStringList GetCapabilities() const;
    Q_SCRIPTABLE QString GetServerInformation(QString &vendor, QString &version,
                                              QString &specVersion) const;
    Q_SCRIPTABLE NotificationList GetNotificationsByCategory(const QString &category) const;

Q_SIGNALS:
    Q_SCRIPTABLE void NotificationClosed(uint id, uint reason);
    Q_SCRIPTABLE void ActionInvoked(uint id, const QString &action);

    /// A notification is new or has changed.
    void shown(uint id, const QString &summary, const QString &body);

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    enum Reason : uint { Expired = 1, Dismissed = 2, Closed = 3 };

    struct Shown
    {
        NotificationData data;
        int timer = 0; ///< Its expiry; 0 if it does not expire.
    };

    bool close(uint id, Reason reason);
    void call(const NotificationData &data, const QString &action);

    QDBusConnection m_bus;
    QMap<uint, Shown> m_shown;
    uint m_lastId = 0;
};
