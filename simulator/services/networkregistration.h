// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusVariant>
#include <QVariantMap>

class Modem;
class PhoneLine;

/// Whether a modem is in the network, as in oFono's D-Bus API.
class NetworkRegistration : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.ofono.NetworkRegistration")

public:
    static QString interface() { return QStringLiteral("org.ofono.NetworkRegistration"); }

    /// An adaptor on the object of \a modem, which owns it. \a line must outlive it.
    NetworkRegistration(Modem &modem, PhoneLine &line);

public Q_SLOTS:
    /// Returns "Status", "Mode", "Name" (empty without a network) and "Strength" (in percent).
    QVariantMap GetProperties();

Q_SIGNALS:
    void PropertyChanged(const QString &name, const QDBusVariant &value);

private:
    QVariantMap properties() const;
    void update();

    Modem &m_modem;
    PhoneLine &m_line;
    QVariantMap m_told;
};
