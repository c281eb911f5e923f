// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QStringList>

#include <optional>

/// The handset runs its other processes from its own program. If the arguments of main() say so,
/// runs this process as one of them and returns its exit status.
std::optional<int> runHandsetPart(int argc, char *argv[]);

/// The arguments that have runHandsetPart() run the service \a name, as runService() does.
QStringList serviceArguments(const QString &name, const QString &stateFolder);

/// The arguments that have runHandsetPart() call toggleCall() as another user.
QStringList toggleArguments(const QString &user, const QString &group);
