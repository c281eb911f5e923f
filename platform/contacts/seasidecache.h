// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QString>

/// The two keys under which the contacts of a handset know a phone number.
class SeasideCache
{
public:
    /// \a number without what only makes it easier to read: the digits of any script as ASCII
    /// digits, a '+' before the first digit, '*', '#', and, after the first digit, the dial-string
    /// characters 'p', 'w' and 'x' (small; ',' is a 'p' and ';' a 'w').
    ///
    /// A text that has no digit, '*' or '#' is returned trimmed and otherwise unchanged. With
    /// \a validate such a text gives an empty string, and so does one with any other letter.
    static QString normalizePhoneNumber(const QString &number, bool validate);

    /// What tells numbers apart that are written with and without their prefixes: the last seven
    /// characters of the normalised number up to its first 'p', 'w' or 'x'. A text that normalising
    /// left unchanged is returned whole.
    static QString minimizePhoneNumber(const QString &number, bool validate);
};
