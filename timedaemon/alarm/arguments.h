// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QString>
#include <QStringList>

/// The command line of parley-alarm.
struct Arguments
{
    /// Parses the words of a command line, the first of which is the program. There has to be an
    /// application object.
    static Arguments parse(const QStringList &words);

    QString translations; ///< The folder of the catalogues.
    QString text; ///< The text that was requested, help or version; otherwise empty.
    QString error; ///< A message for the user; empty if the arguments are valid.
};
