// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "filterrule.h"
#include "sim.h"

#include <QDBusAbstractAdaptor>

class CallFilter;
class TelephonyStack;

/// What the user of a simulated handset can do with its SIMs, and device management with the rules
/// for them. Each method answers with an error that says what is wrong with its arguments.
///
/// A modem is named by its path, with or without the slash, and a filter "dial" or "incoming".
class TelephonyControl : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.nimbo.simulator.Telephony")

public:
    /// Stands beside the interface of \a stack, which owns it.
    explicit TelephonyControl(TelephonyStack &stack);

public Q_SLOTS:
    /// What is in each modem.
    SimsByModem ListSims() const;
    /// Puts a SIM into a modem, a new one if there is none of that name; with an empty name into
    /// the first that has none. The modem's path.
    QString InsertSim(const QString &imsi, const QString &modem);
    void RemoveSim(const QString &modem);
    /// Has the modem forget the PIN, as when it is reset.
    void LockSim(const QString &modem);
    /// Enters the PIN.
    void UnlockSim(const QString &modem);
    /// The modem goes, and its SIM with it.
    void RemoveModem(const QString &modem);

    /// Gives a SIM's rule another action, or adds a rule.
    void SetRule(const QString &filter, const QString &imsi, uint action);
    void RemoveRule(const QString &filter, const QString &imsi);
    /// Replaces all rules; a SIM may have several.
    void SetRules(const QString &filter, const FilterRules &rules);
    void SetDefaultAction(const QString &filter, uint action);

Q_SIGNALS:
    void ModemAdded(const QString &modem);
    void ModemRemoved(const QString &modem);
    void SimInserted(const QString &modem, const QString &imsi);
    void SimRemoved(const QString &modem);
    void SimLocked(const QString &modem);
    void SimUnlocked(const QString &modem);

    void RuleSet(const QString &filter, const QString &imsi, uint action);
    void RuleRemoved(const QString &filter, const QString &imsi);
    void RulesSet(const QString &filter, const FilterRules &rules);
    void DefaultActionSet(const QString &filter, uint action);

private:
    bool hasModem(const QString &path);
    bool hasSim(const QString &path);
    bool accepts(const QString &imsi);
    CallFilter *findFilter(const QString &name);
    void refuse(const QString &why);

    TelephonyStack &m_stack;
};
