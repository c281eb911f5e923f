// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "calls.h"

#include "phonenumber.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QPointer>

#include <algorithm>
#include <utility>

namespace {

const QLatin1String managerInterface("org.ofono.VoiceCallManager");
const QLatin1String callInterface("org.ofono.VoiceCall");
const QLatin1String emergencyNumbersProperty("EmergencyNumbers");
const QLatin1String propertyChanged("PropertyChanged");
const QLatin1String callAdded("CallAdded");
const QLatin1String disconnectReason("DisconnectReason");

const QLatin1String hangUpAction("hangUp");

/// Those of one modem that wait, besides the urgent ones.
constexpr int mostWishes = 64;

} // namespace

Calls::Calls(QObject *parent)
    : CallModel(parent)
    , m_dialogue(m_ofono,
                 [this](const QString &action, const QString &text, Telephony::Error error) {
                     fail(action, 0, text, error);
                 })
{
    m_ofono.follow(managerInterface, callAdded, QStringLiteral("oa{sv}"));
    m_ofono.follow(managerInterface, QStringLiteral("CallRemoved"), QStringLiteral("o"));
    m_ofono.follow(managerInterface, propertyChanged, QStringLiteral("sv"));
    m_ofono.follow(callInterface, propertyChanged, QStringLiteral("sv"));
    m_ofono.follow(callInterface, disconnectReason, QStringLiteral("s"));
    connect(&m_ofono, &Ofono::statusChanged, this, &Calls::statusChanged);
    connect(&m_ofono, &Ofono::modemChanged, this, &Calls::followModem);
    connect(&m_ofono, &Ofono::received, this, &Calls::receive);
}

void Calls::followModem(const QString &modem)
{
    const bool isLine = m_ofono.has(modem, managerInterface);
    bool numbersChange = false;
    const auto line = m_lines.find(modem);
    if (isLine && line == m_lines.end()) {
        QObject *const context = m_lines[modem].context.get();
        m_ofono.ask({modem, managerInterface, QStringLiteral("GetProperties"), {}},
                    QStringLiteral("a{sv}"), context, [this, modem](const QDBusMessage &answer) {
                        setEmergencyNumbers(modem,
                                            busProperties(answer).value(emergencyNumbersProperty));
                    });
        m_ofono.ask({modem, managerInterface, QStringLiteral("GetCalls"), {}},
                    QStringLiteral("a(oa{sv})"), context,
                    [this, modem](const QDBusMessage &answer) { readCalls(modem, answer); });
    } else if (!isLine && line != m_lines.end()) {
        if (line->second.tones)
            fail(QStringLiteral("sendTones"), 0, {}, Telephony::NoAnswer);
        for (const Wish &wish : std::as_const(line->second.wishes))
            fail(wish, Telephony::NoAnswer);
        numbersChange = updateEmergencyNumbers(line->second.emergencyNumbers, {});
        m_lines.erase(line);
    }
    const bool modemsChange = updateModems(modem);
    const QPointer<Calls> self(this);
    m_dialogue.followModem(modem);
    if (self && tellOfLists(modemsChange, numbersChange) && !isLine)
        removeAll(modem);
}

/// Calls that come before the answer are in the answer.
void Calls::readCalls(const QString &modem, const QDBusMessage &answer)
{
    m_lines.at(modem).callsKnown = true;
    const QVector<BusObject> calls = busObjects(answer);
    const QPointer<Calls> self(this);
    for (const BusObject &call : calls) {
        if (self)
            add(modem, call);
    }
}

void Calls::setEmergencyNumbers(const QString &modem, const QVariant &numbers)
{
    QStringList safe = textsIn(numbers);
    for (QString &number : safe)
        number = PhoneNumber::withoutSeparators(number);
    const QStringList before = std::exchange(m_lines.at(modem).emergencyNumbers, safe);
    tellOfLists(false, updateEmergencyNumbers(before, safe));
}

void Calls::receive(const QDBusMessage &message)
{
    if (message.interface() == managerInterface)
        receiveFromManager(message);
    else if (message.interface() == callInterface)
        receiveFromCall(message);
    else
        m_dialogue.receive(message);
}

void Calls::receiveFromManager(const QDBusMessage &message)
{
    const QString modem = message.path();
    const auto line = m_lines.find(modem);
    if (line == m_lines.end())
        return;
    if (message.member() == propertyChanged) {
        const BusProperty property = busProperty(message);
        if (property.name == emergencyNumbersProperty)
            setEmergencyNumbers(modem, property.value);
    } else if (line->second.callsKnown && message.member() == callAdded) {
        add(modem, busObject(message));
    } else if (line->second.callsKnown) {
        remove(modem, busPath(message));
    }
}

void Calls::receiveFromCall(const QDBusMessage &message)
{
    if (message.member() == disconnectReason)
        setReason(message.path(), message.arguments().constFirst().toString());
    else
        change(message.path(), busProperty(message));
}

/// Returns whether the list has changed.
bool Calls::updateModems(const QString &modem)
{
    const bool belongs = m_ofono.isOnline(modem) && m_ofono.has(modem, managerInterface);
    const auto place = std::lower_bound(m_modems.cbegin(), m_modems.cend(), modem);
    const int index = static_cast<int>(place - m_modems.cbegin());
    const bool isThere = place != m_modems.cend() && *place == modem;
    if (belongs && !isThere)
        m_modems.insert(index, modem);
    else if (!belongs && isThere)
        m_modems.removeAt(index);
    return belongs != isThere;
}

/// Takes what a modem had \a before and has \a now. Returns whether the list has changed.
bool Calls::updateEmergencyNumbers(const QStringList &before, const QStringList &now)
{
    bool changes = false;
    for (const QString &number : now) {
        if (++m_numberUses[number] > 1)
            continue;
        m_emergencyNumbers.append(number);
        changes = true;
    }
    for (const QString &number : before) {
        if (--m_numberUses[number] > 0)
            continue;
        m_numberUses.erase(number);
        m_emergencyNumbers.removeOne(number);
        changes = true;
    }
    return changes;
}

/// Returns whether this object still exists.
bool Calls::tellOfLists(bool modemsChange, bool numbersChange)
{
    const QPointer<Calls> self(this);
    if (modemsChange)
        Q_EMIT modemsChanged();
    if (self && numbersChange)
        Q_EMIT emergencyNumbersChanged();
    return self;
}

void Calls::dial(const QString &number, const QString &modem)
{
    m_ofono.whenKnown([this, number, modem] { startCall(number, modem); });
}

void Calls::startCall(const QString &text, const QString &modem)
{
    const QString action = QStringLiteral("dial");
    const QString number = PhoneNumber::withoutSeparators(text);
    const bool isEmergency = m_emergencyNumbers.contains(number);
    const QString chosen = isEmergency ? m_ofono.anyModem(modem, managerInterface)
                                       : m_ofono.modemFor(modem, managerInterface);
    if (!isEmergency && !PhoneNumber::isDialable(number))
        fail(action, 0, number, Telephony::InvalidFormat);
    else if (m_ofono.status() == Telephony::NoService || m_ofono.status() == Telephony::NoBus)
        fail(action, 0, number, Telephony::NoStack);
    else if (!isEmergency && PhoneNumber::isRequest(number))
        m_dialogue.begin(number, modem);
    else if (chosen.isEmpty())
        fail(action, 0, number,
             m_ofono.status() == Telephony::Hung ? Telephony::NoAnswer : Telephony::NoModem);
    else
        tell(
            {action,
             0,
             number,
             chosen,
             {chosen, managerInterface, QStringLiteral("Dial"), {number, QString()}, isEmergency}});
}

void Calls::answer(int call)
{
    const Call *const found = find(call);
    if (found != nullptr && found->state() == QLatin1String("waiting"))
        manage(QStringLiteral("answer"), QStringLiteral("HoldAndAnswer"), call);
    else if (found != nullptr)
        tell({QStringLiteral("answer"),
              call,
              found->number(),
              found->modem(),
              {found->path(), callInterface, QStringLiteral("Answer"), {}}});
    else
        fail(QStringLiteral("answer"), call, {}, Telephony::NoCall);
}

void Calls::holdAndAnswer(int call)
{
    manage(QStringLiteral("holdAndAnswer"), QStringLiteral("HoldAndAnswer"), call);
}

void Calls::endAndAnswer(int call)
{
    manage(QStringLiteral("endAndAnswer"), QStringLiteral("ReleaseAndAnswer"), call);
}

void Calls::hangUp(int call)
{
    const Call *const found = find(call);
    if (found != nullptr)
        tell({hangUpAction,
              call,
              found->number(),
              found->modem(),
              {found->path(), callInterface, QStringLiteral("Hangup"), {}, true}});
    else
        fail(hangUpAction, call, {}, Telephony::NoCall);
}

void Calls::hangUpAll(const QString &modem)
{
    QStringList modems;
    for (const Call &call : calls()) {
        if (modem.isEmpty() || call.modem() == modem)
            modems.append(call.modem());
    }
    modems.removeDuplicates();
    if (modems.isEmpty())
        fail(QStringLiteral("hangUpAll"), 0, {}, Telephony::NoCall);
    for (const QString &path : std::as_const(modems)) {
        tell({QStringLiteral("hangUpAll"),
              0,
              {},
              path,
              {path, managerInterface, QStringLiteral("HangupAll"), {}, true}});
    }
}

void Calls::swap(const QString &modem)
{
    manageOngoing(QStringLiteral("swap"), QStringLiteral("SwapCalls"), modem);
}

void Calls::join(const QString &modem)
{
    manageOngoing(QStringLiteral("join"), QStringLiteral("CreateMultiparty"), modem);
}

void Calls::split(int call)
{
    const Call *const found = find(call);
    if (found != nullptr)
        tell({QStringLiteral("split"),
              call,
              found->number(),
              found->modem(),
              {found->modem(),
               managerInterface,
               QStringLiteral("PrivateChat"),
               {QVariant::fromValue(QDBusObjectPath(found->path()))}}});
    else
        fail(QStringLiteral("split"), call, {}, Telephony::NoCall);
}

void Calls::sendTones(const QString &tones, const QString &modem)
{
    const QString action = QStringLiteral("sendTones");
    const auto line = m_lines.find(ongoingModem(modem));
    if (line == m_lines.end()) {
        fail(action, 0, {}, Telephony::NoCall);
        return;
    }
    std::optional<QString> &waiting = line->second.tones;
    const bool isSending = waiting.has_value();
    const QString all = waiting.value_or(QString()) + tones;
    if (!PhoneNumber::areTones(all)) {
        fail(action, 0, {}, Telephony::InvalidFormat);
        return;
    }
    if (!line->second.wishes.isEmpty()) {
        fail(action, 0, {}, Telephony::InProgress);
        return;
    }
    waiting = all;
    if (!isSending)
        sendRemainingTones(line->first);
}

/// oFono takes nothing else until it has sent the tones of a command, so that each has one alone:
/// who wants to end the call meanwhile waits for a second at most.
void Calls::sendRemainingTones(const QString &modem)
{
    Line &line = m_lines.at(modem);
    if (line.tones->isEmpty()) {
        line.tones.reset();
        tellWhatWaits(line);
        return;
    }
    const QString tone = line.tones->left(1);
    line.tones->remove(0, 1);
    m_ofono.command({modem, managerInterface, QStringLiteral("SendTones"), {tone}},
                    m_ofono.patience().network, line.context.get(),
                    [this, modem](const QDBusMessage &answer) {
                        if (answer.type() == QDBusMessage::ErrorMessage)
                            dropTones(modem, Telephony::errorOf(answer));
                        else
                            sendRemainingTones(modem);
                    });
}

/// oFono says that the tones have failed before it says that their call has ended, and the next
/// call may have its path at once. The answer to a further question comes after both.
void Calls::dropTones(const QString &modem, Telephony::Error error)
{
    Line &line = m_lines.at(modem);
    line.tones->clear();
    m_ofono.command({modem, managerInterface, QStringLiteral("GetCalls"), {}},
                    m_ofono.patience().command, line.context.get(),
                    [this, modem](const QDBusMessage &) { sendRemainingTones(modem); });
    fail(QStringLiteral("sendTones"), 0, {}, error);
}

/// Calls a method of the manager that concerns \a call.
void Calls::manage(const QString &action, const QString &method, int call)
{
    const Call *const found = find(call);
    if (found != nullptr)
        tell({action,
              call,
              found->number(),
              found->modem(),
              {found->modem(), managerInterface, method, {}}});
    else
        fail(action, call, {}, Telephony::NoCall);
}

/// Calls a method of the manager that concerns the active calls.
void Calls::manageOngoing(const QString &action, const QString &method, const QString &modem)
{
    const QString chosen = ongoingModem(modem);
    if (!chosen.isEmpty())
        tell({action, 0, {}, chosen, {chosen, managerInterface, method, {}}});
    else
        fail(action, 0, {}, Telephony::NoCall);
}

QString Calls::ongoingModem(const QString &wanted) const
{
    const Call *const found = find(ongoing());
    const QString modem = wanted.isEmpty() && found != nullptr ? found->modem() : wanted;
    return m_lines.count(modem) > 0 ? modem : QString();
}

/// oFono refuses everything while it sends tones, and to end a call while it ends another one.
void Calls::tell(const Wish &wish)
{
    const auto line = m_lines.find(wish.modem);
    const bool endsCall = wish.action == hangUpAction;
    const bool isRefused =
        line != m_lines.end() && (line->second.tones || (endsCall && line->second.endingCall != 0));
    if (isRefused)
        keepForLater(line->second, wish);
    else
        give(wish);
}

/// The tones that follow were not meant for what comes then. A user who sees nothing happen may
/// touch the button again.
void Calls::keepForLater(Line &line, const Wish &wish)
{
    if (line.tones)
        line.tones->clear();
    const auto isSame = [&wish](const Wish &other) {
        return other.action == wish.action && other.call == wish.call
            && other.number == wish.number;
    };
    const bool endsAlready = wish.action == hangUpAction && wish.call == line.endingCall;
    if (endsAlready || std::any_of(line.wishes.cbegin(), line.wishes.cend(), isSame))
        return;
    if (line.wishes.size() >= mostWishes && !wish.command.isUrgent)
        fail(wish, Telephony::InProgress);
    else
        line.wishes.append(wish);
}

/// A call that has ended meanwhile need not be ended any more, and another one may have its path.
void Calls::tellWhatWaits(Line &line)
{
    const QVector<Wish> wishes = std::exchange(line.wishes, {});
    for (const Wish &wish : wishes) {
        if (wish.call == 0 || find(wish.call) != nullptr)
            tell(wish);
        else if (wish.action != hangUpAction)
            fail(wish, Telephony::NoCall);
    }
}

void Calls::give(const Wish &wish)
{
    const bool endsCall = wish.action == hangUpAction;
    if (const auto line = m_lines.find(wish.modem); line != m_lines.end() && endsCall)
        line->second.endingCall = wish.call;
    m_ofono.command(wish.command, m_ofono.patience().command, this,
                    [this, wish, endsCall](const QDBusMessage &answer) {
                        if (answer.type() == QDBusMessage::ErrorMessage)
                            fail(wish, Telephony::errorOf(answer));
                        const auto found = m_lines.find(wish.modem);
                        if (!endsCall || found == m_lines.end())
                            return;
                        found->second.endingCall = 0;
                        tellWhatWaits(found->second);
                    });
}

void Calls::fail(const Wish &wish, Telephony::Error error)
{
    fail(wish.action, wish.call, wish.number, error);
}

/// Emits the signal later, when the caller of a function has its result.
void Calls::fail(const QString &action, int call, const QString &number, Telephony::Error error)
{
    m_ofono.later([=] {
        Q_EMIT failed(action, call, safeText(number), error, Telephony::explanationOf(error));
    });
}
