// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDBusMetaType>
#include <QString>

/// Returns the D-Bus signature of values of type \a T, or an empty text if it is not registered.
template <typename T>
QString busSignature()
{
    // An int or a QMetaType, with the version of Qt.
    using RegisteredType = decltype(qDBusRegisterMetaType<T>());
    return QString::fromLatin1(QDBusMetaType::typeToSignature(RegisteredType(qMetaTypeId<T>())));
}
