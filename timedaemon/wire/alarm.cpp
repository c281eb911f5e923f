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
    alarm.attributes.clear();
    argument.beginStructure();
    argument >> alarm.flags >> alarm.ticker;
    // QtDBus would keep every value of a key that comes more than once.
    argument.beginMap();
    while (!argument.atEnd()) {
        QString key;
        QString value;
        argument.beginMapEntry();
        argument >> key >> value;
        argument.endMapEntry();
        alarm.attributes.insert(key, value);
    }
    argument.endMap();
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
    qDBusRegisterMetaType<TickersByCookie>();
}
