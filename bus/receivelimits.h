// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

class QDBusConnection;

/// Keeps \a bus reading, whatever others send. By default libdbus stops at 63 MB, or 4,096 file
/// descriptors, of messages that have not been worked off, and QtDBus, whose thread is not the one
/// that works them off, never starts again: one caller would make this process deaf to all. The
/// bus's own limits for a message and for a connection (dbus-daemon(1)) stay in force.
///
/// Call it as soon as there is a connection. It does nothing without a bus.
void removeReceiveLimits(const QDBusConnection &bus);
