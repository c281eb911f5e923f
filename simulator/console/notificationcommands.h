// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "servicetalk.h"

/// The commands for the notifications of the handset. They act as its user.
class NotificationCommands : public ServiceTalk
{
    Q_OBJECT

public:
    NotificationCommands(const QDBusConnection &sessionBus, Transcript &transcript,
                         QObject *parent = nullptr);

    QVector<Command> commands() override;

    /// The notifications are maps with "id", "application", "summary", "body", "alarm" (the cookie
    /// of the alarm that it announces; 0 for none) and "actions", a list of maps with the "name"
    /// and the "label" of each action besides the default one.
    ServiceList *list() { return m_list; }

private:
    ServiceList *const m_list;
};
