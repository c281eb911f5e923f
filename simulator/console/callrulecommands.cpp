// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "callrulecommands.h"

#include "filterrule.h"

#include <QDBusArgument>

#include <optional>

namespace {

const QLatin1String service("org.ofono");
const QLatin1String path("/");
const QLatin1String control("com.nimbo.simulator.Telephony");

struct NamedAction
{
    const char *name;
    uint value;
};

/// "block" and "ignore" have the same value, which is described by its first name.
constexpr NamedAction actions[] = {{"block", 1}, {"ignore", 1}, {"allow", 2}, {"hangup", 3}};

std::optional<uint> toAction(const QString &text)
{
    for (const NamedAction &action : actions) {
        if (text.compare(QLatin1String(action.name), Qt::CaseInsensitive) == 0)
            return action.value;
    }
    bool isNumber = false;
    const uint number = text.toUInt(&isNumber);
    return isNumber ? std::optional<uint>(number) : std::nullopt;
}

QString nameOf(uint value)
{
    for (const NamedAction &action : actions) {
        if (action.value == value)
            return QLatin1String(action.name);
    }
    return QString::number(value);
}

QString noAction(const QString &text)
{
    return QStringLiteral("\"%1\" is no action: block, ignore, allow, hangup or a number")
        .arg(text);
}

QVariantMap itemOf(const QString &imsi, uint action)
{
    return {{QStringLiteral("imsi"), imsi}, {QStringLiteral("action"), nameOf(action)}};
}

QVariantList itemsOf(const QVariantList &values)
{
    QVariantList items{itemOf({}, values.value(1).toUInt())};
    const auto rules = qdbus_cast<FilterRules>(values.value(2));
    for (const FilterRule &rule : rules)
        items.append(itemOf(rule.imsi, rule.action));
    return items;
}

QString describe(const QString &filter, const QString &imsi, const QString &action)
{
    return imsi.isEmpty() ? QStringLiteral("%1 default: %2").arg(filter, action)
                          : QStringLiteral("%1 rule for %2: %3").arg(filter, imsi, action);
}

/// Returns the source of the rules of \a filter, which is "dial" or "incoming".
ServiceList::Source rulesOf(const QString &filter)
{
    const auto describeItem = [filter](const QVariantMap &item) {
        return describe(filter, item.value(QStringLiteral("imsi")).toString(),
                        item.value(QStringLiteral("action")).toString());
    };
    return {QDBusMessage::createMethodCall(service, QLatin1String("/mdm/parleyfilter/") + filter,
                                           QStringLiteral("org.cobalt.ofono.mdm.ParleyFilter"),
                                           QStringLiteral("GetAll")),
            QStringLiteral("uua(su)"), itemsOf, QStringLiteral("imsi"), describeItem};
}

} // namespace

CallRuleCommands::CallRuleCommands(const QDBusConnection &systemBus, bool areThere,
                                   Transcript &transcript, QObject *parent)
    : ServiceTalk(systemBus, {service, path, control, QStringLiteral("rules")}, transcript, parent)
    , m_areThere(areThere)
    , m_dialList(addList(rulesOf(QStringLiteral("dial"))))
    , m_incomingList(addList(rulesOf(QStringLiteral("incoming"))))
{
    registerFilterRuleTypes();
    tell(control, QStringLiteral("RuleSet"), QStringLiteral("ssu"), [](const QVariantList &values) {
        return describe(values.value(0).toString(), values.value(1).toString(),
                        nameOf(values.value(2).toUInt()));
    });
    tell(control, QStringLiteral("RuleRemoved"), QStringLiteral("ss"),
         [](const QVariantList &values) {
             return QStringLiteral("no %1 rule for %2")
                 .arg(values.value(0).toString(), values.value(1).toString());
         });
    tell(control, QStringLiteral("RulesSet"), QStringLiteral("sa(su)"),
         [](const QVariantList &values) {
             return QStringLiteral("the %1 rules are replaced").arg(values.value(0).toString());
         });
    tell(control, QStringLiteral("DefaultActionSet"), QStringLiteral("su"),
         [](const QVariantList &values) {
             return describe(values.value(0).toString(), {}, nameOf(values.value(1).toUInt()));
         });
}

QVector<Command> CallRuleCommands::commands()
{
    const QString filter = QStringLiteral("dial|incoming");
    QVector<Command> all{
        {QStringLiteral("rules"),
         {},
         QStringLiteral("list what calls may be dialled and may come in, by SIM"),
         [this](const QStringList &, const Finish &finish) { print(finish); }},
        {QStringLiteral("rule"),
         {filter, QStringLiteral("IMSI"), QStringLiteral("ACTION")},
         QStringLiteral(
             "block, ignore, allow or hangup (or a number) calls of a SIM; none for no rule"),
         [this](const QStringList &arguments, const Finish &finish) {
             set(arguments.at(0), arguments.at(1), arguments.at(2), finish);
         }},
        {QStringLiteral("default"),
         {filter, QStringLiteral("ACTION")},
         QStringLiteral(
             "block, ignore, allow or hangup (or a number) calls of SIMs without a rule"),
         [this](const QStringList &arguments, const Finish &finish) {
             setDefault(arguments.at(0), arguments.at(1), finish);
         }},
    };
    if (m_areThere)
        return all;
    for (Command &command : all)
        command.run = [](const QStringList &, const Finish &finish) {
            finish(Outcome::Skipped, QStringLiteral("this oFono has no filter rules"));
        };
    return all;
}

QStringList CallRuleCommands::actionNames()
{
    QStringList names;
    for (const NamedAction &action : actions)
        names.append(QLatin1String(action.name));
    return names;
}

void CallRuleCommands::set(const QString &filter, const QString &imsi, const QString &action,
                           const Finish &finish)
{
    const auto value = toAction(action);
    if (action.compare(QLatin1String("none"), Qt::CaseInsensitive) == 0)
        act(QStringLiteral("RemoveRule"), {filter, imsi}, finish);
    else if (value)
        act(QStringLiteral("SetRule"), {filter, imsi, *value}, finish);
    else
        finish(Outcome::Failed, noAction(action) + QLatin1String(", or none"));
}

void CallRuleCommands::setDefault(const QString &filter, const QString &action,
                                  const Finish &finish)
{
    if (const auto value = toAction(action))
        act(QStringLiteral("SetDefaultAction"), {filter, *value}, finish);
    else
        finish(Outcome::Failed, noAction(action));
}
