// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QStringList>

/// Returns the words of a command line, which blanks separate. A word with blanks, or an empty one,
/// has double quotes around it. Inside them, \" is a quote and \\ is a backslash. A quote that is
/// not closed reaches to the end of the line.
QStringList splitWords(const QString &line);

/// Returns the line that splits into \a words, with quotes where they are needed. A line break in a
/// word becomes a blank.
QString joinWords(const QStringList &words);
