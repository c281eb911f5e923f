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
    /// The text between two fences.
    struct Block
    {
        QString kind; ///< The text after the first fence, for example "qml".
        QStringList lines;
        int number; ///< The number of the line with the first fence.
    };

    /// A line of a table, except for the first two.
    struct Row
    {
        QString section; ///< The heading above the table.
        QString column; ///< The title of the first column.
        QStringList cells;
    };

    /// Reads the file. The page is empty if there is none.
    explicit Document(const QString &fileName);

    const QVector<Block> &blocks() const { return m_blocks; }
    const QVector<Row> &rows() const { return m_rows; }
    /// The anchors that a link may have after '#'.
    const QStringList &anchors() const { return m_anchors; }
    /// The targets of the links.
    const QStringList &links() const { return m_links; }

private:
    void readText(const QString &line);
    void readRow(const QString &line);

    QVector<Block> m_blocks;
    QVector<Row> m_rows;
    QStringList m_anchors;
    QStringList m_links;

    // The state while the page is read:
    QString m_section;
    /// The title of the first column of the current table; empty outside of a table.
    QString m_column;
    bool m_inBlock = false;
};
