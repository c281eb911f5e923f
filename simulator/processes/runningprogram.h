// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QString>

/// Returns whether the process with that id runs \a program, a canonical path. It does so also if
/// the executable of the process is an emulator or a loader that has \a program in its memory.
bool runsProgram(qint64 process, const QString &program);
