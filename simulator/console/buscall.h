// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "command.h"

#include <QDBusConnection>
#include <QDBusMessage>

class QObject;

/// Sends \a call on behalf of a command. Calls \a answered with the values of the answer if they
/// have the D-Bus \a signature. The command fails if the answer is an error, has another signature,
/// or does not come within five seconds. Nothing happens after \a context is destroyed.
void callBus(const QDBusConnection &bus, const QDBusMessage &call, const QString &signature,
             QObject *context, const Finish &finish,
             const std::function<void(const QVariantList &values)> &answered);
