// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "servicetalk.h"

/// The filter rules for the calls of the handset's SIMs, as device management sets them: lists and
/// changes them.
class CallRuleCommands : public ServiceTalk
{
    Q_OBJECT

public:
    CallRuleCommands(const QDBusConnection &systemBus, Transcript &transcript,
                     QObject *parent = nullptr);

    QVector<Command> commands() override;

    /// What becomes of calls that are dialled: maps with "imsi" and "action" (its name, or a
    /// number), the default first, without an IMSI.
    ServiceList *dialList() { return m_dialList; }
    /// The same for calls that come in.
    ServiceList *incomingList() { return m_incomingList; }

private:
    void set(const QString &filter, const QString &imsi, const QString &action,
             const Finish &finish);
    void setDefault(const QString &filter, const QString &action, const Finish &finish);

    ServiceList *const m_dialList;
    ServiceList *const m_incomingList;
};
