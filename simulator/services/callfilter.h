// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "filterrule.h"

#include <QDBusConnection>
#include <QObject>

/// One of the two sets of filter rules that device management keeps in the telephony stack. The
/// scriptable members are its interface.
class CallFilter : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.cobalt.ofono.mdm.ParleyFilter")

public:
    static constexpr uint Allow = 2;

    struct Content
    {
        uint defaultAction = Allow; ///< For SIMs without a rule.
        FilterRules rules;
    };

    explicit CallFilter(Content content, QObject *parent = nullptr);

    /// Takes its place on \a bus, at \a path.
    bool start(QDBusConnection bus, const QString &path);

    const Content &content() const { return m_content; }

    /// Gives the SIM's rule another action, or adds a rule after the others.
    void setRule(const QString &imsi, uint action);
    /// Removes each rule for a SIM. False if there is none.
    bool removeRule(const QString &imsi);
    /// Replaces all of them.
    void setRules(const FilterRules &rules);
    void setDefaultAction(uint action);

    /// The version of the rules' form, which is 1; the default action; the rules.
    Q_SCRIPTABLE uint GetAll(uint &defaultAction, FilterRules &rules) const;

Q_SIGNALS:
    Q_SCRIPTABLE void RuleAdded(const QString &imsi, uint action);
    Q_SCRIPTABLE void RuleChanged(const QString &imsi, uint action);
    Q_SCRIPTABLE void RuleRemoved(const QString &imsi);
    /// All rules have been replaced.
    Q_SCRIPTABLE void RulesChanged(const FilterRules &rules);
    Q_SCRIPTABLE void DefaultActionChanged(uint action);

    /// Comes before the signal that tells others.
    void changed();

private:
    Content m_content;
};
