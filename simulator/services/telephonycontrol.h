// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "filterrule.h"
#include "sim.h"

#include <QDBusAbstractAdaptor>

class CallFilter;
class ModemSet;

/// The interface through which the simulator acts as the user on SIMs, and as the device management
/// on rules. A method whose arguments are wrong replies with an error that says why.
///
/// A modem is given as its path, with or without the slash. A filter is "dial" or "incoming".
class TelephonyControl : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.nimbo.simulator.Telephony")

public:
    /// An adaptor on the object of \a modems, which owns it.
    explicit TelephonyControl(ModemSet &modems);

public Q_SLOTS:
    /// Returns the SIM of each modem.
    SimsByModem ListSims() const;
    /// Inserts a SIM into a modem, which is added if it does not exist. Without a modem, inserts it
    /// into the first one that is empty. Returns the path of the modem.
    QString InsertSim(const QString &imsi, const QString &modem);
    void RemoveSim(const QString &modem);
    /// Resets the modem, so that the SIM waits for its PIN.
    void LockSim(const QString &modem);
    /// Enters the PIN.
    void UnlockSim(const QString &modem);
    /// Removes the modem together with its SIM.
    void RemoveModem(const QString &modem);

    /// Changes the rule of a SIM, or adds one.
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

    ModemSet &m_modems;
};
