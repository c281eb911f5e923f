// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QString>

/// Runs a service of the handset in this process on the buses of the environment, until the process
/// ends. \a name is "time-daemon", "alarm-service", "notification-service", "call-history" or
/// "telephony"; with
/// "modem" and "ofono" in the place of the last one, the real oFono runs on modems of ours. The
/// service keeps its state in \a stateFolder. Returns the exit status, which is EXIT_FAILURE after
/// a logged warning if there is no such service or its bus name is taken.
int runService(const QString &name, const QString &stateFolder);

/// Returns why the service "ofono" cannot run here, or an empty text if it can.
QString whyNoOfono();
