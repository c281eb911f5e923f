// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// A page of the documentation, in Markdown.
class Document
{
public:
    /// What stands between two fences.
    struct Block
    {
        QString kind; ///< What stands behind the first fence: "qml".
        QStringList lines;
        int number; ///< Of the first fence's line.
    };

    /// A line of a table, but for its first two.
    struct Row
    {
        QString section; ///< The heading above it.
        QString column; ///< What the table's first column is called.
        QStringList cells;
    };

    /// Reads the file; a page without anything if there is none.
    explicit Document(const QString &fileName);

    const QVector<Block> &blocks() const { return m_blocks; }
    const QVector<Row> &rows() const { return m_rows; }
    /// What a link may say behind '#'.
    const QStringList &anchors() const { return m_anchors; }
    /// Where its links lead to.
    const QStringList &links() const { return m_links; }

private:
    void readText(const QString &line);
    void readRow(const QString &line);

    QVector<Block> m_blocks;
    QVector<Row> m_rows;
    QStringList m_anchors;
    QStringList m_links;

    // While it is read:
    QString m_section;
    QString m_column; ///< Of the table that is being read; empty outside of one.
    bool m_inBlock = false;
};
