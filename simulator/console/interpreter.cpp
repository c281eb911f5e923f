// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "interpreter.h"

#include "transcript.h"
#include "words.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

bool reads(const QString &line, const QString &pattern)
{
    QStringList parts = pattern.split(QLatin1Char('*'));
    for (QString &part : parts)
        part = QRegularExpression::escape(part);
    const QString expression = parts.join(QLatin1String(".*"));
    return QRegularExpression(QRegularExpression::anchoredPattern(expression))
        .match(line)
        .hasMatch();
}

/// Returns the number of words in the name of \a command if \a words begin with it, otherwise 0.
int lengthOfName(const Command &command, const QStringList &words)
{
    const QStringList name = command.name.split(QLatin1Char(' '));
    return words.mid(0, name.size()) == name ? name.size() : 0;
}

bool takes(const Command &command, int arguments)
{
    const QStringList &parameters = command.parameters;
    const auto required =
        std::count_if(parameters.cbegin(), parameters.cend(), [](const QString &parameter) {
            return !parameter.startsWith(QLatin1Char('['));
        });
    const bool endless =
        !parameters.isEmpty() && parameters.constLast().endsWith(QLatin1String("...]"));
    return arguments >= required && (endless || arguments <= parameters.size());
}

QString synopsis(const Command &command)
{
    return (QStringList(command.name) + command.parameters).join(QLatin1Char(' '));
}

} // namespace

Interpreter::Interpreter(Transcript &transcript, AtFailure atFailure, QObject *parent)
    : QObject(parent)
    , m_transcript(transcript)
    , m_atFailure(atFailure)
{
    m_patience.setSingleShot(true);
    m_patience.setInterval(std::chrono::seconds(30));
    connect(&m_patience, &QTimer::timeout, this,
            [this] { ended(Outcome::Failed, QStringLiteral("not seen: ") + m_expected); });
    connect(&m_transcript, &Transcript::recorded, this, &Interpreter::checkExpectation);

    add({{QStringLiteral("help"),
          {},
          QStringLiteral("list the commands"),
          [this](const QStringList &, const Finish &finish) {
              printHelp();
              finish(Outcome::Done, {});
          }},
         {QStringLiteral("quit"),
          {},
          QStringLiteral("end the session"),
          [this](const QStringList &, const Finish &finish) {
              m_lines.clear();
              m_started = true; // There is nothing to wait for.
              endInput();
              finish(Outcome::Done, {});
          }}});
}

void Interpreter::add(const QVector<Command> &commands)
{
    m_commands += commands;
}

void Interpreter::enqueue(const QString &line)
{
    m_lines.enqueue(line.trimmed());
    wake();
}

void Interpreter::endInput()
{
    m_inputEnded = true;
    wake();
}

void Interpreter::start()
{
    m_started = true;
    wake();
}

/// Queued, so that a long script of quick commands does not recurse.
void Interpreter::wake()
{
    QMetaObject::invokeMethod(this, &Interpreter::runNext, Qt::QueuedConnection);
}

void Interpreter::runNext()
{
    const bool quits = !m_lines.isEmpty() && m_lines.head() == QLatin1String("quit");
    if (m_busy || !(m_started || quits))
        return;
    if (!m_lines.isEmpty()) {
        m_busy = true;
        run(m_lines.dequeue());
    } else if (m_inputEnded) {
        m_busy = true;
        if (m_skipped > 0)
            m_transcript.say(QStringLiteral("%1 skipped.").arg(m_skipped));
        Q_EMIT finished(true);
    }
}

void Interpreter::run(const QString &line)
{
    if (line.isEmpty() || line.startsWith(QLatin1Char('#'))) {
        m_transcript.say(line);
        ended(Outcome::Done, {});
        return;
    }
    const QLatin1String expectation("expect");
    if (line.section(QLatin1Char(' '), 0, 0) == expectation) {
        expect(line.mid(expectation.size()).trimmed());
        return;
    }

    m_transcript.beginCommand(line);
    m_lastWasSkipped = false;
    QStringList arguments = splitWords(line);
    const auto command = std::max_element(
        m_commands.cbegin(), m_commands.cend(), [&arguments](const Command &a, const Command &b) {
            return lengthOfName(a, arguments) < lengthOfName(b, arguments);
        });
    const int nameLength = lengthOfName(*command, arguments);
    if (nameLength == 0) {
        ended(Outcome::Failed,
              QStringLiteral("there is no command \"%1\"; help lists them")
                  .arg(arguments.join(QLatin1Char(' '))));
        return;
    }
    arguments = arguments.mid(nameLength);
    if (!takes(*command, arguments.size()))
        ended(Outcome::Failed,
              QStringLiteral("usage: %1 (an argument with blanks in double quotes)")
                  .arg(synopsis(*command)));
    else
        command->run(arguments,
                     [this](Outcome outcome, const QString &text) { ended(outcome, text); });
}

void Interpreter::ended(Outcome outcome, const QString &text)
{
    switch (outcome) {
    case Outcome::Done:
        if (!text.isEmpty())
            m_transcript.record(QStringLiteral("reply"), text);
        break;
    case Outcome::Failed:
        m_transcript.record(QStringLiteral("failed"), text);
        if (m_atFailure == AtFailure::Stop) {
            Q_EMIT finished(false);
            return;
        }
        break;
    case Outcome::Skipped:
        m_lastWasSkipped = true;
        ++m_skipped;
        m_transcript.record(QStringLiteral("skipped"), text);
        break;
    }
    m_busy = false;
    wake();
}

void Interpreter::expect(const QString &text)
{
    m_expected = text;
    if (m_lastWasSkipped) {
        ended(Outcome::Skipped, text);
        return;
    }
    m_patience.start();
    checkExpectation();
}

void Interpreter::checkExpectation()
{
    if (!m_patience.isActive())
        return;
    const QStringList &happened = m_transcript.happened();
    const auto isExpected = [this](const QString &line) { return reads(line, m_expected); };
    if (std::any_of(happened.cbegin(), happened.cend(), isExpected)) {
        m_patience.stop();
        m_transcript.say(QStringLiteral("  as expected: %1").arg(m_expected));
        ended(Outcome::Done, {});
    }
}

void Interpreter::printHelp() const
{
    for (const Command &command : m_commands)
        m_transcript.say(QStringLiteral("  %1  %2").arg(synopsis(command), -28).arg(command.help));
    m_transcript.say(
        QStringLiteral("  %1  %2")
            .arg(QLatin1String("expect TEXT"), -28)
            .arg(QLatin1String("wait until a line reads TEXT; * stands for anything")));
}
