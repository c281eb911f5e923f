// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "sim.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusVariant>
#include <QObject>
#include <QVariantMap>

class SimManager;

/// A modem of the telephony stack as in oFono's D-Bus API (org.ofono.Modem), with a SIM manager. It
/// is powered at first. The scriptable members are its interface.
class Modem : public QObject, public QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.ofono.Modem")

public:
    /// \a path is its object path, for which isPath() must be true.
    Modem(QString path, const Sim &sim, QObject *parent = nullptr);

    /// Returns whether a modem can be at \a path, which has one element, as in "/ril_0".
    static bool isPath(const QString &path);

    /// Registers the object on \a bus.
    bool start(QDBusConnection bus);

    bool isPowered() const { return m_powered; }

    /// Changes the SIM and emits the signals for it.
    void setSim(const Sim &sim);
    /// Resets the SIM, which then waits for its PIN.
    void reset(const Sim &sim);

    Q_SCRIPTABLE QVariantMap GetProperties() const;
    /// "Powered" and, when it is, "Online" can be set. Other properties are refused as oFono
    /// refuses them.
    Q_SCRIPTABLE void SetProperty(const QString &property, const QDBusVariant &value);

Q_SIGNALS:
    Q_SCRIPTABLE void PropertyChanged(const QString &name, const QDBusVariant &value);

private:
    void setPowered(bool powered);
    void setOnline(bool online);
    void tell(const QString &property);

    const QString m_path;
    bool m_powered = true;
    bool m_online = true;
    SimManager *m_simManager; ///< A child object.
};
