// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// Measures what 10 to 100,000 quick messages cost the UI thread: to read their file, and to write
// it. Prints the CPU time of that thread, the ratio of each figure to the one for a tenth of the
// messages, and the peak memory of the process.
//
// Each figure comes from a process of its own, with a home of its own.

#include "growth.h"
#include "quickmessagesmodel.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>

namespace {

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
    std::printf("%f %f %f\n", loaded - start, saved - edited, peakMemory());
    return complete && !model.hasError() ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() > 1)
        return measure(arguments.at(1).toInt());
    return printGrowth({"messages",
                        {10, 100, 1000, 10000, 100000},
                        {{{},
                          {QStringLiteral("load, ms"), QStringLiteral("save, ms"),
                           QStringLiteral("peak, KiB")}}}});
}
