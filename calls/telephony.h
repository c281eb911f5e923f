// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QMetaEnum>
#include <QObject>
#include <QString>

class QDBusMessage;

/// What the objects of this module say about the telephony stack, oFono, and its errors.
namespace Telephony {
Q_NAMESPACE

/// Whether there is a telephony stack.
enum Status {
    Starting, ///< It is being asked for its modems and calls.
    Ready, ///< Its modems and calls are known.
    Hung, ///< It has not answered for some seconds. It may go on at any time.
    NoService, ///< It does not run, or does not tell this process its modems.
    NoBus ///< There is no system bus, or the connection to it is lost.
};
Q_ENUM_NS(Status)

/// Why something has failed. The names up to Terminated are those of oFono ("org.ofono.Error.").
enum Error {
    Failed,
    InvalidArguments,
    InvalidFormat,
    NotImplemented,
    InProgress,
    NotFound,
    NotActive,
    NotSupported,
    NotAvailable,
    Timedout,
    SimNotReady,
    InUse,
    NotAttached,
    AttachInProgress,
    NotRegistered,
    Canceled,
    AccessDenied,
    EmergencyActive,
    IncorrectPassword,
    NotAllowed,
    NotRecognized,
    Terminated,
    NoStack, ///< There is no telephony stack, or it has stopped meanwhile.
    NoAnswer, ///< The stack has not answered in time, or its modem has gone. It may have done it.
    NoModem, ///< No modem can do this, or not the one that was asked for.
    NoCall ///< There is no such call, or no longer.
};
Q_ENUM_NS(Error)

/// Returns what \a answer, an error message, means.
Error errorOf(const QDBusMessage &answer);

/// Returns what \a error means for the user, in the user's language.
QString explanationOf(Error error);

} // namespace Telephony
