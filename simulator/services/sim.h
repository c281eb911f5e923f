// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QMap>
#include <QMetaType>
#include <QString>

class QDBusArgument;

/// The SIM in a modem. Its D-Bus signature is (sb).
struct Sim
{
    QString imsi; ///< Its subscriber identity (3GPP TS 23.003, 2.2); empty if there is no SIM.
    bool locked = false; ///< Its PIN has not been entered since the modem was reset.

    bool isPresent() const { return !imsi.isEmpty(); }
    bool operator==(const Sim &other) const { return imsi == other.imsi && locked == other.locked; }
};

/// SIMs by the path of the modem. The D-Bus signature is a{s(sb)}.
using SimsByModem = QMap<QString, Sim>;

/// Returns whether \a text can be a subscriber identity: 1 to 15 digits (3GPP TS 23.003, 2.2).
bool isImsi(const QString &text);

QDBusArgument &operator<<(QDBusArgument &argument, const Sim &sim);
const QDBusArgument &operator>>(const QDBusArgument &argument, Sim &sim);

/// Registers these types with QtDBus.
void registerSimTypes();

Q_DECLARE_METATYPE(Sim)
Q_DECLARE_METATYPE(SimsByModem)
