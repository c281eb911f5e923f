// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QList>
#include <QMetaType>
#include <QString>

class QDBusArgument;

/// The action for the calls of one SIM. Its D-Bus signature is (su).
struct FilterRule
{
    QString imsi; ///< The subscriber identity of the SIM.
    uint action = 0; ///< 1 blocks or ignores, 2 allows, 3 hangs up.

    bool operator==(const FilterRule &other) const
    {
        return imsi == other.imsi && action == other.action;
    }
};

/// The first rule for a SIM counts. The D-Bus signature is a(su).
using FilterRules = QList<FilterRule>;

QDBusArgument &operator<<(QDBusArgument &argument, const FilterRule &rule);
const QDBusArgument &operator>>(const QDBusArgument &argument, FilterRule &rule);

/// Registers these types with QtDBus.
void registerFilterRuleTypes();

Q_DECLARE_METATYPE(FilterRule)
Q_DECLARE_METATYPE(FilterRules)
