// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "handset.h"

#include <QString>

/// The command line of parley-handset.
struct Arguments
{
    /// Parses the arguments of main(). This needs no application object; they decide which kind of
    /// application is made.
    static Arguments parse(int argc, char *argv[]);

    Handset::Options handset;
    QString script; ///< The file with the commands; empty for standard input.
    bool isTour = false; ///< The commands are those of the tour.
    QString testFolder; ///< The folder with scripts to run as tests; empty for a session.
    QString reportFile; ///< The report of these tests; empty for none.
    QString answer; ///< What was asked for, such as the help text; empty for a session or tests.
    QString error; ///< A message for the user; empty if the arguments are valid.
};
