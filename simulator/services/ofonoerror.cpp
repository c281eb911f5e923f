// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "ofonoerror.h"

namespace {

struct NamedError
{
    const char *name;
    const char *text;
};

/// In the order of the enumeration.
constexpr NamedError errors[] = {
    {"Canceled", "Operation has been canceled"},
    {"Failed", "Operation failed"},
    {"InProgress", "Operation already in progress"},
    {"InvalidArguments", "Invalid arguments in method call"},
    {"InvalidFormat", "Argument format is not recognized"},
    {"NotActive", "Operation is not active or in progress"},
    {"NotAvailable", "Operation currently not available"},
    {"NotFound", "Object is not found or not valid for this operation"},
    {"NotImplemented", "Implementation not provided"},
    {"NotSupported", "Operation is not supported by the network / modem"},
};

} // namespace

QDBusMessage ofonoError(const QDBusMessage &call, OfonoError error)
{
    const NamedError &named = errors[static_cast<int>(error)];
    return call.createErrorReply(QLatin1String("org.ofono.Error.") + QLatin1String(named.name),
                                 QLatin1String(named.text));
}
