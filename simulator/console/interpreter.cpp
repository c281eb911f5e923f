// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "interpreter.h"

#include "transcript.h"
#include "words.h"

#include <QRegularExpression>

#include <algorithm>
#include <utility>

namespace {

const QLatin1String helpName("help");
const QLatin1String expectName("expect");

/// The list of commands has their descriptions behind so many characters.
constexpr int helpColumn = 28;

/// Returns whether \a line is a remark, or empty.
bool isSilent(const QString &line)
{
    return line.isEmpty() || line.startsWith(QLatin1Char('#'));
}

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

bool beginsWith(const QStringList &all, const QStringList &beginning)
{
    return all.mid(0, beginning.size()) == beginning;
}

QStringList nameOf(const Command &command)
{
    return command.name.split(QLatin1Char(' '));
}

/// Returns the number of words in the name of \a command if \a words begin with it, otherwise 0.
int lengthOfName(const Command &command, const QStringList &words)
{
    const QStringList name = nameOf(command);
    return beginsWith(words, name) ? static_cast<int>(name.size()) : 0;
}

bool isEndless(const QString &parameter)
{
    return parameter.contains(QLatin1String("..."));
}

bool takes(const Command &command, qsizetype arguments)
{
    const QStringList &parameters = command.parameters;
    const auto required =
        std::count_if(parameters.cbegin(), parameters.cend(), [](const QString &parameter) {
            return !parameter.startsWith(QLatin1Char('['));
        });
    const bool endless = !parameters.isEmpty() && isEndless(parameters.constLast());
    return arguments >= required && (endless || arguments <= parameters.size());
}

QString synopsis(const Command &command)
{
    return (QStringList(command.name) + command.parameters).join(QLatin1Char(' '));
}

QString noCommand(const QStringList &words)
{
    return QStringLiteral("there is no command \"%1\"; help lists them")
        .arg(words.join(QLatin1Char(' ')));
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

    const auto quit = [this](const QStringList &, const Finish &finish) {
        m_lines.clear();
        m_started = true; // There is nothing to wait for.
        endInput();
        finish(Outcome::Done, {});
    };
    add({{helpName,
          {QStringLiteral("[COMMAND...]")},
          QStringLiteral("list the commands, or describe one"),
          [this](const QStringList &name, const Finish &finish) { help(name, finish); }},
         {QStringLiteral("quit"), {}, QStringLiteral("end the session"), quit},
         {QStringLiteral("exit"), {}, QStringLiteral("end the session"), quit},
         {expectName,
          {QStringLiteral("TEXT...")},
          QStringLiteral("wait until a line reads TEXT; * stands for anything"),
          [this](const QStringList &text, const Finish &) {
              expect(text.join(QLatin1Char(' ')));
          }}});
}

void Interpreter::add(const QVector<Command> &commands)
{
    m_commands += commands;
}

void Interpreter::addValues(const QString &parameter, const Values &values)
{
    m_values.insert(parameter, values);
}

QStringList Interpreter::completions(const QString &line) const
{
    QStringList words = splitWords(line);
    if (line.isEmpty() || line.back().isSpace())
        words.append(QString());
    const QString begun = words.takeLast();
    if (line.contains(QLatin1Char('"')) || words.contains(QString()))
        return {};
    const bool wantsName = words.value(0) == helpName;
    if (wantsName)
        words.removeFirst();

    QStringList candidates;
    for (const Command &command : m_commands) {
        const QStringList name = nameOf(command);
        if (name.size() > words.size() && beginsWith(name, words))
            candidates.append(name.at(words.size()));
        else if (!wantsName && beginsWith(words, name))
            candidates += valuesOf(command.parameters.value(words.size() - name.size()));
    }
    const auto isOther = [&begun](const QString &word) { return !word.startsWith(begun); };
    candidates.erase(std::remove_if(candidates.begin(), candidates.end(), isOther),
                     candidates.end());
    candidates.removeDuplicates();
    candidates.sort();
    return candidates;
}

/// Returns what can stand for \a parameter: one of the words in it, or one of those that were
/// added.
QStringList Interpreter::valuesOf(const QString &parameter) const
{
    const QLatin1Char bar('|');
    if (parameter.contains(bar))
        return parameter.split(bar);
    const Values values = m_values.value(parameter);
    return values ? values() : QStringList();
}

void Interpreter::enqueue(const QString &line)
{
    const auto command = Transcript::afterPrompt(line);
    const QString text = command.value_or(line).trimmed();
    if (command)
        m_followsPrompt = true;
    else if (m_followsPrompt && line.startsWith(QLatin1Char(' ')))
        return;
    else if (!isSilent(text))
        m_followsPrompt = false;
    m_lines.enqueue(text);
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
    const bool quits = !m_lines.isEmpty()
        && (m_lines.head() == QLatin1String("quit") || m_lines.head() == QLatin1String("exit"));
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
    if (isSilent(line)) {
        m_transcript.say(line);
        ended(Outcome::Done, {});
        return;
    }
    QStringList arguments = splitWords(line);
    if (arguments.constFirst() == expectName) {
        m_transcript.continueWith(line);
    } else {
        m_transcript.beginCommand(line);
        m_lastWasSkipped = false;
    }
    const auto command = std::max_element(
        m_commands.cbegin(), m_commands.cend(), [&arguments](const Command &a, const Command &b) {
            return lengthOfName(a, arguments) < lengthOfName(b, arguments);
        });
    const int nameLength = lengthOfName(*command, arguments);
    if (nameLength == 0) {
        ended(Outcome::Failed, noCommand(arguments));
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

/// Prints the commands whose name begins with \a name.
void Interpreter::help(const QStringList &name, const Finish &finish)
{
    bool isFound = false;
    for (const Command &command : std::as_const(m_commands)) {
        if (!beginsWith(nameOf(command), name))
            continue;
        isFound = true;
        QString left = synopsis(command);
        if (left.size() > helpColumn) {
            m_transcript.say(QLatin1String("  ") + left);
            left.clear();
        }
        m_transcript.say(QStringLiteral("  %1  %2").arg(left, -helpColumn).arg(command.help));
    }
    if (isFound)
        finish(Outcome::Done, {});
    else
        finish(Outcome::Failed, noCommand(name));
}
