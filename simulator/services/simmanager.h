// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "sim.h"

#include <QDBusAbstractAdaptor>
#include <QDBusVariant>
#include <QVariantMap>

class Modem;

/// The SIM of a modem as in oFono's D-Bus API. A locked SIM shows only what can be read without its
/// PIN, and an absent one only that it is absent. The interface is missing while the modem is not
/// powered.
class SimManager : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.ofono.SimManager")

public:
    static QString interface() { return QStringLiteral("org.ofono.SimManager"); }

    /// An adaptor on the object of \a modem, which owns it.
    SimManager(Modem &modem, Sim sim);

    /// Emits PropertyChanged for each property that has changed.
    void setSim(const Sim &sim);

public Q_SLOTS:
    QVariantMap GetProperties();

Q_SIGNALS:
    void PropertyChanged(const QString &name, const QDBusVariant &value);

private:
    Modem &m_modem;
    Sim m_sim;
};
