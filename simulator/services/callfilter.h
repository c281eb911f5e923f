// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "filterrule.h"

#include <QDBusConnection>
#include <QObject>

/// One of the two sets of filter rules of the device management in the telephony stack. The
/// scriptable members are its interface on the bus.
class CallFilter : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.cobalt.ofono.mdm.ParleyFilter")

public:
    static constexpr uint Allow = 2;

    struct Content
    {
        uint defaultAction = Allow; ///< The action for SIMs without a rule.
        FilterRules rules;
    };

    explicit CallFilter(Content content, QObject *parent = nullptr);

    /// Registers the object on \a bus at \a path.
    bool start(QDBusConnection bus, const QString &path);

    const Content &content() const { return m_content; }

    /// Changes the rule of the SIM, or appends one.
    void setRule(const QString &imsi, uint action);
    /// Removes all rules of the SIM. Returns false if it has none.
    bool removeRule(const QString &imsi);
    /// Replaces all rules.
    void setRules(const FilterRules &rules);
    void setDefaultAction(uint action);

    /// Returns the version of the format, which is 1, the default action and the rules.
    Q_SCRIPTABLE uint GetAll(uint &defaultAction, FilterRules &rules) const;

Q_SIGNALS:
    Q_SCRIPTABLE void RuleAdded(const QString &imsi, uint action);
    Q_SCRIPTABLE void RuleChanged(const QString &imsi, uint action);
    Q_SCRIPTABLE void RuleRemoved(const QString &imsi);
    /// All rules have been replaced.
    Q_SCRIPTABLE void RulesChanged(const FilterRules &rules);
    Q_SCRIPTABLE void DefaultActionChanged(uint action);

    /// Emitted before the signal on the bus.
    void changed();

private:
    Content m_content;
};
