// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "rawconnection.h"

#include <QElapsedTimer>

#include <utility>

namespace {

/// How long libdbus may wait for messages in one turn.
constexpr int turn = 5;

/// libdbus expects a null pointer for an omitted text.
const char *orNull(const QByteArray &text)
{
    return text.isEmpty() ? nullptr : text.constData();
}

} // namespace

RawConnection::RawConnection(const QString &address)
    : m_connection(dbus_connection_open_private(address.toUtf8().constData(), nullptr))
{
    if (m_connection == nullptr)
        return;
    dbus_connection_set_exit_on_disconnect(m_connection, FALSE);
    dbus_bus_register(m_connection, nullptr);
}

RawConnection::~RawConnection()
{
    if (m_connection == nullptr)
        return;
    dbus_connection_close(m_connection);
    dbus_connection_unref(m_connection);
}

bool RawConnection::isOpen() const
{
    return !uniqueName().isEmpty() && dbus_connection_get_is_connected(m_connection);
}

QByteArray RawConnection::uniqueName() const
{
    return m_connection == nullptr ? nullptr : dbus_bus_get_unique_name(m_connection);
}

bool RawConnection::own(const QByteArray &name)
{
    const int result = dbus_bus_request_name(
        m_connection, name.constData(),
        DBUS_NAME_FLAG_ALLOW_REPLACEMENT | DBUS_NAME_FLAG_REPLACE_EXISTING, nullptr);
    return result == DBUS_REQUEST_NAME_REPLY_PRIMARY_OWNER
        || result == DBUS_REQUEST_NAME_REPLY_ALREADY_OWNER;
}

bool RawConnection::release(const QByteArray &name)
{
    return dbus_bus_release_name(m_connection, name.constData(), nullptr)
        == DBUS_RELEASE_NAME_REPLY_RELEASED;
}

RawMessage RawConnection::makeCall(const QByteArray &destination, const QByteArray &path,
                                   const QByteArray &interface, const QByteArray &member)
{
    return RawMessage(dbus_message_new_method_call(destination.constData(), path.constData(),
                                                   orNull(interface), member.constData()));
}

RawMessage RawConnection::makeSignal(const QByteArray &destination, const QByteArray &path,
                                     const QByteArray &interface, const QByteArray &member)
{
    RawMessage message(
        dbus_message_new_signal(path.constData(), interface.constData(), member.constData()));
    dbus_message_set_destination(message.get(), orNull(destination));
    return message;
}

RawMessage RawConnection::makeReply(const QByteArray &destination, quint32 replySerial)
{
    RawMessage message(dbus_message_new(DBUS_MESSAGE_TYPE_METHOD_RETURN));
    dbus_message_set_destination(message.get(), destination.constData());
    dbus_message_set_reply_serial(message.get(), replySerial);
    dbus_message_set_no_reply(message.get(), TRUE);
    return message;
}

RawMessage RawConnection::makeError(const QByteArray &destination, quint32 replySerial,
                                    const QByteArray &error)
{
    RawMessage message(dbus_message_new(DBUS_MESSAGE_TYPE_ERROR));
    dbus_message_set_destination(message.get(), destination.constData());
    dbus_message_set_reply_serial(message.get(), replySerial);
    dbus_message_set_error_name(message.get(), error.constData());
    dbus_message_set_no_reply(message.get(), TRUE);
    return message;
}

quint32 RawConnection::send(DBusMessage *message)
{
    dbus_uint32_t serial = 0;
    dbus_connection_send(m_connection, message, &serial);
    return serial;
}

RawMessage RawConnection::call(DBusMessage *message, int timeout,
                               const std::function<void()> &meanwhile)
{
    m_answer.reset();
    m_awaited = send(message);
    QElapsedTimer timer;
    timer.start();
    while (!m_answer && isOpen() && !timer.hasExpired(timeout)) {
        if (meanwhile)
            meanwhile();
        dbus_connection_read_write(m_connection, turn);
        pump();
    }
    m_awaited = 0;
    return std::exchange(m_answer, nullptr);
}

void RawConnection::pump()
{
    dbus_connection_read_write(m_connection, 0);
    while (DBusMessage *message = dbus_connection_pop_message(m_connection))
        handle(RawMessage(message));
}

void RawConnection::handle(RawMessage message)
{
    const int type = dbus_message_get_type(message.get());
    const bool isAnswer =
        type == DBUS_MESSAGE_TYPE_METHOD_RETURN || type == DBUS_MESSAGE_TYPE_ERROR;
    if (!isAnswer && m_handler)
        m_handler(message.get());
    else if (m_awaited != 0 && dbus_message_get_reply_serial(message.get()) == m_awaited)
        m_answer = std::move(message);
}
