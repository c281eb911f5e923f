// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <functional>

class QDBusConnection;
class QDBusMessage;
class QDBusPendingCall;
class QObject;
class QString;

/// Takes the answer to a call, a reply or an error.
using AnswerHandler = std::function<void(const QDBusMessage &answer)>;

/// A call of the bus daemon's method \a method about the bus name \a name.
QDBusMessage busQuestion(const QString &method, const QString &name);

/// Whether the bus daemon itself has sent \a message. QtDBus takes every message with the right
/// serial for the answer to a call, and a bus may let any process send one; the sender's name is
/// the one thing in it that the bus vouches for.
bool isFromBus(const QDBusMessage &message);

/// Calls \a handler with the answer to \a call from the event loop; never once \a context has gone.
/// Without a bus the answer is an error too.
void whenAnswered(const QDBusPendingCall &call, QObject *context, const AnswerHandler &handler);

/// As whenAnswered(), for a \a call that was sent to the owner of \a service on \a bus: what
/// another process has answered in its place is handed over as an error (AccessDenied). It costs
/// one more round trip to the bus daemon, which is not waited for.
void whenOwnerAnswered(const QDBusConnection &bus, const QString &service,
                       const QDBusPendingCall &call, QObject *context,
                       const AnswerHandler &handler);
