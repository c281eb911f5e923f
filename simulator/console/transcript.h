// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QObject>
#include <QStringList>

/// The printed record of a session: a line for every command and for every result.
class Transcript : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// Prints a line that explains something.
    void say(const QString &line);

    /// Prints a command that starts, and forgets what happened before it.
    void beginCommand(const QString &line);

    /// Prints something that happened, and keeps it until the next command begins. \a source says
    /// where it comes from, such as "reply" or "ui".
    void record(const QString &source, const QString &line);

    /// Returns the lines recorded since the last command began, without their source.
    const QStringList &happened() const { return m_happened; }

Q_SIGNALS:
    void recorded();
    /// A line is printed.
    void said(const QString &line);
    /// A command is started, as \a line.
    void commandBegun(const QString &line);

private:
    QStringList m_happened;
};
