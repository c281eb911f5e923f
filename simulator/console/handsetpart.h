// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QStringList>

#include <optional>

/// The handset runs its other processes with its own program. If the arguments of main() ask for
/// it, runs this process as one of them and returns its exit status. Their number and order are
/// fixed: "--service NAME --state FOLDER", or "--toggle-as USER GROUP".
std::optional<int> runHandsetPart(int argc, char *argv[]);

/// Returns the arguments with which runHandsetPart() calls runService().
QStringList serviceArguments(const QString &name, const QString &stateFolder);

/// Returns the arguments with which runHandsetPart() calls toggleCallAs().
QStringList toggleArguments(const QString &user, const QString &group);
