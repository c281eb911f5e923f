// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QString>

/// Runs a service of the handset in this process, until the process is ended, on the buses that its
/// environment names. \a name is "time-daemon", "notification-service", "call-history" or
/// "telephony", and \a stateFolder is where the service may keep things. Returns the exit status:
/// EXIT_FAILURE, with a warning logged, if there is no such service or it did not get its place on
/// the bus.
int runService(const QString &name, const QString &stateFolder);
