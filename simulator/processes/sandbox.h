// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

/// Puts files at fixed places for one process, without touching this machine.
class Sandbox
{
public:
    /// Whether this machine has what it takes: bwrap, and the permission to use it.
    static bool isPossible();

    /// Shows \a source, a file or folder, at the absolute \a path, which need not exist; the
    /// process may write to it.
    void place(const QString &path, const QString &source);

    /// The command that runs \a command inside; \a command itself if nothing has been placed.
    QStringList wrap(const QStringList &command) const;

private:
    QMap<QString, QString> m_placed;
};
