// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "sandbox.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>

namespace {

QString deepestExistingFolder(const QString &path)
{
    QString folder = path;
    do
        folder = QFileInfo(folder).path();
    while (!QFileInfo(folder).isDir());
    return folder;
}

/// The machine's own folder must not get new mount points. An empty folder with links to the same
/// entries takes its place.
QStringList rebuilt(const QString &folder)
{
    QStringList arguments{QStringLiteral("--tmpfs"), folder};
    const QFileInfoList entries = QDir(folder).entryInfoList(QDir::AllEntries | QDir::Hidden
                                                             | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries) {
        if (entry.exists())
            arguments << QStringLiteral("--ro-bind") << entry.filePath() << entry.filePath();
    }
    return arguments;
}

} // namespace

bool Sandbox::isPossible()
{
    static const bool isPossible =
        QProcess::execute(QStringLiteral("bwrap"),
                          {QStringLiteral("--dev-bind"), QStringLiteral("/"), QStringLiteral("/"),
                           QStringLiteral("true")})
        == 0;
    return isPossible;
}

void Sandbox::place(const QString &path, const QString &source)
{
    m_placed.insert(path, source);
}

QStringList Sandbox::wrap(const QStringList &command) const
{
    if (m_placed.isEmpty())
        return command;

    QStringList arguments{QStringLiteral("bwrap"), QStringLiteral("--die-with-parent"),
                          QStringLiteral("--dev-bind"), QStringLiteral("/"), QStringLiteral("/")};
    QStringList rebuiltFolders;
    for (auto it = m_placed.cbegin(); it != m_placed.cend(); ++it) {
        const QString folder = deepestExistingFolder(it.key());
        if (QFileInfo::exists(it.key()) || rebuiltFolders.contains(folder))
            continue;
        rebuiltFolders.append(folder);
        arguments += rebuilt(folder);
    }
    for (auto it = m_placed.cbegin(); it != m_placed.cend(); ++it)
        arguments << QStringLiteral("--bind") << it.value() << it.key();
    return arguments << QStringLiteral("--") << command;
}
