// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <dbus/dbus.h>

#include <functional>
#include <memory>

/// Gives a reference of a message back.
struct UnrefMessage
{
    void operator()(DBusMessage *message) const { dbus_message_unref(message); }
};

/// A message of libdbus, and the reference that keeps it.
using RawMessage = std::unique_ptr<DBusMessage, UnrefMessage>;

/// A connection to a message bus that sends whatever libdbus can write, where QtDBus writes only
/// what an honest process would: answers to calls that nobody made, replies from strangers, bodies
/// of any signature.
///
/// It is private to the object and has no thread: what has come is handled in pump() and call().
class RawConnection
{
public:
    /// Takes a call or a signal that has come. Whether and how a call is answered is up to it.
    using Handler = std::function<void(DBusMessage *message)>;

    /// Connects to the bus at \a address, and says "hello" to it.
    explicit RawConnection(const QString &address);
    ~RawConnection();

    /// Whether the bus has taken the connection, and has not thrown it off since.
    bool isOpen() const;
    /// The unique name on the bus; empty if the bus has not taken the connection.
    QByteArray uniqueName() const;

    /// Takes \a name, from another owner too where that one took it with this method: the one who
    /// took it last has it, and gets it back when those after it are gone. Waits for the bus. False
    /// if somebody else keeps the name.
    bool own(const QByteArray &name);
    /// Gives \a name up. Waits for the bus. False if it was not ours.
    bool release(const QByteArray &name);

    /// Calls without an \a interface are allowed by D-Bus.
    static RawMessage makeCall(const QByteArray &destination, const QByteArray &path,
                               const QByteArray &interface, const QByteArray &member);
    /// For everybody who subscribed to it, or for \a destination alone where there is one.
    static RawMessage makeSignal(const QByteArray &destination, const QByteArray &path,
                                 const QByteArray &interface, const QByteArray &member);
    /// The answer to the message \a replySerial (not 0) of \a destination, whoever was asked.
    static RawMessage makeReply(const QByteArray &destination, quint32 replySerial);
    /// The same, an error named \a error.
    static RawMessage makeError(const QByteArray &destination, quint32 replySerial,
                                const QByteArray &error);

    /// Sends \a message and returns its serial. It is on its way after the next pump().
    quint32 send(DBusMessage *message);

    /// Sends \a message and waits for its answer, a reply or an error, for \a timeout milliseconds
    /// at most; null if none comes. Other messages are handled meanwhile, and \a meanwhile is
    /// called again and again. Answers count up the answerer's serials: dbus_message_get_serial().
    RawMessage call(DBusMessage *message, int timeout, const std::function<void()> &meanwhile = {});

    /// For the calls and signals that come. Without one they are dropped.
    void setHandler(const Handler &handler) { m_handler = handler; }

    /// Sends what is to be sent and handles what has come, and does not wait for more.
    void pump();

private:
    Q_DISABLE_COPY(RawConnection)

    void handle(RawMessage message);

    DBusConnection *m_connection = nullptr;
    Handler m_handler;
    quint32 m_awaited = 0; ///< Serial of the call whose answer call() waits for.
    RawMessage m_answer;
};
