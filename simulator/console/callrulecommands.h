// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "servicetalk.h"

/// The commands for the filter rules of calls. They act as the device management.
class CallRuleCommands : public ServiceTalk
{
    Q_OBJECT

public:
    /// If \a areThere is false, the telephony has no rules, and the commands say so.
    CallRuleCommands(const QDBusConnection &systemBus, bool areThere, Transcript &transcript,
                     QObject *parent = nullptr);

    QVector<Command> commands() override;

    /// Returns the names of what a rule can do with a call.
    static QStringList actionNames();

    /// The rules for calls that are dialled are maps with "imsi" and "action" (a name or a number).
    /// The default comes first and has no IMSI.
    ServiceList *dialList() { return m_dialList; }
    /// The rules for incoming calls, in the same form.
    ServiceList *incomingList() { return m_incomingList; }

private:
    void set(const QString &filter, const QString &imsi, const QString &action,
             const Finish &finish);
    void setDefault(const QString &filter, const QString &action, const Finish &finish);

    const bool m_areThere;
    ServiceList *const m_dialList;
    ServiceList *const m_incomingList;
};
