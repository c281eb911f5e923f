// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "sim.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QRegularExpression>

bool isImsi(const QString &text)
{
    static const QRegularExpression imsi(
        QRegularExpression::anchoredPattern(QStringLiteral("[0-9]{1,15}")));
    return imsi.match(text).hasMatch();
}

QDBusArgument &operator<<(QDBusArgument &argument, const Sim &sim)
{
    argument.beginStructure();
    argument << sim.imsi << sim.locked;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Sim &sim)
{
    argument.beginStructure();
    argument >> sim.imsi >> sim.locked;
    argument.endStructure();
    return argument;
}

void registerSimTypes()
{
    qDBusRegisterMetaType<Sim>();
    qDBusRegisterMetaType<SimsByModem>();
}
