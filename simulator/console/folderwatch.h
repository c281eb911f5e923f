// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDateTime>
#include <QFileSystemWatcher>
#include <QMap>
#include <QTimer>

/// Watches the QML code in a folder and its subfolders: files named *.qml, *.js and qmldir. Hidden
/// folders are not watched.
class FolderWatch : public QFileSystemWatcher
{
    Q_OBJECT

public:
    explicit FolderWatch(QString folder, QObject *parent = nullptr);

Q_SIGNALS:
    /// A file was added, removed or changed. Emitted once for changes that come together.
    void changed();

private:
    using Files = QMap<QString, QPair<QDateTime, qint64>>; ///< The time and the size by path.

    Files scan();
    void check();

    const QString m_folder;
    Files m_files;
    QTimer m_rest; ///< Runs out when there was no change for a moment.
};
