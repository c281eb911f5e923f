// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "quickmessagesmodel.h"

#include "kit.h"

#include <QDir>

QuickMessagesModel::QuickMessagesModel(QObject *parent)
    : QStringListModel(parent)
    , m_filePath(QDir::home().filePath(
          QStringLiteral(".local/share/system/privileged/Phone/quick-replies.json")))
    // A handset shows its ids in the user's language. Tools have no catalogue of texts.
    , m_defaultValue{QStringLiteral("Please call later"),
                     QStringLiteral("I can't talk at the moment"),
                     QStringLiteral("I will call back")}
{
    connect(this, &QAbstractItemModel::rowsInserted, this, &QuickMessagesModel::countChanged);
    connect(this, &QAbstractItemModel::rowsRemoved, this, &QuickMessagesModel::countChanged);
    connect(this, &QAbstractItemModel::modelReset, this, &QuickMessagesModel::countChanged);
}

void QuickMessagesModel::classBegin()
{
    m_kit = Kit::of(this);
    if (m_kit)
        connect(m_kit, &Kit::repliesChanged, this, &QuickMessagesModel::load);
    load();
}

void QuickMessagesModel::setFilePath(const QString &path)
{
    if (path == m_filePath)
        return;
    m_filePath = path;
    Q_EMIT filePathChanged();
    load();
}

void QuickMessagesModel::setDefaultValue(const QStringList &messages)
{
    if (messages == m_defaultValue)
        return;
    m_defaultValue = messages;
    Q_EMIT defaultValueChanged();
    if (rowCount() == 0)
        reset();
}

void QuickMessagesModel::setActive(bool active)
{
    if (active == m_active)
        return;
    m_active = active;
    Q_EMIT activeChanged();
    load();
}

void QuickMessagesModel::load()
{
    if (!m_active || m_filePath.isEmpty())
        return;
    const QStringList saved = m_kit ? m_kit->replies() : QStringList();
    setStringList(saved.isEmpty() ? m_defaultValue : saved);
}

void QuickMessagesModel::save()
{
    if (!m_kit || !m_active || m_filePath.isEmpty())
        return;
    QStringList messages;
    const QStringList rows = stringList();
    for (const QString &row : rows) {
        if (const QString message = row.trimmed(); !message.isEmpty())
            messages.append(message);
    }
    m_kit->setReplies(messages);
}

void QuickMessagesModel::reset()
{
    setStringList(m_defaultValue);
}

void QuickMessagesModel::append(const QString &string)
{
    const int row = rowCount();
    if (insertRow(row))
        setData(index(row), string);
}

void QuickMessagesModel::remove(int index)
{
    removeRow(index);
}
