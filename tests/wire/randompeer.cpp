// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "randompeer.h"

#include <algorithm>
#include <map>
#include <utility>

namespace {

/// The signatures with which the services answer the call UI.
QByteArray replySignature(const QByteArray &method)
{
    static const std::map<QByteArray, QByteArray> signatures{
        {"add_event", "u"},
        {"replace_event", "u"},
        {"cancel", "b"},
        {"query", "av"},
        {"get_attributes_by_cookies", "a{ua{ss}}"},
        {"Notify", "u"},
        {"GetNotificationsByCategory", "a(susssasa{sv}i)"},
        {"GetModems", "a(oa{sv})"},
        {"GetProperties", "a{sv}"},
        {"GetAll", "uua(su)"},
        {"Introspect", "s"},
    };
    const auto found = signatures.find(method);
    return found == signatures.end() ? QByteArray() : found->second;
}

} // namespace

RandomPeer::RandomPeer(QString address, QByteArray service, quint64 seed, SentMessages &sent)
    : m_address(std::move(address))
    , m_service(std::move(service))
    , m_random(seed)
    , m_sent(sent)
{
    connectToBus();
}

void RandomPeer::connectToBus()
{
    m_connection.reset(); // Close the old connection before opening the new one.
    m_connection = std::make_unique<RawConnection>(m_address);
    m_connection->setHandler([this](DBusMessage *message) { take(message); });
    if (!m_service.isEmpty() && !m_connection->own(m_service))
        qFatal("%s is not on the bus.", m_service.constData());
}

void RandomPeer::send(DBusMessage *message)
{
    m_sent.note(m_service.isEmpty() ? QByteArray("stranger") : m_service, message);
    m_connection->send(message);
}

void RandomPeer::pump()
{
    m_connection->pump();
    for (Waiting &waiting : m_waiting) {
        if (waiting.turns-- == 0)
            answer(std::exchange(waiting.call, nullptr).get());
    }
    m_waiting.erase(std::remove_if(m_waiting.begin(), m_waiting.end(),
                                   [](const Waiting &waiting) { return !waiting.call; }),
                    m_waiting.end());
}

void RandomPeer::restart()
{
    m_waiting.clear();
    connectToBus();
}

void RandomPeer::take(DBusMessage *message)
{
    if (dbus_message_get_type(message) != DBUS_MESSAGE_TYPE_METHOD_CALL)
        return;
    ++m_callCount;
    m_caller = dbus_message_get_sender(message);
    m_lastSerial = dbus_message_get_serial(message);
    if (m_random.oneIn(200))
        return; // The call is never answered.
    if (m_random.oneIn(8))
        m_waiting.push_back({RawMessage(dbus_message_ref(message)), m_random.below(60)});
    else
        answer(message);
}

void RandomPeer::answer(DBusMessage *call)
{
    const QByteArray caller = dbus_message_get_sender(call);
    const quint32 serial = dbus_message_get_serial(call);
    RawMessage message = RawConnection::makeReply(caller, serial);
    const QByteArray right = replySignature(dbus_message_get_member(call));
    const quint64 choice = m_random.below(10);
    if (choice == 0) {
        message = RawConnection::makeError(caller, serial, m_body.dottedName());
        m_body.appendAbout(message.get(), "s");
    } else if (choice < 7) {
        m_body.append(message.get(), right);
    } else {
        m_body.appendAbout(message.get(), right);
    }
    send(message.get());
}
