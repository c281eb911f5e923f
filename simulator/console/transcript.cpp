// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "transcript.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include <unistd.h>

namespace {

const QLatin1String prompt("> ");
const QLatin1String failure("failed");

/// NO_COLOR is described at https://no-color.org.
bool hasColours()
{
    return isatty(STDOUT_FILENO) == 1 && qEnvironmentVariableIsEmpty("NO_COLOR")
        && qgetenv("TERM") != "dumb";
}

} // namespace

Transcript::Transcript(QObject *parent)
    : QObject(parent)
    , m_hasColours(hasColours())
{
}

QStringList Transcript::linesOf(const QString &script)
{
    QStringList all = script.split(QLatin1Char('\n'));
    const bool isTranscript = std::any_of(all.cbegin(), all.cend(), [](const QString &line) {
        return afterPrompt(line).has_value();
    });
    if (!isTranscript)
        return all;
    QStringList lines;
    for (const QString &line : std::as_const(all)) {
        if (const auto command = afterPrompt(line))
            lines.append(*command);
        else if (line.startsWith(QLatin1Char('#')))
            lines.append(line);
    }
    return lines;
}

std::optional<QString> Transcript::afterPrompt(const QString &line)
{
    return line.startsWith(prompt) ? std::optional(line.mid(prompt.size())) : std::nullopt;
}

void Transcript::say(const QString &line)
{
    print(line, false);
}

void Transcript::beginCommand(const QString &line)
{
    m_happened.clear();
    continueWith(line);
}

void Transcript::continueWith(const QString &line)
{
    say(prompt + line);
    Q_EMIT commandBegun(line);
}

void Transcript::record(const QString &source, const QString &line)
{
    print(QLatin1String("  ") + source + QLatin1String(": ") + line, source == failure);
    m_happened.append(line);
    Q_EMIT recorded();
}

void Transcript::print(const QString &line, bool isFailure)
{
    Q_EMIT aboutToSay();
    if (isFailure && m_hasColours)
        std::printf("\033[31m%s\033[39m\n", qUtf8Printable(line));
    else
        std::puts(qUtf8Printable(line));
    std::fflush(stdout);
    Q_EMIT said(line);
}
