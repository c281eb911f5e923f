// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "telephonystack.h"

#include "telephonycontrol.h"

#include <QDBusArgument>
#include <QDBusMetaType>

#include <algorithm>

QDBusArgument &operator<<(QDBusArgument &argument, const ModemEntry &entry)
{
    argument.beginStructure();
    argument << entry.path << entry.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, ModemEntry &entry)
{
    argument.beginStructure();
    argument >> entry.path >> entry.properties;
    argument.endStructure();
    return argument;
}

TelephonyStack::TelephonyStack(const QString &stateFolder, QObject *parent)
    : TelephonyStack(stateFolder, TelephonyFile(stateFolder).load(), parent)
{
}

TelephonyStack::TelephonyStack(const QString &stateFolder, const TelephonyFile::Content &content,
                               QObject *parent)
    : QObject(parent)
    , m_file(stateFolder)
    , m_bus(QString())
    , m_sims(content.sims)
    , m_dialFilter(content.dial)
    , m_incomingFilter(content.incoming)
{
    registerSimTypes();
    registerFilterRuleTypes();
    qDBusRegisterMetaType<ModemEntry>();
    qDBusRegisterMetaType<ModemEntries>();
    connect(&m_dialFilter, &CallFilter::changed, this, &TelephonyStack::save);
    connect(&m_incomingFilter, &CallFilter::changed, this, &TelephonyStack::save);
    for (auto it = m_sims.cbegin(); it != m_sims.cend(); ++it)
        m_modems.emplace(it.key(), std::make_unique<Modem>(it.key(), it.value()));
    new TelephonyControl(*this);
}

TelephonyStack::~TelephonyStack() = default;

bool TelephonyStack::start(const QDBusConnection &bus)
{
    m_bus = bus;
    return m_dialFilter.start(m_bus, QStringLiteral("/mdm/parleyfilter/dial"))
        && m_incomingFilter.start(m_bus, QStringLiteral("/mdm/parleyfilter/incoming"))
        && std::all_of(m_modems.cbegin(), m_modems.cend(),
                       [this](const auto &modem) { return modem.second->start(m_bus); })
        && m_bus.registerObject(QStringLiteral("/"), this,
                                QDBusConnection::ExportScriptableContents
                                    | QDBusConnection::ExportAdaptors)
        && m_bus.registerService(QStringLiteral("org.ofono"));
}

void TelephonyStack::addModem(const QString &path)
{
    m_sims.insert(path, {});
    save();
    auto modem = std::make_unique<Modem>(path, Sim());
    modem->start(m_bus);
    Q_EMIT ModemAdded(QDBusObjectPath(path), modem->GetProperties());
    m_modems.emplace(path, std::move(modem));
}

void TelephonyStack::removeModem(const QString &path)
{
    m_sims.remove(path);
    save();
    m_modems.erase(path);
    Q_EMIT ModemRemoved(QDBusObjectPath(path));
}

void TelephonyStack::insertSim(const QString &path, const QString &imsi)
{
    m_sims[path] = {imsi, false};
    save();
    m_modems.at(path)->setSim(m_sims.value(path));
}

void TelephonyStack::removeSim(const QString &path)
{
    m_sims[path] = {};
    save();
    m_modems.at(path)->setSim({});
}

void TelephonyStack::lockSim(const QString &path)
{
    m_sims[path].locked = true;
    save();
    m_modems.at(path)->reset(m_sims.value(path));
}

void TelephonyStack::unlockSim(const QString &path)
{
    m_sims[path].locked = false;
    save();
    m_modems.at(path)->setSim(m_sims.value(path));
}

CallFilter *TelephonyStack::filter(const QString &name)
{
    if (name == QLatin1String("dial"))
        return &m_dialFilter;
    if (name == QLatin1String("incoming"))
        return &m_incomingFilter;
    return nullptr;
}

ModemEntries TelephonyStack::GetModems() const
{
    ModemEntries entries;
    for (const auto &[path, modem] : m_modems)
        entries.append({QDBusObjectPath(path), modem->GetProperties()});
    return entries;
}

/// Saves the state before others are told of it.
void TelephonyStack::save() const
{
    m_file.save({m_sims, m_dialFilter.content(), m_incomingFilter.content()});
}
