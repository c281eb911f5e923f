// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDBusMessage>

/// An error of oFono's D-Bus API, "org.ofono.Error." with this name.
enum class OfonoError {
    Canceled,
    Failed,
    InProgress,
    InvalidArguments,
    InvalidFormat,
    NotActive,
    NotAvailable,
    NotFound,
    NotImplemented,
    NotSupported,
};

/// Returns the reply to \a call that is this error, with oFono's text.
QDBusMessage ofonoError(const QDBusMessage &call, OfonoError error);
