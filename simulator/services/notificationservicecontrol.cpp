// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "notificationservicecontrol.h"

NotificationServiceControl::NotificationServiceControl(NotificationService &service)
    : QDBusAbstractAdaptor(&service)
    , m_service(service)
{
    connect(&service, &NotificationService::shown, this, &NotificationServiceControl::Shown);
}

NotificationList NotificationServiceControl::List() const
{
    return m_service.notifications();
}

void NotificationServiceControl::Click(uint id, const QString &action)
{
    if (!m_service.has(id))
        refuse(id);
    else if (action.isEmpty() || !m_service.has(id, action))
        m_service.sendErrorReply(
            QDBusError::InvalidArgs,
            QStringLiteral("notification %1 has no action \"%2\"").arg(id).arg(action));
    else
        m_service.choose(id, action);
}

void NotificationServiceControl::Dismiss(uint id)
{
    if (!m_service.dismiss(id))
        refuse(id);
}

void NotificationServiceControl::refuse(uint id)
{
    m_service.sendErrorReply(QDBusError::InvalidArgs,
                             QStringLiteral("there is no notification %1").arg(id));
}
