// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "callfilter.h"
#include "modem.h"
#include "telephonyfile.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusObjectPath>
#include <QList>
#include <QObject>
#include <QVariantMap>

#include <map>
#include <memory>

/// One entry of the answer to GetModems. Its D-Bus signature is (oa{sv}).
struct ModemEntry
{
    QDBusObjectPath path;
    QVariantMap properties;
};

/// The D-Bus signature is a(oa{sv}).
using ModemEntries = QList<ModemEntry>;

QDBusArgument &operator<<(QDBusArgument &argument, const ModemEntry &entry);
const QDBusArgument &operator>>(const QDBusArgument &argument, ModemEntry &entry);

/// The telephony stack of the handset, "org.ofono" on the system bus. It has modems with their SIMs
/// as in oFono's D-Bus API, and the filters for outgoing and incoming calls. Its state is kept when
/// the process ends. The scriptable members are its interface org.ofono.Manager.
class TelephonyStack : public QObject, public QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.ofono.Manager")

public:
    /// Loads the state from \a stateFolder, and keeps changes there.
    explicit TelephonyStack(const QString &stateFolder, QObject *parent = nullptr);
    ~TelephonyStack() override;

    /// Registers its objects and its name on \a bus.
    bool start(const QDBusConnection &bus);

    /// Returns the SIM of each modem.
    const SimsByModem &sims() const { return m_sims; }

    /// Adds a modem without a SIM. Modem::isPath() must be true for \a path, which must be free.
    void addModem(const QString &path);
    void removeModem(const QString &path);

    /// The following take the path of a modem that exists.
    void insertSim(const QString &path, const QString &imsi);
    void removeSim(const QString &path);
    void lockSim(const QString &path);
    void unlockSim(const QString &path);

    /// Returns the filter "dial" or "incoming", or null for any other name.
    CallFilter *filter(const QString &name);

    /// Returns all modems in the order of their paths.
    Q_SCRIPTABLE ModemEntries GetModems() const;

Q_SIGNALS:
    Q_SCRIPTABLE void ModemAdded(const QDBusObjectPath &path, const QVariantMap &properties);
    Q_SCRIPTABLE void ModemRemoved(const QDBusObjectPath &path);

private:
    TelephonyStack(const QString &stateFolder, const TelephonyFile::Content &content,
                   QObject *parent);

    void save() const;

    const TelephonyFile m_file;
    QDBusConnection m_bus;
    SimsByModem m_sims;
    std::map<QString, std::unique_ptr<Modem>> m_modems; ///< By path.
    CallFilter m_dialFilter;
    CallFilter m_incomingFilter;
};

Q_DECLARE_METATYPE(ModemEntry)
Q_DECLARE_METATYPE(ModemEntries)
