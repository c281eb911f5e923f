// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "networkcontrol.h"

#include "modemset.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QMetaEnum>
#include <QVector>

#include <algorithm>
#include <iterator>
#include <optional>

namespace {

using State = NetworkCall::State;

const QLatin1String withheld("withheld");

QString numberOf(const NetworkCall &call)
{
    return call.number.isEmpty() ? QString(withheld) : call.number;
}

QString describe(const NetworkCall &call)
{
    QString text = nameOf(call.state);
    if (call.isInConference)
        text += QLatin1String(" in a conference");
    if (call.isHeldByRemote)
        text += QLatin1String(", held by the other side");
    return text;
}

QMetaEnum conditions()
{
    return QMetaEnum::fromType<PhoneLine::Condition>();
}

QString conditionName(PhoneLine::Condition condition)
{
    return QString::fromLatin1(conditions().valueToKey(static_cast<int>(condition))).toLower();
}

std::optional<PhoneLine::Condition> conditionNamed(const QString &name)
{
    for (int i = 0; i < conditions().keyCount(); ++i) {
        const auto condition = static_cast<PhoneLine::Condition>(conditions().value(i));
        if (conditionName(condition) == name)
            return condition;
    }
    return std::nullopt;
}

bool isAny(const NetworkCall &)
{
    return true;
}

bool isBeingDialled(const NetworkCall &call)
{
    return call.state == State::Dialing || call.state == State::Alerting;
}

bool canBeHeld(const NetworkCall &call)
{
    return (call.state == State::Active || call.state == State::Held) && !call.isHeldByRemote;
}

bool isHeldByRemote(const NetworkCall &call)
{
    return call.isHeldByRemote;
}

/// What the other side of a call can do.
struct RemoteAction
{
    QLatin1String name;
    bool (*isPossible)(const NetworkCall &call);
    void (*run)(NetworkCalls &calls, int id);
};

const RemoteAction remoteActions[] = {
    {QLatin1String("answer"), isBeingDialled,
     [](NetworkCalls &calls, int id) { calls.answerRemote(id); }},
    {QLatin1String("busy"), isBeingDialled,
     [](NetworkCalls &calls, int id) { calls.endRemote(id); }},
    {QLatin1String("hangup"), isAny, [](NetworkCalls &calls, int id) { calls.endRemote(id); }},
    {QLatin1String("hold"), canBeHeld,
     [](NetworkCalls &calls, int id) { calls.holdRemote(id, true); }},
    {QLatin1String("resume"), isHeldByRemote,
     [](NetworkCalls &calls, int id) { calls.holdRemote(id, false); }},
};

} // namespace

QDBusArgument &operator<<(QDBusArgument &argument, const LineCall &call)
{
    argument.beginStructure();
    argument << call.modem << call.number << call.state;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, LineCall &call)
{
    argument.beginStructure();
    argument >> call.modem >> call.number >> call.state;
    argument.endStructure();
    return argument;
}

void registerLineCallTypes()
{
    qDBusRegisterMetaType<LineCall>();
    qDBusRegisterMetaType<LineCalls>();
}

NetworkControl::NetworkControl(ModemSet &modems)
    : QDBusAbstractAdaptor(&modems)
    , m_modems(modems)
{
    registerLineCallTypes();
    for (const auto &entry : modems.lines())
        follow(entry.first);
    connect(&modems, &ModemSet::lineAdded, this, &NetworkControl::follow);
}

LineCalls NetworkControl::ListCalls() const
{
    LineCalls calls;
    for (const auto &[path, line] : m_modems.lines()) {
        for (const auto &[id, call] : line->calls().all())
            calls.append({path, numberOf(call), describe(call)});
    }
    return calls;
}

QString NetworkControl::Ring(const QString &number, const QString &modem)
{
    const bool isWithheld = number == withheld;
    if (!isWithheld && !PhoneLine::isNumber(number)) {
        refuse(QStringLiteral("\"%1\" is no number; withheld stands for none").arg(number));
        return {};
    }
    const auto &lines = m_modems.lines();
    const auto isRegistered = [](const auto &entry) { return entry.second->isRegistered(); };
    const auto found = modem.isEmpty() ? std::find_if(lines.cbegin(), lines.cend(), isRegistered)
                                       : lines.find(ModemSet::pathOf(modem));
    if (found == lines.cend())
        refuse(modem.isEmpty()
                   ? QStringLiteral("no modem is in the network; sim insert puts a SIM into one")
                   : QStringLiteral("there is no modem %1").arg(ModemSet::pathOf(modem)));
    else if (!found->second->isRegistered())
        refuse(QStringLiteral("%1 is not in the network").arg(found->first));
    else if (found->second->ring(isWithheld ? QString() : number) == 0)
        refuse(QStringLiteral("%1 takes no call now").arg(found->first));
    else
        return found->first;
    return {};
}

void NetworkControl::Remote(const QString &action, const QString &number)
{
    const auto *const named =
        std::find_if(std::cbegin(remoteActions), std::cend(remoteActions),
                     [&action](const RemoteAction &it) { return it.name == action; });
    if (named == std::cend(remoteActions)) {
        refuse(QStringLiteral("the other side can answer, be busy, hangup, hold and resume"));
        return;
    }
    QVector<Place> found;
    for (const auto &[path, line] : m_modems.lines()) {
        for (const auto &[id, call] : line->calls().all()) {
            if (named->isPossible(call) && (number.isEmpty() || numberOf(call) == number))
                found.append({line.get(), call});
        }
    }
    if (found.size() == 1)
        named->run(found.constFirst().first->calls(), found.constFirst().second.id);
    else if (found.isEmpty())
        refuse(QStringLiteral("there is no call for which the other side can %1").arg(action));
    else
        refuse(QStringLiteral("there are %1 such calls: say which").arg(found.size()));
}

void NetworkControl::SetNetwork(const QString &condition, const QString &modem)
{
    const auto wanted = conditionNamed(condition);
    const auto named = m_modems.lines().find(ModemSet::pathOf(modem));
    if (!wanted) {
        refuse(QStringLiteral("the network can be lost, refuse and be back; a modem can be slow, "
                              "hang and be gone"));
    } else if (modem.isEmpty()) {
        for (const auto &[path, line] : m_modems.lines())
            line->setCondition(*wanted);
    } else if (named == m_modems.lines().cend()) {
        refuse(QStringLiteral("there is no modem %1").arg(ModemSet::pathOf(modem)));
    } else {
        named->second->setCondition(*wanted);
    }
}

void NetworkControl::follow(const QString &path)
{
    PhoneLine &line = *m_modems.lines().at(path);
    const auto tellChange = [this, path](const NetworkCall &call) {
        Q_EMIT CallChanged(path, numberOf(call), describe(call));
    };
    connect(&line.calls(), &NetworkCalls::added, this, [tellChange](const NetworkCall &call) {
        if (call.isIncoming)
            tellChange(call);
    });
    connect(&line.calls(), &NetworkCalls::changed, this, tellChange);
    connect(&line.calls(), &NetworkCalls::ended, this,
            [this, path](const NetworkCall &call, NetworkCalls::Ending ending) {
                Q_EMIT CallEnded(path, numberOf(call), nameOf(ending));
            });
    connect(&line, &PhoneLine::dialled, this,
            [this, path](const QString &number) { Q_EMIT Dialled(path, number); });
    connect(&line, &PhoneLine::tonesSent, this,
            [this, path](const QString &tones) { Q_EMIT TonesSent(path, tones); });
    connect(&line, &PhoneLine::messageSent, this,
            [this, path](const QString &number, const QString &text) {
                Q_EMIT MessageSent(path, number, text);
            });
    connect(&line, &PhoneLine::serviceRequested, this,
            [this, path](const QString &code) { Q_EMIT ServiceRequested(path, code); });
    connect(&line, &PhoneLine::ready, this, [this, path] { Q_EMIT Ready(path); });
    connect(&line, &PhoneLine::conditionChanged, this,
            [this, path, &line] { Q_EMIT NetworkChanged(path, conditionName(line.condition())); });
}

void NetworkControl::refuse(const QString &why)
{
    m_modems.sendErrorReply(QDBusError::InvalidArgs, why);
}
