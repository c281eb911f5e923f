// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "telephony.h"

#include <QDBusError>
#include <QDBusMessage>

namespace Telephony {

namespace {

Error errorOfBus(QDBusError::ErrorType type)
{
    switch (type) {
    case QDBusError::ServiceUnknown:
    case QDBusError::Disconnected:
        return NoStack;
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
        return NoAnswer;
    case QDBusError::UnknownMethod:
    case QDBusError::UnknownInterface:
    case QDBusError::UnknownObject:
        return NotAvailable;
    case QDBusError::LimitsExceeded:
        return InProgress;
    case QDBusError::AccessDenied:
        return AccessDenied;
    case QDBusError::InvalidArgs:
        return InvalidArguments;
    default:
        return Failed;
    }
}

} // namespace

Error errorOf(const QDBusMessage &answer)
{
    const QString prefix = QStringLiteral("org.ofono.Error.");
    const QString name = answer.errorName();
    if (!name.startsWith(prefix))
        return errorOfBus(QDBusError(answer).type());
    bool known = false;
    const int value = QMetaEnum::fromType<Error>().keyToValue(
        name.mid(prefix.size()).toLatin1().constData(), &known);
    return known ? static_cast<Error>(value) : Failed;
}

QString explanationOf(Error error)
{
    switch (error) {
    case InvalidArguments:
    case InvalidFormat:
    case NotRecognized:
        //% "This number or text cannot be used."
        return qtTrId("parley-la-error_invalid_number");
    case InProgress:
    case InUse:
    case AttachInProgress:
    case EmergencyActive:
        //% "The phone is busy. Try again in a moment."
        return qtTrId("parley-la-error_busy");
    case NotImplemented:
    case NotSupported:
        //% "This phone or its network does not support this."
        return qtTrId("parley-la-error_not_supported");
    case NotAvailable:
    case NotAttached:
    case NotRegistered:
    case SimNotReady:
    case NoModem:
        //% "There is no connection to the mobile network."
        return qtTrId("parley-la-error_no_network");
    case AccessDenied:
    case NotAllowed:
        //% "This is not allowed."
        return qtTrId("parley-la-error_not_allowed");
    case IncorrectPassword:
        //% "The password is wrong."
        return qtTrId("parley-la-error_incorrect_password");
    case Timedout:
    case NoAnswer:
        //% "There is no answer. Try again later."
        return qtTrId("parley-la-error_no_answer");
    case Canceled:
    case Terminated:
        //% "This was cancelled."
        return qtTrId("parley-la-error_cancelled");
    case NoStack:
        //% "The phone service is not running."
        return qtTrId("parley-la-error_no_service");
    case NotFound:
    case NotActive:
    case NoCall:
        //% "This has already ended."
        return qtTrId("parley-la-error_no_call");
    case Failed:
        break;
    }
    //% "This has failed."
    return qtTrId("parley-la-error_failed");
}

} // namespace Telephony
