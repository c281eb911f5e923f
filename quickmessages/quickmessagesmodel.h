// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QFileSystemWatcher>
#include <QStringListModel>

/// The user's quick replies: short texts to send instead of taking a call, a row each.
///
/// They are kept in a JSON file, an array of strings. Where it is missing or has none, three
/// default messages are shown instead, translated. What another process writes to the file is
/// shown; what is changed here is written by save() alone.
class QuickMessagesModel : public QStringListModel
{
    Q_OBJECT
    /// Absolute path of the file. A directory that is missing is made. Empty for no file. At first,
    /// "~/.local/share/system/privileged/Phone/quick-replies.json".
    Q_PROPERTY(QString filePath READ filePath WRITE setFilePath NOTIFY filePathChanged)
    /// What is shown where the file has nothing to show. At first, the ids of the default messages.
    Q_PROPERTY(
        QStringList defaultValue READ defaultValue WRITE setDefaultValue NOTIFY defaultValueChanged)
    /// The number of rows.
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    /// Whether the file is read and written at all. True at first; turning true reads it.
    Q_PROPERTY(bool active READ active WRITE setActive NOTIFY activeChanged)
    /// Whether the file could not be opened when it was last read or written, or its directory
    /// could not be made (which changes this without a signal, and is meant to). What is no regular
    /// file, or has more than 16 MiB to read, counts as a file that cannot be opened. A file
    /// without messages is no error, nor is a missing one.
    Q_PROPERTY(bool hasError READ hasError NOTIFY hasErrorChanged)

public:
    /// Reads the file at once.
    explicit QuickMessagesModel(QObject *parent = nullptr);

    /// As QStringListModel; a default message is given in the user's language.
    QVariant data(const QModelIndex &index, int role) const override;

    QString filePath() const { return m_filePath; }
    void setFilePath(const QString &path);
    QStringList defaultValue() const { return m_defaultValue; }
    void setDefaultValue(const QStringList &messages);
    int count() const { return rowCount(); }
    bool active() const { return m_active; }
    void setActive(bool active);
    bool hasError() const { return m_hasError; }

    /// Writes the rows to the file, in place; default messages as their ids.
    Q_INVOKABLE void save();
    /// Shows the default value. The file stays as it is.
    Q_INVOKABLE void reset();
    /// Adds a row at the end.
    Q_INVOKABLE void append(const QString &string);
    /// Takes a row away; nothing if there is none at \a index.
    Q_INVOKABLE void remove(int index);

Q_SIGNALS:
    void filePathChanged();
    void defaultValueChanged();
    void activeChanged();
    void hasErrorChanged();
    /// Rows have come or gone, or all have been set, whatever their number.
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
    QFileSystemWatcher m_watcher; ///< Of the file and its directory.
};
