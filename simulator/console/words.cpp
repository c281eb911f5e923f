// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "words.h"

#include <algorithm>

namespace {

const QLatin1Char quote('"');
const QLatin1Char backslash('\\');

bool isEscape(const QString &line, int at)
{
    return line.at(at) == backslash && at + 1 < line.size()
        && (line.at(at + 1) == quote || line.at(at + 1) == backslash);
}

QString quoted(QString word)
{
    for (QChar &character : word) {
        if (character == QLatin1Char('\n') || character == QLatin1Char('\r'))
            character = QLatin1Char(' ');
    }
    const auto isSpecial = [](QChar character) {
        return character.isSpace() || character == quote;
    };
    const bool isPlain = !word.isEmpty() && !word.startsWith(QLatin1Char('#'))
        && std::none_of(word.cbegin(), word.cend(), isSpecial);
    if (isPlain)
        return word;
    word.replace(backslash, QStringLiteral("\\\\")).replace(quote, QStringLiteral("\\\""));
    return quote + word + quote;
}

} // namespace

QStringList splitWords(const QString &line)
{
    QStringList words;
    QString word;
    bool isInWord = false;
    bool isQuoted = false;
    for (int at = 0; at < line.size(); ++at) {
        const QChar character = line.at(at);
        if (isQuoted && isEscape(line, at)) {
            word += line.at(++at);
        } else if (character == quote) {
            isQuoted = !isQuoted;
            isInWord = true;
        } else if (isQuoted || !character.isSpace()) {
            word += character;
            isInWord = true;
        } else if (isInWord) {
            words.append(word);
            word.clear();
            isInWord = false;
        }
    }
    if (isInWord)
        words.append(word);
    return words;
}

QString joinWords(const QStringList &words)
{
    QStringList parts;
    for (const QString &word : words)
        parts.append(quoted(word));
    return parts.join(QLatin1Char(' '));
}
