// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "servicetalk.h"

/// The commands for the alarms of the handset's time daemon.
class AlarmCommands : public ServiceTalk
{
    Q_OBJECT

public:
    AlarmCommands(const QDBusConnection &systemBus, Transcript &transcript,
                  QObject *parent = nullptr);

    QVector<Command> commands() override;

    /// The alarms are maps with "cookie", "title", "number" and "due", in milliseconds since
    /// 1970-01-01 00:00 UTC.
    ServiceList *list() { return m_list; }

private:
    void cancel(uint cookie, const Finish &finish);

    ServiceList *const m_list;
};
