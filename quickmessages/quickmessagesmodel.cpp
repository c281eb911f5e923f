// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "quickmessagesmodel.h"

#include "messagesfile.h"
#include "messagesjson.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

/// The default messages in their stored form. They are translated when they are shown.
const QStringList defaultMessageIds{
    //: A message to a caller whose call is not answered.
    //% "Please call later"
    QString::fromLatin1(QT_TRID_NOOP("parley-me-please_call_later")),
    //: A message to a caller whose call is not answered.
    //% "I can't talk at the moment"
    QString::fromLatin1(QT_TRID_NOOP("parley-me-cant_talk_at_the_moment")),
    //: A message to a caller whose call is not answered.
    //% "I will call back"
    QString::fromLatin1(QT_TRID_NOOP("parley-me-will_call_back"))};

/// The model returns the memory of more rows than this, which no user writes.
constexpr int manyRows = 10000;

QString homePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::HomeLocation);
}

/// Returns free memory to the system: the C library would keep the memory of so many small texts.
void returnFreedMemory()
{
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

} // namespace

QuickMessagesModel::QuickMessagesModel(QObject *parent)
    : QStringListModel(parent)
    , m_defaultValue(defaultMessageIds)
{
    setFilePath(homePath()
                + QLatin1String("/.local/share/system/privileged/Phone/quick-replies.json"));
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &QuickMessagesModel::fileChanged);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this,
            &QuickMessagesModel::directoryChanged);
    connect(this, &QAbstractItemModel::rowsInserted, this, &QuickMessagesModel::countChanged);
    connect(this, &QAbstractItemModel::rowsRemoved, this, &QuickMessagesModel::countChanged);
    connect(this, &QAbstractItemModel::modelReset, this, &QuickMessagesModel::countChanged);
}

QVariant QuickMessagesModel::data(const QModelIndex &index, int role) const
{
    QVariant value = QStringListModel::data(index, role);
    const bool isText = role == Qt::DisplayRole || role == Qt::EditRole;
    if (isText && defaultMessageIds.contains(value.toString()))
        return qtTrId(value.toString().toUtf8().constData());
    return value;
}

void QuickMessagesModel::setFilePath(const QString &path)
{
    if (path == m_filePath)
        return;
    stopWatching();
    if (!path.isEmpty())
        watch(path);
    m_filePath = path;
    Q_EMIT filePathChanged();
    if (!m_filePath.isEmpty())
        load();
}

void QuickMessagesModel::stopWatching()
{
    const QStringList paths = m_watcher.directories() + m_watcher.files();
    if (!paths.isEmpty())
        m_watcher.removePaths(paths);
}

void QuickMessagesModel::watch(const QString &path)
{
    const QFileInfo file(path);
    const QDir directory = file.dir();
    if (!directory.exists() && !QDir(homePath()).mkpath(directory.path())) {
        // It is meant that no signal tells of this error.
        m_hasError = true;
        m_isFileKnown = false;
        return;
    }
    const QString directoryPath = directory.absolutePath();
    if (QFileInfo(directoryPath).isReadable()) // Another one cannot be watched.
        m_watcher.addPath(directoryPath);
    if (file.exists())
        watchFile(path);
    else
        m_isFileKnown = false;
}

/// Watches the file that has the name now: another one may have taken the place of the one that was
/// watched. Returns whether it is watched; a file that cannot be read cannot be. A file that cannot
/// be watched for another reason counts as unknown, so that every change of its directory makes the
/// model read it again.
bool QuickMessagesModel::watchFile(const QString &path)
{
    const QFileInfo file(QFileInfo(path).absoluteFilePath());
    m_watcher.removePath(file.filePath());
    const bool isReadable = file.isReadable();
    const bool isWatched = isReadable && m_watcher.addPath(file.filePath());
    m_isFileKnown = isWatched || !isReadable;
    return isWatched;
}

void QuickMessagesModel::load()
{
    if (!m_active) {
        qDebug() << "void QuickMessagesModel::load()"
                 << "inactive, can't load file" << m_filePath;
        return;
    }
    if (m_filePath.isEmpty()) {
        qDebug() << "void QuickMessagesModel::load()"
                 << "file path is empty, can't load file";
        return;
    }
    // Not QFile::exists(), which takes a dangling link for a file.
    if (!QFileInfo::exists(m_filePath)) {
        m_isFileKnown = false;
        show(m_defaultValue);
        return;
    }
    const QString path = m_filePath;
    QFile file(path);
    // Watch the file before reading it, so that later writes are noticed.
    watchFile(path);
    const bool opened = openToRead(file);
    setHasError(!opened);
    // A handler may have chosen another file, whose messages are shown by now.
    if (path != m_filePath)
        return;
    // Read only now: a handler may have saved.
    const QStringList messages =
        opened ? messagesFromJson(file.read(largestMessagesFile)) : QStringList();
    if (messages.isEmpty())
        show(m_defaultValue);
    else if (messages != stringList())
        show(messages);
}

void QuickMessagesModel::show(const QStringList &messages)
{
    const bool hadMany = count() > manyRows;
    setStringList(messages);
    if (hadMany)
        returnFreedMemory();
}

void QuickMessagesModel::save()
{
    if (!m_active) {
        qWarning() << "void QuickMessagesModel::save()"
                   << "inactive, can't save file" << m_filePath;
        return;
    }
    if (m_filePath.isEmpty()) {
        qWarning() << "void QuickMessagesModel::save()"
                   << "filePath is not set, can't save";
        return;
    }
    const QString path = m_filePath;
    QFile file(path);
    if (!openToWrite(file)) {
        qWarning() << "void QuickMessagesModel::save()"
                   << "can't open file" << path;
        setHasError(true);
        return;
    }
    QStringList messages = stringList();
    setHasError(false);
    // A handler may have chosen another file, or changed the messages of this one.
    const bool isCurrent = path == m_filePath;
    if (isCurrent)
        messages = stringList();
    // Stop watching: our own write is not a change.
    m_watcher.removePath(QFileInfo(path).absoluteFilePath());
    file.write(messagesToJson(messages));
    file.close();
    if (isCurrent)
        watchFile(path);
}

void QuickMessagesModel::setHasError(bool hasError)
{
    if (hasError == m_hasError)
        return;
    m_hasError = hasError;
    Q_EMIT hasErrorChanged();
}

void QuickMessagesModel::setActive(bool active)
{
    if (active == m_active)
        return;
    m_active = active;
    Q_EMIT activeChanged();
    if (m_active)
        load();
}

void QuickMessagesModel::setDefaultValue(const QStringList &messages)
{
    if (messages == m_defaultValue)
        return;
    m_defaultValue = messages;
    Q_EMIT defaultValueChanged();
    if (m_active && !m_filePath.isEmpty() && count() == 0)
        setStringList(m_defaultValue);
}

void QuickMessagesModel::reset()
{
    setStringList(m_defaultValue);
}

void QuickMessagesModel::append(const QString &string)
{
    const int row = count();
    insertRow(row);
    if (!string.isEmpty())
        setData(index(row), string, Qt::EditRole);
}

void QuickMessagesModel::remove(int index)
{
    // removeRows() alone does not notice an index so high that the next one overflows.
    if (index < count())
        removeRows(index, 1);
}

// The spelling "undexpected" in the warnings below is meant.

void QuickMessagesModel::directoryChanged(const QString &path)
{
    const QFileInfo file(m_filePath);
    if (path != file.absolutePath()) {
        qWarning() << "undexpected directoryChanged signal for path:" << path;
        return;
    }
    if (!file.exists()) {
        m_isFileKnown = false;
        const QStringList files = m_watcher.files();
        if (!files.isEmpty())
            m_watcher.removePaths(files);
        return;
    }
    // A file that is known and not watched could not be read. The rows stay until it can be.
    const bool isKnown = m_isFileKnown;
    const bool isWatched =
        (m_watcher.files() + m_watcher.directories()).contains(file.absoluteFilePath());
    if (isKnown && isWatched)
        return;
    if (watchFile(m_filePath) || !isKnown)
        load();
}

void QuickMessagesModel::fileChanged(const QString &path)
{
    if (path != QFileInfo(m_filePath).absoluteFilePath()) {
        qWarning() << "undexpected fileChanged signal for path:" << path;
        return;
    }
    load();
}
