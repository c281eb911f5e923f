// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QStringList>

/// The command line of the process. Each argument is compared as a whole, and case matters. All
/// other arguments are left to Qt and the launcher.
struct CommandLine
{
    /// Reads \a arguments, which are those of QCoreApplication::arguments(): the program's name
    /// comes first.
    explicit CommandLine(const QStringList &arguments);

    bool devel; ///< "-devel": the process ends when its last window is closed.
    bool prestart; ///< "-prestart": started in advance; the window stays hidden until QML shows it.
    QString qmlFile; ///< The path after the first "-qml"; without one, the installed screens.
};
