// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "sim.h"

#include <QDBusAbstractAdaptor>
#include <QDBusVariant>
#include <QVariantMap>

class Modem;

/// The SIM of a modem, as oFono's D-Bus API has it: of a locked SIM, what can be read without its
/// PIN, and of one that is absent only that. It is not there while the modem's power is off.
class SimManager : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.ofono.SimManager")

public:
    /// Stands beside the interface of \a modem, which owns it.
    SimManager(Modem &modem, Sim sim);

    /// Tells others of each property that is not what it was.
    void setSim(const Sim &sim);

public Q_SLOTS:
    QVariantMap GetProperties() const;

Q_SIGNALS:
    void PropertyChanged(const QString &name, const QDBusVariant &value);

private:
    Modem &m_modem;
    Sim m_sim;
};
