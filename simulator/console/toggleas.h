// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QString>

/// How toggleCallAs() ended: the exit status of its process.
enum ToggleStatus {
    ToggleAdmitted = 0,
    ToggleFailed = 1, ///< There was no answer, or another error.
    ToggleRefused = 2, ///< The call UI does not trust the caller.
};

/// Becomes \a user and \a group (names or numbers; root only), which cannot be undone, and calls
/// the call UI's toggleCall() on the session bus that the environment names. What went wrong goes
/// to standard output, an error of the call as "Error NAME: MESSAGE".
ToggleStatus toggleCallAs(const QString &user, const QString &group);
