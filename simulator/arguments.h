// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "handset.h"

#include <QString>

/// The arguments of the program.
struct Arguments
{
    /// Parses the arguments of main(). Needs no application; which one there is depends on them.
    static Arguments parse(int argc, char *argv[]);

    Handset::Options handset;
    QString script; ///< The file with the commands; empty for standard input.
    QString help; ///< The help text, where it is asked for.
    QString error; ///< What is wrong with them; empty where nothing is.
};
