// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QString>
#include <QStringList>

#include <functional>

enum class Outcome {
    Done,
    Failed,
    Skipped, ///< It cannot be done here; what is expected of it cannot either.
};

/// Called once by a command when it is through, with what there is to say about it (may be empty).
using Finish = std::function<void(Outcome outcome, const QString &text)>;

/// One command of the simulated handset's console.
struct Command
{
    QString name; ///< Of one word, or several with a blank between two.
    /// What it takes: "NUMBER" must be given, "[NAME]" may be, and "[URL...]" any number of times.
    QStringList parameters;
    QString help; ///< One line.
    /// Starts it. It ends with \a finish, at once or later; until then no other command starts.
    std::function<void(const QStringList &arguments, const Finish &finish)> run;
};
