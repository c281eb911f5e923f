// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

class QFile;

/// Moves this process into the control group that has the task file \a tasks, and leaves the file
/// closed. Logs a warning if the file cannot be opened, as on every machine that is not a handset.
void joinControlGroup(QFile &tasks);
