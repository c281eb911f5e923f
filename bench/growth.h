// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QStringList>

#include <vector>

/// Returns the CPU time of the calling thread, in milliseconds.
double threadTime();

/// Returns the peak of the resident memory of this process so far, in KiB.
double peakMemory();

double median(std::vector<double> values);

/// How the figures of a benchmark grow with a size. Each figure comes from processes of its own:
/// they run the benchmark with the size and further arguments, and print their figures in one line.
struct Growth
{
    struct Process
    {
        QStringList arguments; ///< The arguments after the size.
        QStringList figures; ///< The names of the figures, with their units.
    };

    const char *things; ///< The things whose number is the size.
    std::vector<int> sizes;
    std::vector<Process> processes;
};

/// Prints a table of medians, each with its ratio to the median for the size before. Returns the
/// exit status of the benchmark: it fails if one of the processes fails.
int printGrowth(const Growth &growth);
