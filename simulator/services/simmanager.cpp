// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "simmanager.h"

#include "modem.h"
#include "simfiles.h"

#include <QStringList>

#include <utility>

namespace {

QVariantMap propertiesOf(const Sim &sim)
{
    QVariantMap properties{{QStringLiteral("Present"), sim.isPresent()}};
    if (!sim.isPresent())
        return properties;
    properties.insert(QStringLiteral("CardIdentifier"), SimFiles::cardIdentifier(sim));
    properties.insert(QStringLiteral("PinRequired"),
                      sim.locked ? QStringLiteral("pin") : QStringLiteral("none"));
    if (sim.locked)
        return properties;
    properties.insert(QStringLiteral("SubscriberIdentity"), sim.imsi);
    // The code of a simulated network has two digits if the IMSI is long enough.
    if (sim.imsi.size() >= 5) {
        properties.insert(QStringLiteral("MobileCountryCode"), sim.imsi.left(3));
        properties.insert(QStringLiteral("MobileNetworkCode"), sim.imsi.mid(3, 2));
    }
    return properties;
}

/// The order in which oFono can read them.
const QStringList names{QStringLiteral("Present"),           QStringLiteral("CardIdentifier"),
                        QStringLiteral("PinRequired"),       QStringLiteral("SubscriberIdentity"),
                        QStringLiteral("MobileCountryCode"), QStringLiteral("MobileNetworkCode")};

} // namespace

SimManager::SimManager(Modem &modem, Sim sim)
    : QDBusAbstractAdaptor(&modem)
    , m_modem(modem)
    , m_sim(std::move(sim))
{
}

void SimManager::setSim(const Sim &sim)
{
    const QVariantMap before = propertiesOf(std::exchange(m_sim, sim));
    if (!m_modem.has(interface()))
        return;
    const QVariantMap now = propertiesOf(m_sim);
    for (const QString &name : names) {
        if (now.contains(name) && now.value(name) != before.value(name))
            Q_EMIT PropertyChanged(name, QDBusVariant(now.value(name)));
    }
}

QVariantMap SimManager::GetProperties()
{
    m_modem.offers(interface());
    return propertiesOf(m_sim);
}
