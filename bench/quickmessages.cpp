// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// What quick messages cost the UI thread, for 10 to 100,000 of them: reading their file, and
// writing it. Prints CPU time of that thread, each figure's ratio to the one of a tenth of the
// messages, and the peak memory of the process.
//
// Every figure is from a process of its own, in a home of its own.

#include "quickmessagesmodel.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

namespace {

constexpr int runs = 5;

/// Milliseconds of CPU that this thread has had.
double threadTime()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

long peakMemory()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("VmHWM:"))
            return line.simplified().split(' ').at(1).toLong();
    }
    return 0;
}

bool writeMessages(const QString &path, int size)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    for (int i = 0; i < size; ++i)
        file.write((i == 0 ? "[\"" : ",\n\"") + QByteArray("I will be there in ")
                   + QByteArray::number(i) + " minutes\"");
    return file.write("]") == 1;
}

int measure(int size)
{
    const QTemporaryDir folder;
    qputenv("HOME", QFile::encodeName(folder.path()));
    const QString path = folder.filePath(QStringLiteral("messages.json"));
    if (!writeMessages(path, size))
        return EXIT_FAILURE;

    QuickMessagesModel model;
    const double start = threadTime();
    model.setFilePath(path);
    const double loaded = threadTime();
    const bool complete = model.count() == size;
    model.append(QStringLiteral("One more"));
    const double edited = threadTime();
    model.save();
    const double saved = threadTime();
    std::printf("%f %f %ld\n", loaded - start, saved - edited, peakMemory());
    return complete && !model.hasError() ? EXIT_SUCCESS : EXIT_FAILURE;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

int compare(const QString &program)
{
    std::printf("Medians of %d processes each; ratio: to a tenth of the messages.\n\n", runs);
    std::printf("%8s %10s %7s %10s %7s %12s\n", "messages", "load, ms", "ratio", "save, ms",
                "ratio", "peak, KiB");
    double loadedBefore = 0;
    double savedBefore = 0;
    for (const int size : {10, 100, 1000, 10000, 100000}) {
        std::vector<double> loaded;
        std::vector<double> saved;
        std::vector<double> memory;
        for (int run = 0; run < runs; ++run) {
            QProcess process;
            process.start(program, {QString::number(size)});
            if (!process.waitForFinished(-1) || process.exitCode() != 0) {
                std::fprintf(stderr, "%s", process.readAllStandardError().constData());
                return EXIT_FAILURE;
            }
            const QList<QByteArray> figures =
                process.readAllStandardOutput().simplified().split(' ');
            loaded.push_back(figures.at(0).toDouble());
            saved.push_back(figures.at(1).toDouble());
            memory.push_back(figures.at(2).toDouble());
        }
        std::printf("%8d %10.2f", size, median(loaded));
        loadedBefore > 0 ? std::printf(" %7.1f", median(loaded) / loadedBefore)
                         : std::printf(" %7s", "");
        std::printf(" %10.2f", median(saved));
        savedBefore > 0 ? std::printf(" %7.1f", median(saved) / savedBefore)
                        : std::printf(" %7s", "");
        std::printf(" %12.0f\n", median(memory));
        loadedBefore = median(loaded);
        savedBefore = median(saved);
    }
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    return arguments.size() > 1 ? measure(arguments.at(1).toInt())
                                : compare(arguments.constFirst());
}
