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
/// Of its own the interpreter has "help", "quit" and "expect TEXT". The last waits until a line
/// that reads TEXT ('*' stands for anything) has been recorded since the last command before it.
class Interpreter : public QObject
{
    Q_OBJECT

public:
    enum class AtFailure { GoOn, Stop };

    /// \a atFailure says whether the first command that fails ends the run, as in a script.
    Interpreter(Transcript &transcript, AtFailure atFailure, QObject *parent = nullptr);

    void add(const QVector<Command> &commands);

    /// How long "expect" waits; thirty seconds if not set.
    void setPatience(std::chrono::milliseconds patience) { m_patience.setInterval(patience); }

    /// Runs \a line when all earlier ones are through and the interpreter has been started.
    void enqueue(const QString &line);

    /// Says that no more lines will come.
    void endInput();

    /// Nothing runs before this.
    void start();

Q_SIGNALS:
    /// After "quit", after the last line, or after a failure that ends the run. Comes once.
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
    bool m_busy = false; ///< A command runs, or the last one has.
    int m_skipped = 0;
    bool m_inputEnded = false;
    bool m_lastWasSkipped = false;
};
