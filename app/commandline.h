// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QStringList>

/// What the process was told when it was started. Arguments are compared whole and in their case;
/// those that are not named here are left to Qt and the launcher.
struct CommandLine
{
    /// \a arguments as QCoreApplication::arguments() has them, the program's name first.
    explicit CommandLine(const QStringList &arguments);

    bool devel; ///< "-devel": the process ends when its last window is closed.
    bool prestart; ///< "-prestart": started in advance; the window stays hidden until QML shows it.
    QString qmlFile; ///< "-qml PATH", the first of them; without a path, the installed screens.
};
