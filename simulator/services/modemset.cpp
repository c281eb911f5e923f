// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "modemset.h"

ModemSet::ModemSet(const QString &stateFolder)
    : ModemSet(stateFolder, TelephonyFile(stateFolder).load())
{
}

ModemSet::ModemSet(const QString &stateFolder, const TelephonyFile::Content &content)
    : m_dialFilter(content.dial)
    , m_incomingFilter(content.incoming)
    , m_file(stateFolder)
{
    registerSimTypes();
    registerFilterRuleTypes();
    connect(&m_dialFilter, &CallFilter::changed, this, [this] { save(sims()); });
    connect(&m_incomingFilter, &CallFilter::changed, this, [this] { save(sims()); });
    for (auto it = content.sims.cbegin(); it != content.sims.cend(); ++it)
        addLine(it.key(), it.value());
}

ModemSet::~ModemSet() = default;

QString ModemSet::pathOf(const QString &modem)
{
    return modem.startsWith(QLatin1Char('/')) ? modem : QLatin1Char('/') + modem;
}

SimsByModem ModemSet::sims() const
{
    SimsByModem sims;
    for (const auto &[path, line] : m_lines)
        sims.insert(path, line->sim());
    return sims;
}

void ModemSet::addModem(const QString &path)
{
    PhoneLine &line = addLine(path, {});
    save(sims());
    make(path, line);
    Q_EMIT lineAdded(path);
}

void ModemSet::removeModem(const QString &path)
{
    const auto removed = m_lines.extract(path);
    save(sims());
    removed.mapped()->calls().lose();
    unmake(path);
}

void ModemSet::insertSim(const QString &path, const QString &imsi)
{
    setSim(path, {imsi, false});
}

void ModemSet::removeSim(const QString &path)
{
    setSim(path, {});
}

/// What knows the SIM sees another one.
void ModemSet::lockSim(const QString &path)
{
    const QString imsi = m_lines.at(path)->sim().imsi;
    m_lines.at(path)->setSim({});
    setSim(path, {imsi, true});
}

void ModemSet::unlockSim(const QString &path)
{
    setSim(path, {m_lines.at(path)->sim().imsi, false});
}

CallFilter *ModemSet::filter(const QString &name)
{
    if (name == QLatin1String("dial"))
        return &m_dialFilter;
    if (name == QLatin1String("incoming"))
        return &m_incomingFilter;
    return nullptr;
}

PhoneLine &ModemSet::addLine(const QString &path, const Sim &sim)
{
    return *m_lines.emplace(path, std::make_unique<PhoneLine>(sim)).first->second;
}

/// The state is kept before others are told of it.
void ModemSet::setSim(const QString &path, const Sim &sim)
{
    SimsByModem next = sims();
    next[path] = sim;
    save(next);
    m_lines.at(path)->setSim(sim);
}

void ModemSet::save(const SimsByModem &sims) const
{
    m_file.save({sims, m_dialFilter.content(), m_incomingFilter.content()});
}
