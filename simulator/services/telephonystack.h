// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "modem.h"
#include "modemset.h"
#include "ofonoobject.h"

#include <QDBusConnection>

#include <map>
#include <memory>

/// The telephony stack of the handset, "org.ofono" on the system bus. It has modems with their SIMs
/// and their calls as in oFono's D-Bus API, and the filters for outgoing and incoming calls. The
/// scriptable members are its interface org.ofono.Manager.
class TelephonyStack : public ModemSet
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.ofono.Manager")

public:
    /// Loads the state from \a stateFolder, and keeps changes there.
    explicit TelephonyStack(const QString &stateFolder);
    ~TelephonyStack() override;

    /// Registers its objects and its name on \a bus.
    bool start(const QDBusConnection &bus);

    /// Returns all modems in the order of their paths.
    Q_SCRIPTABLE OfonoObjects GetModems() const;

Q_SIGNALS:
    Q_SCRIPTABLE void ModemAdded(const QDBusObjectPath &path, const QVariantMap &properties);
    Q_SCRIPTABLE void ModemRemoved(const QDBusObjectPath &path);

protected:
    void make(const QString &path, PhoneLine &line) override;
    void unmake(const QString &path) override;

private:
    QDBusConnection m_bus;
    std::map<QString, std::unique_ptr<Modem>> m_modems; ///< By path.
};
