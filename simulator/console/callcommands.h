// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "servicetalk.h"

/// The commands for the network and for the other sides of calls. What the handset dials and sends
/// is recorded.
class CallCommands : public ServiceTalk
{
    Q_OBJECT

public:
    /// \a service is the name of the telephony, or of the modems, on \a systemBus.
    CallCommands(const QDBusConnection &systemBus, const QString &service, Transcript &transcript,
                 QObject *parent = nullptr);

    QVector<Command> commands() override;

    /// The calls are maps with "modem" (path), "number" ("withheld" if it is) and "state".
    ServiceList *list() { return m_list; }

private:
    void ring(const QString &number, const QString &modem, const Finish &finish);

    ServiceList *const m_list;
};
