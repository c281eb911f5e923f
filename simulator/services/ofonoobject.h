// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDBusObjectPath>
#include <QList>
#include <QMetaType>
#include <QVariantMap>

class QDBusArgument;

/// An object with its properties, as oFono lists it. Its D-Bus signature is (oa{sv}).
struct OfonoObject
{
    QDBusObjectPath path;
    QVariantMap properties;
};

/// The D-Bus signature is a(oa{sv}).
using OfonoObjects = QList<OfonoObject>;

QDBusArgument &operator<<(QDBusArgument &argument, const OfonoObject &object);
const QDBusArgument &operator>>(const QDBusArgument &argument, OfonoObject &object);

/// Registers these types with QtDBus.
void registerOfonoObjectTypes();

Q_DECLARE_METATYPE(OfonoObject)
Q_DECLARE_METATYPE(OfonoObjects)
