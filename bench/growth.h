// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QStringList>

#include <vector>

/// Milliseconds of CPU that the calling thread has had.
double threadTime();

/// The peak of this process' resident memory so far, in KiB.
double peakMemory();

double median(std::vector<double> values);

/// How what a benchmark measures grows with a size. Every figure is from processes of their own:
/// the benchmark itself with the size and further arguments, which prints the figures in a line.
struct Growth
{
    struct Process
    {
        QStringList arguments; ///< Behind the size.
        QStringList figures; ///< Their names, with the unit.
    };

    const char *things; ///< Of which the size is the number.
    std::vector<int> sizes;
    std::vector<Process> processes;
};

/// Prints a table of medians, each with its ratio to that of the size before. The benchmark's exit
/// status: it fails if one of the processes does.
int printGrowth(const Growth &growth);
