// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "seasidecache.h"

#include <QVector>

#include <algorithm>

namespace {

constexpr int significantCharacters = 7;

bool isDialable(char32_t c)
{
    return QChar::isDigit(c) || c == U'*' || c == U'#';
}

/// Returns 'p' (pause), 'w' (wait) or 'x' (extension), or 0 if \a c stands for none of them.
char dialStringCharacter(char32_t c)
{
    switch (c) {
    case U'p':
    case U'P':
    case U',':
        return 'p';
    case U'w':
    case U'W':
    case U';':
        return 'w';
    case U'x':
    case U'X':
        return 'x';
    default:
        return 0;
    }
}

bool isNumber(const QVector<uint> &text)
{
    return std::any_of(text.cbegin(), text.cend(), isDialable);
}

} // namespace

QString SeasideCache::normalizePhoneNumber(const QString &number, bool validate)
{
    const QVector<uint> text = number.toUcs4();
    if (!isNumber(text))
        return validate ? QString() : number.trimmed();

    QString normalized;
    bool hasDigit = false;
    for (const uint c : text) {
        const char dialString = hasDigit ? dialStringCharacter(c) : '\0';
        if (QChar::isDigit(c)) {
            normalized += QChar(u'0' + QChar::digitValue(c));
            hasDigit = true;
        } else if (c == U'*' || c == U'#') {
            normalized += QChar(c);
        } else if ((c == U'+' || c == U'\uff0b') && !hasDigit) {
            normalized += QLatin1Char('+');
        } else if (dialString != 0) {
            normalized += QLatin1Char(dialString);
        } else if (validate && QChar::isLetter(c)) {
            return {};
        }
    }
    return normalized;
}

QString SeasideCache::minimizePhoneNumber(const QString &number, bool validate)
{
    QString normalized = normalizePhoneNumber(number, validate);
    if (!isNumber(normalized.toUcs4()))
        return normalized;

    const auto *const end = std::find_if(normalized.cbegin(), normalized.cend(), [](QChar c) {
        return dialStringCharacter(c.unicode()) != 0;
    });
    return normalized.left(static_cast<int>(end - normalized.cbegin()))
        .right(significantCharacters);
}
