// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "telephonycontrol.h"

#include "callfilter.h"
#include "modem.h"
#include "modemset.h"

#include <algorithm>

TelephonyControl::TelephonyControl(ModemSet &modems)
    : QDBusAbstractAdaptor(&modems)
    , m_modems(modems)
{
}

SimsByModem TelephonyControl::ListSims() const
{
    return m_modems.sims();
}

QString TelephonyControl::InsertSim(const QString &imsi, const QString &modem)
{
    if (!accepts(imsi))
        return {};
    const SimsByModem sims = m_modems.sims();
    const auto firstEmpty = std::find(sims.cbegin(), sims.cend(), Sim());
    if (modem.isEmpty() && firstEmpty == sims.cend()) {
        refuse(QStringLiteral("there is no modem without a SIM"));
        return {};
    }
    QString path = modem.isEmpty() ? firstEmpty.key() : ModemSet::pathOf(modem);
    if (sims.value(path).isPresent()) {
        refuse(QStringLiteral("there is a SIM in %1 already").arg(path));
        return {};
    }
    if (!sims.contains(path)) {
        if (!m_modems.isExtensible()) {
            refuse(QStringLiteral("there is no modem %1, and oFono takes no others while it runs")
                       .arg(path));
            return {};
        }
        if (!Modem::isPath(path)) {
            refuse(QStringLiteral("\"%1\" cannot be a modem: its name has letters, digits and _")
                       .arg(modem));
            return {};
        }
        m_modems.addModem(path);
        Q_EMIT ModemAdded(path);
    }
    m_modems.insertSim(path, imsi);
    Q_EMIT SimInserted(path, imsi);
    return path;
}

void TelephonyControl::RemoveSim(const QString &modem)
{
    const QString path = ModemSet::pathOf(modem);
    if (!hasSim(path))
        return;
    m_modems.removeSim(path);
    Q_EMIT SimRemoved(path);
}

void TelephonyControl::LockSim(const QString &modem)
{
    const QString path = ModemSet::pathOf(modem);
    if (!hasSim(path))
        return;
    if (m_modems.sims().value(path).locked) {
        refuse(QStringLiteral("the SIM in %1 is locked").arg(path));
        return;
    }
    m_modems.lockSim(path);
    Q_EMIT SimLocked(path);
}

void TelephonyControl::UnlockSim(const QString &modem)
{
    const QString path = ModemSet::pathOf(modem);
    if (!hasSim(path))
        return;
    if (!m_modems.sims().value(path).locked) {
        refuse(QStringLiteral("the SIM in %1 is not locked").arg(path));
        return;
    }
    m_modems.enterPin(path);
    Q_EMIT SimUnlocked(path);
}

void TelephonyControl::RemoveModem(const QString &modem)
{
    const QString path = ModemSet::pathOf(modem);
    if (!hasModem(path))
        return;
    m_modems.removeModem(path);
    Q_EMIT ModemRemoved(path);
}

void TelephonyControl::SetRule(const QString &filter, const QString &imsi, uint action)
{
    CallFilter *const found = findFilter(filter);
    if (found == nullptr || !accepts(imsi))
        return;
    found->setRule(imsi, action);
    Q_EMIT RuleSet(filter, imsi, action);
}

void TelephonyControl::RemoveRule(const QString &filter, const QString &imsi)
{
    CallFilter *const found = findFilter(filter);
    if (found == nullptr || !accepts(imsi))
        return;
    if (found->removeRule(imsi))
        Q_EMIT RuleRemoved(filter, imsi);
    else
        refuse(QStringLiteral("there is no %1 rule for %2").arg(filter, imsi));
}

void TelephonyControl::SetRules(const QString &filter, const FilterRules &rules)
{
    CallFilter *const found = findFilter(filter);
    const auto isAccepted = [this](const FilterRule &rule) { return accepts(rule.imsi); };
    if (found == nullptr || !std::all_of(rules.cbegin(), rules.cend(), isAccepted))
        return;
    found->setRules(rules);
    Q_EMIT RulesSet(filter, rules);
}

void TelephonyControl::SetDefaultAction(const QString &filter, uint action)
{
    CallFilter *const found = findFilter(filter);
    if (found == nullptr)
        return;
    found->setDefaultAction(action);
    Q_EMIT DefaultActionSet(filter, action);
}

bool TelephonyControl::hasModem(const QString &path)
{
    const bool has = m_modems.sims().contains(path);
    if (!has)
        refuse(QStringLiteral("there is no modem %1").arg(path));
    return has;
}

bool TelephonyControl::hasSim(const QString &path)
{
    if (!hasModem(path))
        return false;
    const bool has = m_modems.sims().value(path).isPresent();
    if (!has)
        refuse(QStringLiteral("there is no SIM in %1").arg(path));
    return has;
}

bool TelephonyControl::accepts(const QString &imsi)
{
    const bool accepted = isImsi(imsi);
    if (!accepted)
        refuse(QStringLiteral("\"%1\" is no IMSI, which is 1 to 15 digits").arg(imsi));
    return accepted;
}

CallFilter *TelephonyControl::findFilter(const QString &name)
{
    CallFilter *const filter = m_modems.filter(name);
    if (filter == nullptr)
        refuse(QStringLiteral("there is no filter \"%1\", only dial and incoming").arg(name));
    return filter;
}

void TelephonyControl::refuse(const QString &why)
{
    m_modems.sendErrorReply(QDBusError::InvalidArgs, why);
}
