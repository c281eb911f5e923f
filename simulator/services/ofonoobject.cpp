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
    // Qt 6 exports a method only if the names of its types are registered.
    qRegisterMetaType<QDBusObjectPath>();
    qRegisterMetaType<QDBusVariant>();
    qDBusRegisterMetaType<OfonoObject>();
    qDBusRegisterMetaType<OfonoObjects>();
}
