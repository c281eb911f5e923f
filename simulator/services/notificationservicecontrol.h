// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "notificationservice.h"

#include <QDBusAbstractAdaptor>

/// What the user of a simulated handset can do with its notifications.
class NotificationServiceControl : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.nimbo.simulator.NotificationService")

public:
    /// Stands beside the interface of \a service, which owns it.
    explicit NotificationServiceControl(NotificationService &service);

public Q_SLOTS:
    /// All that are shown.
    NotificationList List() const;
    /// Chooses an action. An error if there is no such notification, or it has no such action.
    void Click(uint id, const QString &action);
    /// Closes a notification. An error if there is no such notification.
    void Dismiss(uint id);

Q_SIGNALS:
    /// Shown anew, or changed.
    void Shown(uint id, const QString &summary, const QString &body);

private:
    void refuse(uint id);

    NotificationService &m_service;
};
