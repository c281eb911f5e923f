// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QObject>
#include <QStringList>

/// What is printed of a session: every command and what came of it, a line each.
class Transcript : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    /// A line that explains: printed as it is.
    void say(const QString &line);

    /// A command is started: what happened so far is no longer what came of it.
    void beginCommand(const QString &line);

    /// Something that happened: printed below the command, and kept until the next begins.
    /// \a source says where it comes from ("reply", "ui").
    void record(const QString &source, const QString &line);

    /// The lines recorded since the last command began, without their source.
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
