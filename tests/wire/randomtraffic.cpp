// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "randomtraffic.h"

#include <algorithm>
#include <array>

namespace {

const QByteArray uiService("com.nimbo.parley.ui");
const QByteArray notifications("org.freedesktop.Notifications");
const QByteArray timeDaemon("com.nimbo.timed");
const QByteArray ofono("org.ofono");
const QByteArray bus("org.freedesktop.DBus");
const QByteArray busPath("/org/freedesktop/DBus");
const QByteArray peer("org.freedesktop.DBus.Peer");

struct Signal
{
    QByteArray sender; ///< The service that emits the signal.
    QByteArray path;
    QByteArray interface;
    QByteArray member;
    QByteArray signature;
};

/// The signals to which the UI, or QtDBus in it, subscribes.
std::vector<Signal> makeSignals()
{
    std::vector<Signal> list{
        {notifications, "/org/freedesktop/Notifications", notifications, "NotificationClosed",
         "uu"},
        {timeDaemon, "/com/nimbo/timed", timeDaemon, "alarm_triggers_changed", "a{ux}"},
        {ofono, "/", "org.ofono.Manager", "ModemAdded", "oa{sv}"},
        {ofono, "/", "org.ofono.Manager", "ModemRemoved", "o"},
        {bus, busPath, bus, "NameOwnerChanged", "sss"},
        {bus, busPath, bus, "NameAcquired", "s"},
        {bus, busPath, bus, "NameLost", "s"},
    };
    // The rules are not read before there are SIMs, so the signals that bring SIMs are more
    // frequent.
    for (const char *modem : {"/ril_0", "/ril_1", "/ril_0", "/ril_1"}) {
        list.push_back({ofono, "/", "org.ofono.Manager", "ModemAdded", "oa{sv}"});
        for (const char *interface : {"org.ofono.Modem", "org.ofono.SimManager"})
            list.push_back({ofono, modem, interface, "PropertyChanged", "sv"});
    }
    for (const char *filter : {"/mdm/parleyfilter/dial", "/mdm/parleyfilter/incoming"}) {
        for (const char *member :
             {"RuleAdded", "RuleChanged", "RuleRemoved", "RulesChanged", "DefaultActionChanged"})
            list.push_back({ofono, filter, "org.cobalt.ofono.mdm.ParleyFilter", member, "su"});
    }
    return list;
}

struct Method
{
    QByteArray interface;
    QByteArray member;
    QByteArray signature;
};

/// The methods that the UI has, and some that it does not have.
const std::vector<Method> &methods()
{
    static const QByteArray properties("org.freedesktop.DBus.Properties");
    static const std::vector<Method> list{
        {uiService, "show", "as"},
        {uiService, "showOngoing", ""},
        {uiService, "openUrl", "as"},
        {uiService, "dial", "s"},
        {uiService, "dialViaModem", "ss"},
        {uiService, "showCellularErrorDialog", ""},
        {uiService, "openContactCard", "s"},
        {uiService, "toggleCall", ""},
        {uiService, "answer", "s"},
        {uiService, "deleteLater", ""},
        {properties, "Get", "ss"},
        {properties, "Set", "ssv"},
        {properties, "GetAll", "s"},
        {"org.freedesktop.DBus.Introspectable", "Introspect", ""},
        {peer, "Ping", ""},
        {peer, "GetMachineId", ""},
    };
    return list;
}

/// The signatures of the answers for which the UI waits.
const std::vector<QByteArray> replySignatures{
    "u", "b", "s", "av", "a{ua{ss}}", "a(susssasa{sv}i)", "a(oa{sv})", "a{sv}", "uua(su)"};

} // namespace

RandomTraffic::RandomTraffic(const QString &sessionBus, const QString &systemBus, quint64 seed)
    : m_random(seed)
    , m_session(makeSide(sessionBus, {notifications}, seed + 1))
    , m_system(makeSide(systemBus, {timeDaemon, ofono}, seed + 3))
{
}

RandomTraffic::Side RandomTraffic::makeSide(const QString &address,
                                            const std::vector<QByteArray> &services, quint64 seed)
{
    Side side;
    side.stranger = std::make_unique<RandomPeer>(address, QByteArray(), seed, m_sent);
    for (const QByteArray &service : services)
        side.services.push_back(std::make_unique<RandomPeer>(address, service, ++seed, m_sent));
    return side;
}

void RandomTraffic::pump()
{
    pump(m_session);
    pump(m_system);
}

void RandomTraffic::pump(Side &side)
{
    side.stranger->pump();
    for (const auto &service : side.services) {
        service->pump();
        side.serial = std::max(side.serial, service->lastSerial());
    }
}

bool RandomTraffic::findUi()
{
    RawMessage call = RawConnection::makeCall(bus, busPath, bus, "GetNameOwner");
    const char *name = uiService.constData();
    dbus_message_append_args(call.get(), DBUS_TYPE_STRING, &name, DBUS_TYPE_INVALID);
    const RawMessage answer = m_session.stranger->connection().call(call.get(), 1000);
    const char *owner = nullptr;
    if (answer
        && dbus_message_get_args(answer.get(), nullptr, DBUS_TYPE_STRING, &owner,
                                 DBUS_TYPE_INVALID))
        m_session.ui = owner;
    // The UI owns no name there, but asks for its alarms as soon as it has started.
    m_system.ui = find(m_system, timeDaemon)->caller();
    return !m_session.ui.isEmpty() && !m_system.ui.isEmpty();
}

void RandomTraffic::sendOne()
{
    Side &side = m_random.oneIn(2) ? m_session : m_system;
    if (m_random.oneIn(200))
        return moveName(side);
    const quint64 choice = m_random.below(20);
    if (choice < 8)
        sendSignal();
    else if (choice < 13)
        sendCall();
    else if (choice < 14)
        sendOrder();
    else
        sendReply(side);
}

/// Sends a signal from its service, to all or only to the UI, or from a stranger, only to the UI.
void RandomTraffic::sendSignal()
{
    static const std::vector<Signal> list = makeSignals();
    const Signal signal = m_random.oneOf(list);
    const bool isOfSession =
        signal.sender == notifications || (signal.sender == bus && m_random.oneIn(2));
    Side &side = isOfSession ? m_session : m_system;
    RandomPeer *service = find(side, signal.sender);
    const bool isForged = service == nullptr || m_random.oneIn(3);
    const bool isDirected = isForged || m_random.oneIn(4);

    const RawMessage message = RawConnection::makeSignal(
        isDirected ? side.ui : QByteArray(), m_random.oneIn(20) ? m_body.path() : signal.path,
        signal.interface, signal.member);
    m_body.appendAbout(message.get(), signal.signature);
    (isForged ? side.stranger.get() : service)->send(message.get());
}

void RandomTraffic::sendCall()
{
    // On the system bus the UI has no methods, and has to answer so.
    Side &side = m_random.oneIn(8) ? m_system : m_session;
    const Method method = m_random.oneOf(methods());
    const quint64 choice = m_random.below(10);
    const QByteArray interface = choice == 0 ? QByteArray()
        : choice == 1                        ? m_body.dottedName()
                                             : method.interface;
    const RawMessage message = RawConnection::makeCall(
        side.ui, m_random.oneIn(4) ? m_body.path() : QByteArray("/"), interface, method.member);
    dbus_message_set_no_reply(message.get(), m_random.oneIn(4));
    m_body.appendAbout(message.get(), method.signature);
    side.stranger->send(message.get());
}

/// Makes the screens use one of the native types, so that the UI calls its services.
void RandomTraffic::sendOrder()
{
    const RawMessage message = RawConnection::makeCall(m_session.ui, "/", uiService, "openUrl");
    const char *order = m_random.oneOf(
        std::array{"remind", "remind", "remind", "forget", "rebind", "again", "replies"});
    const char **orders = &order;
    dbus_message_append_args(message.get(), DBUS_TYPE_ARRAY, DBUS_TYPE_STRING, &orders, 1,
                             DBUS_TYPE_INVALID);
    m_session.stranger->send(message.get());
}

/// Sends a stranger's answer to a call that the UI has just made, or is about to make.
void RandomTraffic::sendReply(Side &side)
{
    const quint64 around = side.serial + m_random.below(16);
    const auto serial = static_cast<quint32>(around > 8 ? around - 4 : around + 1);
    RawMessage message = RawConnection::makeReply(side.ui, serial);
    if (m_random.oneIn(4))
        message = RawConnection::makeError(side.ui, serial, m_body.dottedName());
    m_body.appendAbout(message.get(), m_random.oneOf(replySignatures));
    side.stranger->send(message.get());
}

void RandomTraffic::moveName(Side &side)
{
    RandomPeer &service = *side.services[static_cast<size_t>(m_random.below(side.services.size()))];
    switch (m_random.below(8)) {
    case 0:
        side.stranger->connection().own(service.service());
        break;
    case 1:
    case 2:
        side.stranger->connection().release(service.service());
        break;
    case 3:
        service.connection().release(service.service());
        break;
    case 4:
        service.restart();
        break;
    default:
        service.connection().own(service.service());
    }
}

RandomPeer *RandomTraffic::find(Side &side, const QByteArray &service)
{
    const auto found =
        std::find_if(side.services.cbegin(), side.services.cend(),
                     [&service](const auto &one) { return one->service() == service; });
    return found == side.services.cend() ? nullptr : found->get();
}

RawMessage RandomTraffic::ask(Side &side, DBusMessage *call, int timeout,
                              const std::function<void()> &meanwhile)
{
    RawMessage answer = side.stranger->connection().call(call, timeout, [this, &meanwhile] {
        pump();
        meanwhile();
    });
    if (answer)
        side.serial = dbus_message_get_serial(answer.get());
    return answer;
}

bool RandomTraffic::isUiAlive(const QByteArray &number, int timeout,
                              const std::function<void()> &meanwhile)
{
    const RawMessage dial = RawConnection::makeCall(m_session.ui, "/", uiService, "dial");
    const char *text = number.constData();
    dbus_message_append_args(dial.get(), DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
    const RawMessage dialled = ask(m_session, dial.get(), timeout, meanwhile);
    dbus_bool_t isTrue = FALSE;
    if (!dialled
        || !dbus_message_get_args(dialled.get(), nullptr, DBUS_TYPE_BOOLEAN, &isTrue,
                                  DBUS_TYPE_INVALID)
        || !isTrue)
        return false;

    const RawMessage ping = RawConnection::makeCall(m_system.ui, "/", peer, "Ping");
    const RawMessage pinged = ask(m_system, ping.get(), timeout, meanwhile);
    return pinged && dbus_message_get_type(pinged.get()) == DBUS_MESSAGE_TYPE_METHOD_RETURN;
}

int RandomTraffic::callCount() const
{
    int count = 0;
    for (const Side *side : {&m_session, &m_system}) {
        count += side->stranger->callCount();
        for (const auto &service : side->services)
            count += service->callCount();
    }
    return count;
}
