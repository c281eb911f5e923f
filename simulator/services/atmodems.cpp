// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "atmodems.h"

#include "networkcontrol.h"
#include "telephonycontrol.h"

#include <QDir>
#include <QFileInfo>
#include <QSettings>

namespace {

const QLatin1String portKey("Port");

} // namespace

QString AtModems::configuration(const QString &stateFolder)
{
    return stateFolder + QLatin1String("/phonesim.conf");
}

AtModems::AtModems(const QString &stateFolder)
    : ModemSet(stateFolder)
    , m_configuration(configuration(stateFolder))
    , m_bus(QString())
{
    for (const auto &[path, line] : lines())
        addPort(path, *line);
    new TelephonyControl(*this);
    new NetworkControl(*this);
    connect(&m_switch, &ModemSwitch::online, this, [this] { m_bus.registerService(onlineName()); });
    connect(&m_switch, &ModemSwitch::stopped, this,
            [this] { m_bus.unregisterService(onlineName()); });
    connect(&m_switch, &ModemSwitch::ready, this,
            [this](const QString &path) { lines().at(path)->announceReady(); });
    connect(&m_switch, &ModemSwitch::pinRefused, this, &AtModems::unlockSim);
}

AtModems::~AtModems() = default;

bool AtModems::start(const QDBusConnection &bus)
{
    m_bus = bus;
    const bool isStarted = listen()
        && m_bus.registerObject(QStringLiteral("/"), this, QDBusConnection::ExportAdaptors)
        && m_bus.registerService(busName());
    if (isStarted)
        m_switch.start(m_bus, sims().keys());
    return isStarted;
}

void AtModems::enterPin(const QString &path)
{
    m_switch.enterPin(path, QLatin1String(AtSession::Pin));
}

void AtModems::make(const QString &path, PhoneLine &line)
{
    addPort(path, line);
}

void AtModems::addPort(const QString &path, PhoneLine &line)
{
    auto port = std::make_unique<AtPort>(line);
    connect(&port->session(), &AtSession::pinEntered, this, [this, path] { unlockSim(path); });
    connect(&line, &PhoneLine::conditionChanged, &m_switch, &ModemSwitch::retry);
    m_ports.emplace(path, std::move(port));
}

void AtModems::unmake(const QString &path)
{
    m_ports.erase(path);
}

/// The name of a group is the path of the modem in oFono.
bool AtModems::listen()
{
    QDir().mkpath(QFileInfo(m_configuration).path());
    QSettings file(m_configuration, QSettings::IniFormat);
    bool listens = true;
    QMap<QString, quint16> before;
    for (const auto &[path, port] : m_ports)
        before.insert(
            path,
            static_cast<quint16>(file.value(path.mid(1) + QLatin1Char('/') + portKey).toUInt()));
    file.clear();
    for (const auto &[path, port] : m_ports) {
        listens = port->listen(before.value(path)) && listens;
        file.beginGroup(path.mid(1));
        file.setValue(QStringLiteral("Address"), QStringLiteral("127.0.0.1"));
        file.setValue(portKey, port->port());
        file.endGroup();
    }
    file.sync();
    if (!listens || file.status() != QSettings::NoError)
        qWarning("The modems cannot listen, or not tell where in %s.",
                 qUtf8Printable(m_configuration));
    return listens && file.status() == QSettings::NoError;
}
