// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "callrules.h"

#include "buscall.h"
#include "filterrule.h"
#include "transcript.h"

#include <QDBusArgument>

#include <optional>
#include <utility>

namespace {

const QLatin1String service("org.ofono");
const QLatin1String path("/");
const QLatin1String control("com.nimbo.simulator.Telephony");
const QLatin1String form("uua(su)"); ///< Of the answer with all rules.

struct NamedAction
{
    const char *name;
    uint value;
};

/// Blocking and ignoring have one value; the first name of a value describes it.
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

QString describe(uint value)
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

QDBusMessage question(const QString &filter)
{
    return QDBusMessage::createMethodCall(service, QLatin1String("/mdm/parleyfilter/") + filter,
                                          QStringLiteral("org.cobalt.ofono.mdm.ParleyFilter"),
                                          QStringLiteral("GetAll"));
}

QVariantMap itemOf(const QString &imsi, uint action)
{
    return {{QStringLiteral("imsi"), imsi}, {QStringLiteral("action"), describe(action)}};
}

QVariantList itemsOf(const QVariantList &values)
{
    QVariantList items{itemOf({}, values.at(1).toUInt())};
    const auto rules = qdbus_cast<FilterRules>(values.at(2));
    for (const FilterRule &rule : rules)
        items.append(itemOf(rule.imsi, rule.action));
    return items;
}

} // namespace

CallRules::CallRules(QDBusConnection systemBus, Transcript &transcript, QObject *parent)
    : QObject(parent)
    , m_bus(std::move(systemBus))
    , m_transcript(transcript)
    , m_dialList(m_bus, {question(QStringLiteral("dial")), form, itemsOf, QStringLiteral("imsi")})
    , m_incomingList(m_bus,
                     {question(QStringLiteral("incoming")), form, itemsOf, QStringLiteral("imsi")})
{
    registerFilterRuleTypes();
    const auto follow = [this](const char *signal, const char *slot) {
        m_bus.connect(service, path, control, QLatin1String(signal), this, slot);
    };
    follow("RuleSet", SLOT(ruleSet(QString, QString, uint)));
    follow("RuleRemoved", SLOT(ruleRemoved(QString, QString)));
    follow("RulesSet", SLOT(rulesSet(QString)));
    follow("DefaultActionSet", SLOT(defaultActionSet(QString, uint)));
}

QVector<Command> CallRules::commands()
{
    const QString filter = QStringLiteral("dial|incoming");
    return {
        {QStringLiteral("rules"),
         {},
         QStringLiteral("list what calls may be dialled and may come in, by SIM"),
         [this](const QStringList &, const Finish &finish) {
             print({QStringLiteral("dial"), QStringLiteral("incoming")}, finish);
         }},
        {QStringLiteral("rule"),
         {filter, QStringLiteral("IMSI"), QStringLiteral("ACTION")},
         QStringLiteral(
             "block, ignore, allow or hangup (or a number) calls of a SIM; none for no rule"),
         [this](const QStringList &arguments, const Finish &finish) {
             set(arguments.at(0), arguments.at(1), arguments.at(2), finish);
         }},
        {QStringLiteral("default"),
         {filter, QStringLiteral("ACTION")},
         QStringLiteral("the same for calls of SIMs without a rule"),
         [this](const QStringList &arguments, const Finish &finish) {
             setDefault(arguments.at(0), arguments.at(1), finish);
         }},
    };
}

void CallRules::ruleSet(const QString &filter, const QString &imsi, uint action)
{
    recordRule(filter, {imsi, action});
    refresh(filter);
}

void CallRules::ruleRemoved(const QString &filter, const QString &imsi)
{
    record(QStringLiteral("no %1 rule for %2").arg(filter, imsi));
    refresh(filter);
}

void CallRules::rulesSet(const QString &filter)
{
    record(QStringLiteral("the %1 rules are replaced").arg(filter));
    refresh(filter);
}

void CallRules::defaultActionSet(const QString &filter, uint action)
{
    recordDefault(filter, action);
    refresh(filter);
}

/// The filters are asked one after another, in the order in which they are listed.
void CallRules::print(const QStringList &filters, const Finish &finish)
{
    if (filters.isEmpty()) {
        finish(Outcome::Done, {});
        return;
    }
    const QString &filter = filters.constFirst();
    const auto answered = [this, filters, filter, finish](const QVariantList &values) {
        recordDefault(filter, values.at(1).toUInt());
        const auto rules = qdbus_cast<FilterRules>(values.at(2));
        for (const FilterRule &rule : rules)
            recordRule(filter, rule);
        print(filters.mid(1), finish);
    };
    callBus(m_bus, question(filter), form, this, finish, answered);
}

void CallRules::set(const QString &filter, const QString &imsi, const QString &action,
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

void CallRules::setDefault(const QString &filter, const QString &action, const Finish &finish)
{
    if (const auto value = toAction(action))
        act(QStringLiteral("SetDefaultAction"), {filter, *value}, finish);
    else
        finish(Outcome::Failed, noAction(action));
}

void CallRules::act(const QString &method, const QVariantList &arguments, const Finish &finish)
{
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, control, method);
    call.setArguments(arguments);
    callBus(m_bus, call, QString(), this, finish,
            [finish](const QVariantList &) { finish(Outcome::Done, QStringLiteral("done")); });
}

void CallRules::record(const QString &line)
{
    m_transcript.record(QStringLiteral("rules"), line);
}

void CallRules::recordRule(const QString &filter, const FilterRule &rule)
{
    record(QStringLiteral("%1 rule for %2: %3").arg(filter, rule.imsi, describe(rule.action)));
}

void CallRules::recordDefault(const QString &filter, uint action)
{
    record(QStringLiteral("%1 default: %2").arg(filter, describe(action)));
}

void CallRules::refresh(const QString &filter)
{
    if (filter == QLatin1String("dial"))
        m_dialList.refresh();
    else
        m_incomingList.refresh();
}
