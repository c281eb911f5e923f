// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "telephonystack.h"

#include "networkcontrol.h"
#include "telephonycontrol.h"

#include <algorithm>

TelephonyStack::TelephonyStack(const QString &stateFolder)
    : ModemSet(stateFolder)
    , m_bus(QString())
{
    registerOfonoObjectTypes();
    for (const auto &[path, line] : lines())
        m_modems.emplace(path, std::make_unique<Modem>(path, *line));
    new TelephonyControl(*this);
    new NetworkControl(*this);
}

TelephonyStack::~TelephonyStack() = default;

bool TelephonyStack::start(const QDBusConnection &bus)
{
    m_bus = bus;
    const bool isStarted = m_dialFilter.start(m_bus, QStringLiteral("/mdm/parleyfilter/dial"))
        && m_incomingFilter.start(m_bus, QStringLiteral("/mdm/parleyfilter/incoming"))
        && std::all_of(m_modems.cbegin(), m_modems.cend(),
                       [this](const auto &modem) { return modem.second->start(m_bus); })
        && m_bus.registerObject(QStringLiteral("/"), this,
                                QDBusConnection::ExportScriptableContents
                                    | QDBusConnection::ExportAdaptors)
        && m_bus.registerService(QStringLiteral("org.ofono"));
    for (const auto &[path, line] : lines()) {
        if (isStarted && line->isReady())
            line->announceReady();
    }
    return isStarted;
}

OfonoObjects TelephonyStack::GetModems() const
{
    OfonoObjects entries;
    for (const auto &[path, modem] : m_modems)
        entries.append({QDBusObjectPath(path), modem->GetProperties()});
    return entries;
}

void TelephonyStack::make(const QString &path, PhoneLine &line)
{
    auto modem = std::make_unique<Modem>(path, line);
    modem->start(m_bus);
    Q_EMIT ModemAdded(QDBusObjectPath(path), modem->GetProperties());
    m_modems.emplace(path, std::move(modem));
}

void TelephonyStack::unmake(const QString &path)
{
    m_modems.erase(path);
    Q_EMIT ModemRemoved(QDBusObjectPath(path));
}
