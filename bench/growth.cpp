// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "growth.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <iterator>

namespace {

constexpr int runs = 5;

/// Returns the medians of several processes; nothing if one of them fails.
std::vector<double> medianFigures(const QStringList &arguments, qsizetype count)
{
    std::vector<std::vector<double>> figures(static_cast<std::size_t>(count));
    for (int run = 0; run < runs; ++run) {
        QProcess process;
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(QCoreApplication::applicationFilePath(), arguments);
        if (!process.waitForFinished(-1) || process.exitStatus() != QProcess::NormalExit
            || process.exitCode() != EXIT_SUCCESS)
            return {};
        const QList<QByteArray> printed = process.readAllStandardOutput().simplified().split(' ');
        for (int i = 0; i < count; ++i)
            figures[static_cast<std::size_t>(i)].push_back(printed.value(i).toDouble());
    }
    std::vector<double> medians;
    std::transform(figures.cbegin(), figures.cend(), std::back_inserter(medians), median);
    return medians;
}

} // namespace

double threadTime()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

double peakMemory()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("VmHWM:"))
            return line.simplified().split(' ').at(1).toDouble();
    }
    return 0;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

int printGrowth(const Growth &growth)
{
    std::printf("Medians of %d processes each; ratio: to a tenth of the %s.\n\n", runs,
                growth.things);
    std::printf("%8s", growth.things);
    for (const Growth::Process &process : growth.processes) {
        for (const QString &figure : process.figures)
            std::printf("  %14s %7s", qUtf8Printable(figure), "ratio");
    }
    std::printf("\n");
    std::vector<double> before;
    for (const int size : growth.sizes) {
        std::vector<double> figures;
        for (const Growth::Process &process : growth.processes) {
            const std::vector<double> some = medianFigures(
                QStringList(QString::number(size)) + process.arguments, process.figures.size());
            if (some.empty())
                return EXIT_FAILURE;
            figures.insert(figures.end(), some.cbegin(), some.cend());
        }
        std::printf("%8d", size);
        for (std::size_t i = 0; i < figures.size(); ++i) {
            std::printf("  %14.3f", figures[i]);
            before.empty() ? std::printf(" %7s", "")
                           : std::printf(" %7.1f", figures[i] / before[i]);
        }
        std::printf("\n");
        std::fflush(stdout);
        before = figures;
    }
    return EXIT_SUCCESS;
}
