// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "networkregistration.h"

#include "modem.h"
#include "phoneline.h"

#include <utility>

NetworkRegistration::NetworkRegistration(Modem &modem, PhoneLine &line)
    : QDBusAbstractAdaptor(&modem)
    , m_modem(modem)
    , m_line(line)
    , m_told(properties())
{
    connect(&line, &PhoneLine::registeredChanged, this, &NetworkRegistration::update);
}

QVariantMap NetworkRegistration::GetProperties()
{
    m_modem.offers(interface());
    return properties();
}

QVariantMap NetworkRegistration::properties() const
{
    const bool isRegistered = m_line.isRegistered();
    return {{QStringLiteral("Status"),
             isRegistered ? QStringLiteral("registered") : QStringLiteral("searching")},
            {QStringLiteral("Mode"), QStringLiteral("auto")},
            {QStringLiteral("Name"), m_line.networkName()},
            {QStringLiteral("Strength"), QVariant::fromValue(m_line.strength())}};
}

void NetworkRegistration::update()
{
    const QVariantMap before = std::exchange(m_told, properties());
    if (!m_modem.has(interface()))
        return;
    for (auto it = m_told.cbegin(); it != m_told.cend(); ++it) {
        if (before.value(it.key()) != it.value())
            Q_EMIT PropertyChanged(it.key(), QDBusVariant(it.value()));
    }
}
