// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "notificationservice.h"

#include <QDBusAbstractAdaptor>

/// The interface through which the simulator acts as the user on notifications.
class NotificationServiceControl : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.nimbo.simulator.NotificationService")

public:
    /// An adaptor on the object of \a service, which owns it.
    explicit NotificationServiceControl(NotificationService &service);

public Q_SLOTS:
    /// Returns all notifications.
    NotificationList List() const;
    /// Chooses an action. Replies with an error if there is no such notification or action.
    void Click(uint id, const QString &action);
    /// Closes a notification. Replies with an error if there is no such notification.
    void Dismiss(uint id);

Q_SIGNALS:
    /// A notification is new or has changed.
    void Shown(uint id, const QString &summary, const QString &body);

private:
    void refuse(uint id);

    NotificationService &m_service;
};
