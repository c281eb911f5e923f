// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "ofonoobject.h"

#include <QDBusArgument>
#include <QDBusMetaType>

QDBusArgument &operator<<(QDBusArgument &argument, const OfonoObject &object)
{
    argument.beginStructure();
    argument << object.path << object.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, OfonoObject &object)
{
    argument.beginStructure();
    argument >> object.path >> object.properties;
    argument.endStructure();
    return argument;
}

void registerOfonoObjectTypes()
{
    qDBusRegisterMetaType<OfonoObject>();
    qDBusRegisterMetaType<OfonoObjects>();
}
