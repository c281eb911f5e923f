// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QMap>
#include <QMetaType>
#include <QString>

class QDBusArgument;

using AlarmAttributes = QMap<QString, QString>;

/// An alarm in the form in which the time daemon receives it. Its D-Bus signature is (uxa{ss}).
struct Alarm
{
    uint flags = 0;
    qlonglong ticker = 0; ///< When it fires, in seconds since 1970-01-01 00:00 UTC.
    AlarmAttributes attributes;

    bool operator==(const Alarm &other) const
    {
        return flags == other.flags && ticker == other.ticker && attributes == other.attributes;
    }
};

/// Alarms by cookie. The D-Bus signature is a{u(uxa{ss})}.
using AlarmsByCookie = QMap<uint, Alarm>;

/// Attributes by cookie. The D-Bus signature is a{ua{ss}}.
using AttributesByCookie = QMap<uint, AlarmAttributes>;

/// When alarms fire, by cookie. The D-Bus signature is a{ux}.
using TickersByCookie = QMap<uint, qlonglong>;

QDBusArgument &operator<<(QDBusArgument &argument, const Alarm &alarm);
const QDBusArgument &operator>>(const QDBusArgument &argument, Alarm &alarm);

/// Registers these types with QtDBus.
void registerAlarmTypes();

Q_DECLARE_METATYPE(Alarm)
Q_DECLARE_METATYPE(AlarmAttributes)
Q_DECLARE_METATYPE(AlarmsByCookie)
Q_DECLARE_METATYPE(AttributesByCookie)
Q_DECLARE_METATYPE(TickersByCookie)
