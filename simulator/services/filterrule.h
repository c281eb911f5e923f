// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QList>
#include <QMetaType>
#include <QString>

class QDBusArgument;

/// What becomes of the calls of one SIM. On the bus (su).
struct FilterRule
{
    QString imsi; ///< The subscriber identity of the SIM.
    uint action = 0; ///< 1 blocks or ignores, 2 allows, 3 hangs up.

    bool operator==(const FilterRule &other) const
    {
        return imsi == other.imsi && action == other.action;
    }
};

/// The first rule for a SIM is the one that counts. On the bus a(su).
using FilterRules = QList<FilterRule>;

QDBusArgument &operator<<(QDBusArgument &argument, const FilterRule &rule);
const QDBusArgument &operator>>(const QDBusArgument &argument, FilterRule &rule);

/// Makes the types above known to the bus library.
void registerFilterRuleTypes();

Q_DECLARE_METATYPE(FilterRule)
Q_DECLARE_METATYPE(FilterRules)
