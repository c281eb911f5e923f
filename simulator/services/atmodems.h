// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "atport.h"
#include "modemset.h"
#include "modemswitch.h"

#include <QDBusConnection>

#include <map>
#include <memory>

/// The modems of the handset for a real oFono, which speaks AT with them. They are controlled
/// through "com.nimbo.simulator.modem" on the system bus. When oFono runs, they are switched on,
/// and while all of them are online, they own a second name there.
///
/// Their addresses are in the file "phonesim.conf" in the folder of the state, which oFono reads
/// when it starts (OFONO_PHONESIM_CONFIG). They stay the same as long as their ports are free.
class AtModems : public ModemSet
{
    Q_OBJECT

public:
    static QString busName() { return QStringLiteral("com.nimbo.simulator.modem"); }
    static QString onlineName() { return QStringLiteral("com.nimbo.simulator.modem.online"); }
    static QString configuration(const QString &stateFolder);

    /// Loads the state from \a stateFolder, and keeps changes there.
    explicit AtModems(const QString &stateFolder);
    ~AtModems() override;

    /// Makes the modems listen, and registers their object and their name on \a bus.
    bool start(const QDBusConnection &bus);

    /// A running oFono does not read the file again.
    bool isExtensible() const override { return false; }
    void enterPin(const QString &path) override;

protected:
    void make(const QString &path, PhoneLine &line) override;
    void unmake(const QString &path) override;

private:
    void addPort(const QString &path, PhoneLine &line);
    bool listen();

    const QString m_configuration;
    QDBusConnection m_bus;
    std::map<QString, std::unique_ptr<AtPort>> m_ports; ///< By path.
    ModemSwitch m_switch;
};
