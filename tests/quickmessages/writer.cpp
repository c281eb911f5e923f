// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// A process that rewrites a file of messages as fast as it can: writer FILE WAY TIMES.
// The way is "in-place", "by-rename", "by-deletion" or "truncated-first". Version N is an array of
// N % 10 + 1 messages "version N".

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <cstdio>

#include <sched.h>

namespace {

QByteArray contentOf(int version)
{
    const QByteArray message = "\"version " + QByteArray::number(version) + '"';
    const QByteArray another = message + ", ";
    return '[' + another.repeated(version % 10) + message + ']';
}

bool writeTo(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

bool writeInPlace(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::ReadWrite) && file.write(content) == content.size() && file.flush()
        && file.resize(content.size());
}

bool writeByRename(const QString &path, const QByteArray &content)
{
    const QString other = path + QLatin1String(".new");
    return writeTo(other, content)
        && std::rename(QFile::encodeName(other).constData(), QFile::encodeName(path).constData())
        == 0;
}

bool writeByDeletion(const QString &path, const QByteArray &content)
{
    return QFile::remove(path) && writeTo(path, content);
}

bool writeTruncatedFirst(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        return false;
    sched_yield();
    const auto half = content.size() / 2;
    if (file.write(content.left(half)) != half)
        return false;
    sched_yield();
    return file.write(content.mid(half)) == content.size() - half;
}

bool write(const QString &way, const QString &path, const QByteArray &content)
{
    if (way == QLatin1String("in-place"))
        return writeInPlace(path, content);
    if (way == QLatin1String("by-rename"))
        return writeByRename(path, content);
    if (way == QLatin1String("by-deletion"))
        return writeByDeletion(path, content);
    return way == QLatin1String("truncated-first") && writeTruncatedFirst(path, content);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString &path = arguments.at(1);
    const QString &way = arguments.at(2);
    const int times = arguments.at(3).toInt();
    for (int version = 0; version < times; ++version) {
        if (!write(way, path, contentOf(version)))
            return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
