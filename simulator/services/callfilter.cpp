// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "callfilter.h"

#include <algorithm>
#include <utility>

CallFilter::CallFilter(Content content, QObject *parent)
    : QObject(parent)
    , m_content(std::move(content))
{
}

bool CallFilter::start(QDBusConnection bus, const QString &path)
{
    return bus.registerObject(path, this, QDBusConnection::ExportScriptableContents);
}

void CallFilter::setRule(const QString &imsi, uint action)
{
    const auto isIts = [&imsi](const FilterRule &rule) { return rule.imsi == imsi; };
    const auto rule = std::find_if(m_content.rules.begin(), m_content.rules.end(), isIts);
    if (rule == m_content.rules.end()) {
        m_content.rules.append({imsi, action});
        Q_EMIT changed();
        Q_EMIT RuleAdded(imsi, action);
    } else if (rule->action != action) {
        rule->action = action;
        Q_EMIT changed();
        Q_EMIT RuleChanged(imsi, action);
    }
}

bool CallFilter::removeRule(const QString &imsi)
{
    const auto isIts = [&imsi](const FilterRule &rule) { return rule.imsi == imsi; };
    const auto kept = std::remove_if(m_content.rules.begin(), m_content.rules.end(), isIts);
    if (kept == m_content.rules.end())
        return false;
    m_content.rules.erase(kept, m_content.rules.end());
    Q_EMIT changed();
    Q_EMIT RuleRemoved(imsi);
    return true;
}

void CallFilter::setRules(const FilterRules &rules)
{
    if (m_content.rules == rules)
        return;
    m_content.rules = rules;
    Q_EMIT changed();
    Q_EMIT RulesChanged(rules);
}

void CallFilter::setDefaultAction(uint action)
{
    if (m_content.defaultAction == action)
        return;
    m_content.defaultAction = action;
    Q_EMIT changed();
    Q_EMIT DefaultActionChanged(action);
}

uint CallFilter::GetAll(uint &defaultAction, FilterRules &rules) const
{
    defaultAction = m_content.defaultAction;
    rules = m_content.rules;
    return 1;
}
