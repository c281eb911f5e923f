// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <functional>

class QDBusConnection;
class QDBusMessage;
class QDBusPendingCall;
class QObject;
class QString;

/// Takes the answer to a call: a reply or an error.
using AnswerHandler = std::function<void(const QDBusMessage &answer)>;

/// Returns a call of the bus daemon's method \a method with the bus name \a name.
QDBusMessage busQuestion(const QString &method, const QString &name);

/// Returns whether the bus daemon itself has sent \a message. QtDBus takes every message with the
/// right serial as the answer to a call, and a bus may let any process send one. The sender's name
/// is the only part of a message that the bus guarantees.
bool isFromBus(const QDBusMessage &message);

/// Calls \a handler from the event loop with the answer to \a call, unless \a context is destroyed
/// before. Without a bus the answer is an error.
void whenAnswered(const QDBusPendingCall &call, QObject *context, const AnswerHandler &handler);

/// Does the same for a \a call that was sent to the owner of \a service on \a bus. If another
/// process has answered in its place, \a handler gets an error (AccessDenied). This costs one more
/// round trip to the bus daemon, for which nothing blocks.
void whenOwnerAnswered(const QDBusConnection &bus, const QString &service,
                       const QDBusPendingCall &call, QObject *context,
                       const AnswerHandler &handler);
