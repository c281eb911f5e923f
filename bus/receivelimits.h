// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

class QDBusConnection;

/// Makes \a bus go on reading, whatever other processes send. By default libdbus stops reading when
/// 63 MB of messages, or 4,096 file descriptors, have not been handled. QtDBus reads in a thread
/// that does not handle the messages, and never resumes: a single caller could make this process
/// deaf to all others. The bus's own limits for a message and for a connection (dbus-daemon(1))
/// stay in force.
///
/// Call this function as soon as there is a connection. Without a bus it does nothing.
void removeReceiveLimits(const QDBusConnection &bus);
