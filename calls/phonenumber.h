// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QString>

/// Phone numbers as users write them and as oFono takes them.
namespace PhoneNumber {

/// Returns \a text without spaces, separators and invisible marks, with its digits as ASCII. A text
/// that is too long for a number is cut, and is not valid then.
QString withoutSeparators(const QString &text);

/// Returns whether oFono dials \a number: digits, '*' and '#', 80 at most, after an optional '+'.
bool isDialable(const QString &number);

/// Returns whether oFono sends messages to \a number: the same with 20 characters at most.
bool isAddress(const QString &number);

/// Returns whether \a number is a request to the network and not a call: it begins with '*' or '#'
/// and ends with '#' (3GPP TS 22.030, 6.5.2).
bool isRequest(const QString &number);

/// Returns whether \a tones are tones of a keypad, 255 at most.
bool areTones(const QString &tones);

} // namespace PhoneNumber
