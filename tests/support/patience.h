// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QtGlobal>

/// Returns for how many milliseconds a test waits for what has to come. The environment variable
/// PARLEY_TEST_PATIENCE multiplies that where processes are slow, such as below an emulator.
inline int patience()
{
    return 30000 * qMax(1, qEnvironmentVariableIntValue("PARLEY_TEST_PATIENCE"));
}
