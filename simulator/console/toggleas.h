// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QString>

/// The results of toggleCallAs(), which are exit statuses.
enum ToggleStatus {
    ToggleAdmitted = 0,
    ToggleFailed = 1, ///< No answer came, or any other error.
    ToggleRefused = 2, ///< The call UI does not trust the caller.
};

/// Becomes \a user and \a group, names or numbers, and calls toggleCall() of the call UI on the
/// session bus of the environment. Only root can do this, and the process cannot change back. A
/// message goes to standard output if the call fails; for an error of D-Bus it is
/// "Error NAME: MESSAGE".
ToggleStatus toggleCallAs(const QString &user, const QString &group);
