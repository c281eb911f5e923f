// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "phonenumber.h"

#include <algorithm>

namespace {

constexpr int mostCharacters = 200;

bool separates(QChar c)
{
    static const QString punctuation = QStringLiteral("-./()\u2010\u2011\u2012\u2013");
    return c.isSpace() || c.category() == QChar::Other_Format || punctuation.contains(c);
}

bool isKey(QChar c)
{
    return (c >= QLatin1Char('0') && c <= QLatin1Char('9')) || c == QLatin1Char('*')
        || c == QLatin1Char('#');
}

bool isTone(QChar c)
{
    return isKey(c) || (c >= QLatin1Char('A') && c <= QLatin1Char('D'))
        || (c >= QLatin1Char('a') && c <= QLatin1Char('d'));
}

bool hasForm(const QString &number, int most)
{
    const int begin = number.startsWith(QLatin1Char('+')) ? 1 : 0;
    const auto size = number.size() - begin;
    return size > 0 && size <= most && std::all_of(number.cbegin() + begin, number.cend(), isKey);
}

} // namespace

namespace PhoneNumber {

QString withoutSeparators(const QString &text)
{
    QString number;
    for (const QChar c : text) {
        if (number.size() == mostCharacters)
            break;
        if (c.isDigit())
            number.append(QChar(QLatin1Char('0').unicode() + c.digitValue()));
        else if (!separates(c))
            number.append(c);
    }
    return number;
}

bool isDialable(const QString &number)
{
    return hasForm(number, 80);
}

bool isAddress(const QString &number)
{
    return hasForm(number, 20);
}

bool isRequest(const QString &number)
{
    return (number.startsWith(QLatin1Char('*')) || number.startsWith(QLatin1Char('#')))
        && number.endsWith(QLatin1Char('#'));
}

bool areTones(const QString &tones)
{
    return !tones.isEmpty() && tones.size() <= 255
        && std::all_of(tones.cbegin(), tones.cend(), isTone);
}

} // namespace PhoneNumber
