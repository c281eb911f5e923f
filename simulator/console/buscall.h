// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "command.h"

#include <QDBusConnection>
#include <QDBusMessage>

class QObject;

/// Sends \a call for a command. Calls \a answered with what the answer holds, which has the
/// D-Bus \a signature; where there is none, an error, or another answer, the command fails with it
/// instead. Neither happens once \a context has gone.
void callBus(const QDBusConnection &bus, const QDBusMessage &call, const QString &signature,
             QObject *context, const Finish &finish,
             const std::function<void(const QVariantList &values)> &answered);
