// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDateTime>
#include <QFileSystemWatcher>
#include <QMap>
#include <QTimer>

/// Watches the QML code in a folder and the folders within: files named *.qml, *.js and qmldir.
/// Hidden folders are left out.
class FolderWatch : public QFileSystemWatcher
{
    Q_OBJECT

public:
    explicit FolderWatch(QString folder, QObject *parent = nullptr);

Q_SIGNALS:
    /// A file has come, gone or changed; once for changes that come together.
    void changed();

private:
    using Files = QMap<QString, QPair<QDateTime, qint64>>; ///< Time and size by path.

    Files scan();
    void check();

    const QString m_folder;
    Files m_files;
    QTimer m_rest; ///< Until it is quiet.
};
