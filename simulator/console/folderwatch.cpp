// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "folderwatch.h"

#include <QDirIterator>

#include <chrono>
#include <utility>

namespace {

/// An editor writes a file in several steps.
constexpr std::chrono::milliseconds rest(200);

} // namespace

FolderWatch::FolderWatch(QString folder, QObject *parent)
    : QFileSystemWatcher(parent)
    , m_folder(std::move(folder))
{
    m_rest.setSingleShot(true);
    m_rest.setInterval(rest);
    const auto wait = qOverload<>(&QTimer::start);
    connect(this, &QFileSystemWatcher::fileChanged, &m_rest, wait);
    connect(this, &QFileSystemWatcher::directoryChanged, &m_rest, wait);
    connect(&m_rest, &QTimer::timeout, this, &FolderWatch::check);
    m_files = scan();
}

/// Returns the files as they are now. Also watches new files and folders, and files that were
/// renamed over a watched one.
FolderWatch::Files FolderWatch::scan()
{
    Files found;
    QStringList paths{m_folder};
    const QStringList names{QStringLiteral("*.qml"), QStringLiteral("*.js"),
                            QStringLiteral("qmldir")};
    QDirIterator all(m_folder, names, QDir::Files | QDir::AllDirs | QDir::NoDotAndDotDot,
                     QDirIterator::Subdirectories);
    while (all.hasNext()) {
        all.next();
        const QFileInfo file = all.fileInfo();
        paths.append(file.filePath());
        if (file.isFile())
            found.insert(file.filePath(), {file.lastModified(), file.size()});
    }
    for (const QStringList &watched : {files(), directories()}) {
        for (const QString &path : watched)
            paths.removeAll(path);
    }
    if (!paths.isEmpty()) {
        addPaths(paths);
        m_rest.start(); // They may have changed before they were watched.
    }
    return found;
}

void FolderWatch::check()
{
    const Files before = std::exchange(m_files, scan());
    if (m_files != before)
        Q_EMIT changed();
}
