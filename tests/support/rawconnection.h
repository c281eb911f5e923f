// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <dbus/dbus.h>

#include <functional>
#include <memory>

/// Releases a reference of a message.
struct UnrefMessage
{
    void operator()(DBusMessage *message) const { dbus_message_unref(message); }
};

/// A message of libdbus with a reference to it.
using RawMessage = std::unique_ptr<DBusMessage, UnrefMessage>;

/// A connection to a message bus that sends whatever libdbus can write: answers to calls that
/// nobody has made, replies in the place of others, bodies of any signature. QtDBus only writes
/// what an honest process would.
///
/// The connection is private to the object and has no thread. Messages are handled in pump() and
/// call().
class RawConnection
{
public:
    /// Takes an incoming call or signal. The handler decides whether and how it answers a call.
    using Handler = std::function<void(DBusMessage *message)>;

    /// Connects to the bus at \a address, and registers with it.
    explicit RawConnection(const QString &address);
    ~RawConnection();

    /// Returns whether the bus has accepted the connection and has not closed it since.
    bool isOpen() const;
    /// Returns the unique name on the bus; empty if the bus has not accepted the connection.
    QByteArray uniqueName() const;

    /// Takes \a name, also from an owner that took it with this function: the last taker owns the
    /// name, and the one before gets it back. Blocks until the bus answers. Returns false if
    /// another process keeps the name.
    bool own(const QByteArray &name);
    /// Releases \a name. Blocks until the bus answers. Returns false if another process owns it.
    bool release(const QByteArray &name);

    /// Makes a call. D-Bus allows calls without an \a interface.
    static RawMessage makeCall(const QByteArray &destination, const QByteArray &path,
                               const QByteArray &interface, const QByteArray &member);
    /// Makes a signal for all subscribers, or only for \a destination if there is one.
    static RawMessage makeSignal(const QByteArray &destination, const QByteArray &path,
                                 const QByteArray &interface, const QByteArray &member);
    /// Makes an answer to the message \a replySerial (not 0) of \a destination, even if others were
    /// called.
    static RawMessage makeReply(const QByteArray &destination, quint32 replySerial);
    /// Makes such an answer that is an error with the name \a error.
    static RawMessage makeError(const QByteArray &destination, quint32 replySerial,
                                const QByteArray &error);

    /// Queues \a message and returns its serial. The next pump() sends it.
    quint32 send(DBusMessage *message);

    /// Sends \a message and returns its answer, a reply or an error, or null if none comes within
    /// \a timeout milliseconds. Handles other messages and calls \a meanwhile repeatedly until
    /// then. The serial of the answer shows how many messages its sender has sent.
    RawMessage call(DBusMessage *message, int timeout, const std::function<void()> &meanwhile = {});

    /// Sets the handler for incoming calls and signals. Without one they are dropped.
    void setHandler(const Handler &handler) { m_handler = handler; }

    /// Sends the queued messages and handles the received ones, without waiting for more.
    void pump();

private:
    Q_DISABLE_COPY(RawConnection)

    void handle(RawMessage message);

    DBusConnection *m_connection = nullptr;
    Handler m_handler;
    quint32 m_awaited = 0; ///< The serial of the call whose answer call() waits for.
    RawMessage m_answer;
};
