// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "ofono.h"

#include "busvalues.h"

#include "callqueue.h"
#include "receivelimits.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusServiceWatcher>
#include <QDebug>
#include <QPointer>

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

namespace {

const QLatin1String service("org.ofono");
const QLatin1String managerPath("/");
const QLatin1String managerInterface("org.ofono.Manager");
const QLatin1String modemInterface("org.ofono.Modem");
const QLatin1String registrationInterface("org.ofono.NetworkRegistration");
const QLatin1String modemAdded("ModemAdded");
const QLatin1String modemRemoved("ModemRemoved");
const QLatin1String onlineProperty("Online");
const QLatin1String interfacesProperty("Interfaces");

/// All objects share this connection. It is never closed: QtDBus would free calls that are
/// unanswered then while they are still in use.
const QLatin1String connectionName("com.nimbo.calls");

/// With the questions, of which 32 are under way at a time, one object stays below the 128
/// unanswered calls of a connection that a stock system bus allows. Where several objects reach
/// that limit together, the bus refuses a command, with the same error as this limit.
constexpr int mostCommands = 64;

/// An oFono that hangs may go on after minutes, and would not be asked again.
constexpr int forever = std::numeric_limits<int>::max();

} // namespace

Ofono::Ofono()
    : m_bus(QString())
{
    m_silence.setSingleShot(true);
    connect(&m_silence, &QTimer::timeout, this,
            [this] { m_turns.add([this] { suspectSilence(); }); });
    follow(managerInterface, modemAdded, QStringLiteral("oa{sv}"));
    follow(managerInterface, modemRemoved, QStringLiteral("o"));
    follow(modemInterface, QStringLiteral("PropertyChanged"), QStringLiteral("sv"));
}

Ofono::~Ofono() = default;

void Ofono::follow(const QString &interface, const QString &member, const QString &signature)
{
    m_followed.append({interface, member, signature});
}

void Ofono::start()
{
    m_bus = QDBusConnection::connectToBus(QDBusConnection::SystemBus, connectionName);
    if (!m_bus.isConnected()) {
        loseBus();
        return;
    }
    removeReceiveLimits(m_bus);
    m_bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                  QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
                  this, SLOT(loseBus()));
    m_serviceWatcher = std::make_unique<QDBusServiceWatcher>(service, m_bus);
    connect(m_serviceWatcher.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) {
                m_turns.add([this, owner] { setOwner(owner); });
            });
    askForOwner();
}

bool Ofono::has(const QString &modem, const QString &interface) const
{
    const auto found = m_modems.find(modem);
    return found != m_modems.cend() && found->second.interfaces.contains(interface);
}

bool Ofono::isOnline(const QString &modem) const
{
    const auto found = m_modems.find(modem);
    return found != m_modems.cend() && found->second.online;
}

QStringList Ofono::onlineModems(const QString &interface) const
{
    QStringList paths;
    for (const auto &[path, modem] : m_modems) {
        if (modem.online && modem.interfaces.contains(interface))
            paths.append(path);
    }
    return paths;
}

QString Ofono::modemFor(const QString &wanted, const QString &interface) const
{
    if (!wanted.isEmpty())
        return has(wanted, interface) ? wanted : QString();
    const QStringList online = onlineModems(interface);
    // Without a SIM there is no registration, and only emergency numbers can be called.
    const auto registers = [this](const QString &modem) {
        return has(modem, registrationInterface);
    };
    const auto found = std::find_if(online.cbegin(), online.cend(), registers);
    return found == online.cend() ? online.value(0) : *found;
}

QString Ofono::anyModem(const QString &wanted, const QString &interface) const
{
    if (has(wanted, interface))
        return wanted;
    const QStringList online = onlineModems(interface);
    if (!online.isEmpty())
        return online.constFirst();
    const auto any = std::find_if(m_modems.cbegin(), m_modems.cend(), [&](const auto &entry) {
        return entry.second.interfaces.contains(interface);
    });
    return any == m_modems.cend() ? QString() : any->first;
}

void Ofono::later(const std::function<void()> &action)
{
    QMetaObject::invokeMethod(
        this, [this, action] { m_turns.add(action); }, Qt::QueuedConnection);
}

void Ofono::whenKnown(const std::function<void()> &action)
{
    if (m_status == Telephony::Starting)
        m_waiting.append(action);
    else
        later(action);
}

void Ofono::ask(const Command &question, const QString &signature, QObject *context,
                const AnswerHandler &handler)
{
    if (m_owner.isEmpty())
        return;
    ++m_questions;
    watchForSilence();
    const auto call = [bus = m_bus, owner = m_owner, question] {
        return bus.asyncCall(QDBusMessage::createMethodCall(owner, question.path,
                                                            question.interface, question.method),
                             forever);
    };
    const QPointer<QObject> asker(context);
    m_calls->add(m_life.get(), call, [=](const QDBusMessage &answer) {
        const QPointer<QObject> life(m_life.get());
        m_turns.add([=] {
            if (life)
                readQuery(question, signature, asker, handler, answer);
        });
    });
}

void Ofono::readQuery(const Command &question, const QString &signature,
                      const QPointer<QObject> &context, const AnswerHandler &handler,
                      const QDBusMessage &answer)
{
    --m_questions;
    if (isFromStranger(answer, m_owner)) {
        // The true answer is lost.
        if (context)
            ask(question, signature, context, handler);
        else
            updateStatus();
        return;
    }
    const bool isError = answer.type() == QDBusMessage::ErrorMessage;
    const bool isReadable = !isError && answer.signature() == signature;
    if (isError && context)
        qWarning() << "Could not ask oFono for" << question.method << QDBusError(answer);
    else if (!isReadable && context)
        qWarning() << "oFono has answered" << question.method << "with" << answer.signature();
    const QPointer<Ofono> self(this);
    if (context)
        handler(isReadable ? answer : QDBusMessage());
    if (self)
        updateStatus();
}

void Ofono::command(const Command &command, std::chrono::milliseconds patience, QObject *context,
                    const AnswerHandler &handler)
{
    const bool isTooMuch = m_commands >= mostCommands && !command.isUrgent;
    QDBusPendingCall call = QDBusPendingCall::fromError(
        QDBusError(isTooMuch ? QDBusError::LimitsExceeded : QDBusError::ServiceUnknown, service));
    if (!m_owner.isEmpty() && !isTooMuch) {
        QDBusMessage message = QDBusMessage::createMethodCall(m_owner, command.path,
                                                              command.interface, command.method);
        message.setArguments(command.arguments);
        call = m_bus.asyncCall(message, static_cast<int>(patience.count()));
    }
    ++m_commands;
    watchForSilence();
    const QPointer<QObject> asker(context);
    whenAnswered(call, this, [=, owner = m_owner](const QDBusMessage &answer) {
        m_turns.add([=] {
            --m_commands;
            if (!asker)
                return;
            handler(isFromStranger(answer, owner)
                        ? QDBusMessage::createError(QDBusError::NoReply, service)
                        : answer);
        });
    });
}

/// An error that this process has made, such as a time-out, has no sender.
bool Ofono::isFromStranger(const QDBusMessage &answer, const QString &owner) const
{
    return !answer.service().isEmpty() && answer.service() != owner && !isFromBus(answer);
}

void Ofono::loseBus()
{
    m_turns.add([this] {
        if (m_bus.isConnected())
            return;
        m_hasBus = false;
        const QPointer<Ofono> self(this);
        setOwner({});
        if (self)
            updateStatus();
    });
}

void Ofono::askForOwner()
{
    const QDBusPendingCall call =
        m_bus.asyncCall(busQuestion(QStringLiteral("GetNameOwner"), service));
    whenAnswered(call, this, [this](const QDBusMessage &answer) {
        if (!answer.service().isEmpty() && !isFromBus(answer)) {
            askForOwner();
            return;
        }
        const QString owner = answer.type() == QDBusMessage::ReplyMessage
            ? answer.arguments().value(0).toString()
            : QString();
        m_turns.add([this, owner] { setOwner(owner); });
    });
}

void Ofono::setOwner(const QString &owner)
{
    if (m_ownerKnown && owner == m_owner)
        return;
    if (!m_owner.isEmpty())
        switchSignals(&QDBusConnection::disconnect);
    m_ownerKnown = true;
    m_owner = owner;
    m_calls = std::make_unique<CallQueue>();
    m_life = std::make_unique<QObject>();
    m_refused = false;
    m_known = false;
    m_questions = 0;
    m_pinged = false;
    m_hung = false;
    m_silence.stop();
    if (!m_owner.isEmpty()) {
        switchSignals(&QDBusConnection::connect);
        askForModems();
    }
    const QPointer<Ofono> self(this);
    forgetModems();
    if (self)
        updateStatus();
}

/// Only the owner's signals are asked for. A subscription to the name would block for its owner.
void Ofono::switchSignals(SignalSwitch change)
{
    for (const Followed &followed : std::as_const(m_followed)) {
        (m_bus.*change)(m_owner, QString(), followed.interface, followed.member, QStringList(),
                        followed.signature, this, SLOT(receive(QDBusMessage)));
    }
}

void Ofono::forgetModems()
{
    const QPointer<Ofono> self(this);
    while (self && !m_modems.empty()) {
        const auto removed = m_modems.extract(std::prev(m_modems.cend()));
        Q_EMIT modemChanged(removed.key());
    }
}

void Ofono::askForModems()
{
    ask({managerPath, managerInterface, QStringLiteral("GetModems"), {}},
        QStringLiteral("a(oa{sv})"), m_life.get(),
        [this](const QDBusMessage &answer) { readModems(answer); });
}

void Ofono::readModems(const QDBusMessage &answer)
{
    m_refused = answer.type() == QDBusMessage::InvalidMessage;
    m_known = m_refused;
    const QVector<BusObject> modems = busObjects(answer);
    const QPointer<Ofono> self(this);
    for (const BusObject &modem : modems) {
        if (self)
            setModem(modem.path,
                     {isTrue(modem.properties.value(onlineProperty)),
                      textsIn(modem.properties.value(interfacesProperty))});
    }
}

void Ofono::receive(const QDBusMessage &message)
{
    m_turns.add([this, message] {
        // The owner may have changed since.
        if (message.service() == m_owner)
            handle(message);
    });
}

void Ofono::handle(const QDBusMessage &message)
{
    // A modem that is added before the list of modems comes is in the list as well.
    if (message.interface() == managerInterface && message.member() == modemRemoved) {
        removeModem(busPath(message));
    } else if (message.interface() == managerInterface) {
        const BusObject modem = busObject(message);
        setModem(modem.path,
                 {isTrue(modem.properties.value(onlineProperty)),
                  textsIn(modem.properties.value(interfacesProperty))});
    } else if (message.interface() == modemInterface) {
        changeModem(message);
    } else {
        Q_EMIT received(message);
    }
}

void Ofono::changeModem(const QDBusMessage &message)
{
    const auto found = m_modems.find(message.path());
    if (found == m_modems.end())
        return;
    Modem modem = found->second;
    const BusProperty property = busProperty(message);
    if (property.name == onlineProperty)
        modem.online = isTrue(property.value);
    else if (property.name == interfacesProperty)
        modem.interfaces = textsIn(property.value);
    setModem(message.path(), modem);
}

void Ofono::setModem(const QString &path, const Modem &modem)
{
    const auto found = m_modems.find(path);
    if (found == m_modems.end() && m_modems.size() >= mostBusObjects)
        return;
    if (found != m_modems.end() && found->second.online == modem.online
        && found->second.interfaces == modem.interfaces)
        return;
    m_modems[path] = modem;
    Q_EMIT modemChanged(path);
}

void Ofono::removeModem(const QString &path)
{
    if (m_modems.erase(path) > 0)
        Q_EMIT modemChanged(path);
}

void Ofono::watchForSilence()
{
    if (!m_owner.isEmpty() && !m_pinged && !m_silence.isActive())
        m_silence.start(m_patience.silence);
}

/// A command may take its time, so it is a ping that tells whether oFono still answers.
void Ofono::suspectSilence()
{
    if (m_pinged) {
        m_hung = true;
        updateStatus();
        return;
    }
    if (m_owner.isEmpty() || !awaitsAnswers())
        return;
    m_pinged = true;
    m_silence.start(m_patience.silence);
    const QDBusPendingCall ping =
        m_bus.asyncCall(QDBusMessage::createMethodCall(m_owner, managerPath,
                                                       QStringLiteral("org.freedesktop.DBus.Peer"),
                                                       QStringLiteral("Ping")),
                        forever);
    whenAnswered(ping, m_life.get(), [this](const QDBusMessage &) {
        const QPointer<QObject> life(m_life.get());
        m_turns.add([this, life] {
            if (!life)
                return;
            m_pinged = false;
            m_hung = false;
            m_silence.stop();
            if (awaitsAnswers())
                watchForSilence();
            updateStatus();
        });
    });
}

Telephony::Status Ofono::currentStatus() const
{
    if (!m_hasBus)
        return Telephony::NoBus;
    if (!m_ownerKnown)
        return Telephony::Starting;
    if (m_owner.isEmpty() || m_refused)
        return Telephony::NoService;
    if (m_hung)
        return Telephony::Hung;
    return m_known ? Telephony::Ready : Telephony::Starting;
}

/// Emits the signal last, because a handler may destroy this object.
void Ofono::updateStatus()
{
    m_known = m_known || (!m_owner.isEmpty() && m_questions == 0);
    const Telephony::Status status = currentStatus();
    if (status == m_status)
        return;
    m_status = status;
    if (status != Telephony::Starting) {
        const auto waiting = std::exchange(m_waiting, {});
        for (const auto &action : waiting)
            m_turns.add(action);
    }
    Q_EMIT statusChanged();
}
