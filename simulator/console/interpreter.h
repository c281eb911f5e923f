// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "command.h"

#include <QObject>
#include <QQueue>
#include <QTimer>
#include <QVector>

#include <chrono>

class Transcript;

/// Runs command lines one after another.
///
/// A line is a command's name and its arguments, words as splitWords() finds them. Where the name
/// of one command begins with that of another, the longer one counts. A line that begins with '#'
/// is a remark and is printed.
/// The interpreter itself has the commands "help", "quit" and "expect TEXT". The last one waits
/// until a line that matches TEXT, in which '*' stands for any text, has been recorded since the
/// command before it.
class Interpreter : public QObject
{
    Q_OBJECT

public:
    enum class AtFailure { GoOn, Stop };

    /// \a atFailure says whether the first failure ends the run, as it does in a script.
    Interpreter(Transcript &transcript, AtFailure atFailure, QObject *parent = nullptr);

    void add(const QVector<Command> &commands);

    /// Sets how long "expect" waits. The default is thirty seconds.
    void setPatience(std::chrono::milliseconds patience) { m_patience.setInterval(patience); }

    /// Runs \a line after start() and after all earlier lines. "quit" with no line before it does
    /// not wait for start().
    void enqueue(const QString &line);

    /// No more lines follow.
    void endInput();

    /// Starts to run lines.
    void start();

Q_SIGNALS:
    /// The run has ended: after "quit", after the last line, or at a failure. Emitted once.
    void finished(bool succeeded);

private:
    void wake();
    void runNext();
    void run(const QString &line);
    void ended(Outcome outcome, const QString &text);
    void expect(const QString &text);
    void checkExpectation();
    void printHelp() const;

    Transcript &m_transcript;
    const AtFailure m_atFailure;
    QVector<Command> m_commands;
    QQueue<QString> m_lines;
    QString m_expected;
    QTimer m_patience;
    bool m_started = false;
    bool m_busy = false; ///< Set while a command runs, and after the end.
    int m_skipped = 0;
    bool m_inputEnded = false;
    bool m_lastWasSkipped = false;
};
