// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QStringList>

/// The words of a command line: what stands between blanks. Double quotes hold a word with blanks,
/// or an empty one, together; within them \" is a quote and \\ a backslash. A quote that is not
/// closed reaches to the end.
QStringList splitWords(const QString &line);

/// The line that splits into \a words, with quotes where they are needed. A line has one line: what
/// ends one within a word becomes a blank.
QString joinWords(const QStringList &words);
