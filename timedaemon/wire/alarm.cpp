// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "alarm.h"

#include <QDBusArgument>
#include <QDBusMetaType>

QDBusArgument &operator<<(QDBusArgument &argument, const Alarm &alarm)
{
    argument.beginStructure();
    argument << alarm.flags << alarm.ticker << alarm.attributes;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Alarm &alarm)
{
    argument.beginStructure();
    argument >> alarm.flags >> alarm.ticker >> alarm.attributes;
    argument.endStructure();
    return argument;
}

void registerAlarmTypes()
{
    qDBusRegisterMetaType<QList<uint>>();
    qDBusRegisterMetaType<AlarmAttributes>();
    qDBusRegisterMetaType<AttributesByCookie>();
    qDBusRegisterMetaType<Alarm>();
    qDBusRegisterMetaType<AlarmsByCookie>();
}
