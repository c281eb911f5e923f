// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QString>
#include <QStringList>

#include <functional>

enum class Outcome {
    Done,
    Failed,
    Skipped, ///< It is not possible here. What is expected of it is skipped as well.
};

/// A command calls this once when it ends, with a text for the user, which may be empty.
using Finish = std::function<void(Outcome outcome, const QString &text)>;

/// One command of the simulated handset's console.
struct Command
{
    QString name; ///< One word, or several words with a blank between them.
    /// "NUMBER" is required, "[NAME]" is optional, and "[URL...]" may be given any number of times.
    QStringList parameters;
    QString help; ///< A line for the list of commands.
    /// Starts the command. It calls \a finish at once or later. No other command starts before
    /// that.
    std::function<void(const QStringList &arguments, const Finish &finish)> run;
};
