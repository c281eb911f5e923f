// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QFileSystemWatcher>
#include <QStringListModel>

/// The user's quick replies: short texts to send instead of taking a call, one in each row.
///
/// They are stored in a JSON file as an array of strings. If the file is missing or has no message,
/// the model shows three translated default messages instead. It shows what other processes write
/// to the file. Changes to the model are written only by save().
class QuickMessagesModel : public QStringListModel
{
    Q_OBJECT
    /// The absolute path of the file; empty for no file. A missing directory is created. The
    /// default is "~/.local/share/system/privileged/Phone/quick-replies.json".
    Q_PROPERTY(QString filePath READ filePath WRITE setFilePath NOTIFY filePathChanged)
    /// The messages to show if the file has none. The default is the ids of the default messages.
    Q_PROPERTY(
        QStringList defaultValue READ defaultValue WRITE setDefaultValue NOTIFY defaultValueChanged)
    /// The number of rows.
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    /// Whether the file is read and written at all. True by default. A change to true reads the
    /// file.
    Q_PROPERTY(bool active READ active WRITE setActive NOTIFY activeChanged)
    /// Whether the file could not be opened when it was last read or written, or its directory
    /// could not be created. The latter changes this property without a signal, and this is meant.
    /// A file that is not a regular file, or has more than 16 MiB to read, counts as one that
    /// cannot be opened. A file without messages is no error, and neither is a missing file.
    Q_PROPERTY(bool hasError READ hasError NOTIFY hasErrorChanged)

public:
    /// Reads the file at once.
    explicit QuickMessagesModel(QObject *parent = nullptr);

    /// Does the same as QStringListModel::data(), but returns the default messages in the user's
    /// language.
    QVariant data(const QModelIndex &index, int role) const override;

    QString filePath() const { return m_filePath; }
    void setFilePath(const QString &path);
    QStringList defaultValue() const { return m_defaultValue; }
    void setDefaultValue(const QStringList &messages);
    int count() const { return rowCount(); }
    bool active() const { return m_active; }
    void setActive(bool active);
    bool hasError() const { return m_hasError; }

    /// Writes the rows to the file, in place. Default messages are written as their ids.
    Q_INVOKABLE void save();
    /// Shows the default value. The file stays as it is.
    Q_INVOKABLE void reset();
    /// Adds a row at the end.
    Q_INVOKABLE void append(const QString &string);
    /// Removes a row. Does nothing if there is no row at \a index.
    Q_INVOKABLE void remove(int index);

Q_SIGNALS:
    void filePathChanged();
    void defaultValueChanged();
    void activeChanged();
    void hasErrorChanged();
    /// Rows were added or removed, or all rows were set, even if their number is the same.
    void countChanged();

private Q_SLOTS:
    void directoryChanged(const QString &path);
    void fileChanged(const QString &path);

private:
    void watch(const QString &path);
    void stopWatching();
    bool watchFile(const QString &path);
    void load();
    void show(const QStringList &messages);
    void setHasError(bool hasError);

    bool m_active = true;
    bool m_hasError = false;
    /// Whether the file was there at the last look and is watched, or cannot be read. A change of
    /// the directory makes the model read a file that is not known.
    bool m_isFileKnown = false;
    QString m_filePath;
    QStringList m_defaultValue;
    QFileSystemWatcher m_watcher; ///< Watches the file and its directory.
};
