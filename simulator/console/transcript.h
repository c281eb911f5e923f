// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QObject>
#include <QStringList>

#include <optional>

/// The printed record of a session: a line for every command, after a prompt, and indented lines
/// for what it brings about. On a terminal, failures are red, unless NO_COLOR is set.
class Transcript : public QObject
{
    Q_OBJECT

public:
    explicit Transcript(QObject *parent = nullptr);

    /// Returns the lines of a script. Where it is a transcript, these are its commands, without
    /// their prompt, and its remarks.
    static QStringList linesOf(const QString &script);

    /// Returns what follows the prompt that a line of a transcript begins with, or nothing.
    static std::optional<QString> afterPrompt(const QString &line);

    /// Prints a line that explains something.
    void say(const QString &line);

    /// Prints a command that starts, and forgets what happened before it.
    void beginCommand(const QString &line);

    /// Prints a command that starts, and keeps what happened before it.
    void continueWith(const QString &line);

    /// Prints something that happened, and keeps it until the next command begins. \a source says
    /// where it comes from, such as "reply" or "ui".
    void record(const QString &source, const QString &line);

    /// Returns the lines recorded since the last command began, without their source.
    const QStringList &happened() const { return m_happened; }

Q_SIGNALS:
    void recorded();
    /// A line is about to be printed.
    void aboutToSay();
    /// A line is printed.
    void said(const QString &line);
    /// A command is started, as \a line.
    void commandBegun(const QString &line);

private:
    void print(const QString &line, bool isFailure);

    const bool m_hasColours;
    QStringList m_happened;
};
