// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "command.h"

#include <QHash>
#include <QObject>
#include <QQueue>
#include <QTimer>
#include <QVector>

#include <chrono>
#include <functional>

class Transcript;

/// Runs command lines one after another.
///
/// A line is a command's name and its arguments, words as splitWords() finds them. Where the name
/// of one command begins with that of another, the longer one counts. A line that begins with '#'
/// is a remark and is printed. A line may have the prompt of a transcript before it, and the
/// indented lines that follow such a line are its answers, which are passed over.
///
/// The interpreter itself has the commands "help", "quit", "exit" and "expect TEXT". The last one
/// waits until a line that matches TEXT, in which '*' stands for any text, has been recorded since
/// the command before it. The words of TEXT have one blank between them.
class Interpreter : public QObject
{
    Q_OBJECT

public:
    enum class AtFailure { GoOn, Stop };

    /// \a atFailure says whether the first failure ends the run, as it does in a script.
    Interpreter(Transcript &transcript, AtFailure atFailure, QObject *parent = nullptr);

    void add(const QVector<Command> &commands);

    using Values = std::function<QStringList()>;

    /// Sets what can stand for a parameter that a command names as \a parameter.
    void addValues(const QString &parameter, const Values &values);

    /// Returns the words that the last word of \a line may become, in alphabetical order.
    QStringList completions(const QString &line) const;

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
    QStringList valuesOf(const QString &parameter) const;
    void help(const QStringList &name, const Finish &finish);

    Transcript &m_transcript;
    const AtFailure m_atFailure;
    QVector<Command> m_commands;
    QHash<QString, Values> m_values; ///< By the parameter.
    QQueue<QString> m_lines;
    QString m_expected;
    QTimer m_patience;
    bool m_followsPrompt = false; ///< The last command had the prompt of a transcript.
    bool m_started = false;
    bool m_busy = false; ///< Set while a command runs, and after the end.
    int m_skipped = 0;
    bool m_inputEnded = false;
    bool m_lastWasSkipped = false;
};
