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

/// One entry of the answer to GetModems. On the bus (oa{sv}).
struct ModemEntry
{
    QDBusObjectPath path;
    QVariantMap properties;
};

/// On the bus a(oa{sv}).
using ModemEntries = QList<ModemEntry>;

QDBusArgument &operator<<(QDBusArgument &argument, const ModemEntry &entry);
const QDBusArgument &operator>>(const QDBusArgument &argument, ModemEntry &entry);

/// The handset's telephony stack, "org.ofono" on the system bus: modems with their SIMs, as oFono's
/// D-Bus API has them, and the filters for the calls that the user dials and for those that come
/// in. All of it outlives the process. The scriptable members are its interface org.ofono.Manager.
class TelephonyStack : public QObject, public QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.ofono.Manager")

public:
    /// As it was kept in \a stateFolder; changes are kept there, too.
    explicit TelephonyStack(const QString &stateFolder, QObject *parent = nullptr);
    ~TelephonyStack() override;

    /// Takes its name and places on \a bus.
    bool start(const QDBusConnection &bus);

    /// What is in each modem.
    const SimsByModem &sims() const { return m_sims; }

    /// Adds one without a SIM. Modem::isPath() is true of \a path, and there is none yet.
    void addModem(const QString &path);
    void removeModem(const QString &path);

    /// These take the path of a modem that there is.
    void insertSim(const QString &path, const QString &imsi);
    void removeSim(const QString &path);
    void lockSim(const QString &path);
    void unlockSim(const QString &path);

    /// The filter that is called "dial" or "incoming"; null for any other name.
    CallFilter *filter(const QString &name);

    /// All modems, in the order of their paths.
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
