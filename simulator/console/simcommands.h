// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "servicetalk.h"

/// The commands for the SIMs in the handset's modems.
class SimCommands : public ServiceTalk
{
    Q_OBJECT

public:
    /// \a service is the name of the telephony, or of the modems, on \a systemBus.
    SimCommands(const QDBusConnection &systemBus, const QString &service, Transcript &transcript,
                QObject *parent = nullptr);

    QVector<Command> commands() override;

    /// The modems are maps with "modem" (path), "imsi" (empty without a SIM) and "locked".
    ServiceList *list() { return m_list; }

private:
    void insert(const QString &imsi, const QString &modem, const Finish &finish);

    ServiceList *const m_list;
};
