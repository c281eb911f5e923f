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

/// A modem of the telephony stack, as oFono's D-Bus API has it (org.ofono.Modem), with a SIM
/// manager beside it. It starts with its power on. The scriptable members are its interface.
class Modem : public QObject, public QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.ofono.Modem")

public:
    /// \a path is its place on the bus; isPath() is true of it.
    Modem(QString path, const Sim &sim, QObject *parent = nullptr);

    /// Whether a modem can be at \a path: one element, as in "/ril_0".
    static bool isPath(const QString &path);

    /// Takes its place on \a bus.
    bool start(QDBusConnection bus);

    bool isPowered() const { return m_powered; }

    /// Tells others what becomes of its SIM.
    void setSim(const Sim &sim);
    /// The SIM goes and comes back, with its PIN to be entered.
    void reset(const Sim &sim);

    Q_SCRIPTABLE QVariantMap GetProperties() const;
    /// "Powered" and, when it is, "Online" can be set. The rest is refused as oFono does it.
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
    SimManager *m_simManager; ///< A child.
};
