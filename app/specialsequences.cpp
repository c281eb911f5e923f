// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "specialsequences.h"

#include <mgconfitem.h>

#include <QJsonObject>

namespace {

void insertIfSet(QJsonObject &object, QLatin1String member, const MGConfItem &item)
{
    const QVariant value = item.value();
    if (value.isValid())
        object.insert(member, value.toString());
}

} // namespace

SpecialSequences readSpecialSequences(const MGConfItem &supported)
{
    SpecialSequences sequences;
    const QStringList names = supported.value().toStringList();
    for (const QString &name : names) {
        const QString base = QStringLiteral("/desktop/nimbo/specials/%1").arg(name);
        const MGConfItem sequence(base + QLatin1String("/sequence"));
        const MGConfItem service(base + QLatin1String("/service"));
        const MGConfItem url(base + QLatin1String("/url"));

        QJsonObject object;
        insertIfSet(object, QLatin1String("service"), service);
        insertIfSet(object, QLatin1String("url"), url);
        sequences.insert(sequence.value().toString(), object);
    }
    return sequences;
}
