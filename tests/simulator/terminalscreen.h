// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// What the user of a terminal sees: the text that a program has written to it, after its control
/// sequences. It understands those that a line editor uses. The screen grows instead of scrolling.
class TerminalScreen
{
public:
    void write(const QByteArray &output);
    void setColumns(int columns) { m_columns = columns; }

    /// Returns the rows without the blanks at their ends.
    QStringList rows() const;
    /// Returns the row of the cursor, up to the cursor.
    QString beforeCursor() const;
    /// Returns the sequences that it does not understand.
    QStringList problems() const { return m_problems; }

private:
    void put(QChar character);
    void control(const QString &sequence);
    void clearBehindCursor();
    QString &row();

    QByteArray m_rest; ///< The beginning of a character or sequence.
    QStringList m_rows{QString()};
    QStringList m_problems;
    int m_columns = 80;
    int m_row = 0;
    int m_column = 0;
};
