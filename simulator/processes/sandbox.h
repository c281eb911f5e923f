// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

/// Shows files at fixed paths to one process, without changing the machine.
class Sandbox
{
public:
    /// Returns whether bwrap is installed and this process may use it.
    static bool isPossible();

    /// Shows \a source, a file or folder, at the absolute \a path, which need not exist; the
    /// process may write to it.
    void place(const QString &path, const QString &source);

    /// Returns the command that runs \a command inside, or \a command itself if nothing was placed.
    QStringList wrap(const QStringList &command) const;

private:
    QMap<QString, QString> m_placed;
};
