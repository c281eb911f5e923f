// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QString>

/// The two keys by which the contacts of a handset find a phone number.
class SeasideCache
{
public:
    /// Returns \a number without the characters that only make it easier to read. The digits of all
    /// scripts become ASCII digits. Kept are a '+' before the first digit, '*', '#', and, after the
    /// first digit, the dial-string characters 'p', 'w' and 'x' in lower case; ',' becomes 'p', and
    /// ';' becomes 'w'.
    ///
    /// A text without a digit, '*' or '#' is returned trimmed and otherwise unchanged. With
    /// \a validate, such a text gives an empty string, and so does one with any other letter.
    static QString normalizePhoneNumber(const QString &number, bool validate);

    /// Returns the part of \a number that is the same with and without prefixes: the last seven
    /// characters of the normalised number before its first 'p', 'w' or 'x'. Without a digit,
    /// star or hash, the result is that of normalizePhoneNumber().
    static QString minimizePhoneNumber(const QString &number, bool validate);
};
