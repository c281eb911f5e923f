// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "terminalscreen.h"

#include "literals.h"

#include <QRegularExpression>

#include <algorithm>

void TerminalScreen::write(const QByteArray &output)
{
    m_rest += output;
    static const QRegularExpression sequence(u"^\x1b\\[[?0-9;]*[@-~]|^\x1b[=>]"_s);
    QString text = QString::fromUtf8(m_rest);
    if (text.endsWith(QChar::ReplacementCharacter))
        return; // The rest of a character is missing.
    m_rest.clear();
    while (!text.isEmpty()) {
        if (text.at(0) != u'\x1b') {
            put(text.at(0));
            text.remove(0, 1);
        } else if (const auto match = sequence.match(text); match.hasMatch()) {
            control(match.captured());
            text.remove(0, match.capturedLength());
        } else {
            m_rest = text.toUtf8();
            return;
        }
    }
}

QStringList TerminalScreen::rows() const
{
    QStringList rows;
    for (QString row : m_rows) {
        while (row.endsWith(u' '))
            row.chop(1);
        rows.append(row);
    }
    return rows;
}

QString TerminalScreen::beforeCursor() const
{
    return m_rows.at(m_row).leftJustified(m_column).left(m_column);
}

/// A character behind the last column goes to the next row, and not before it is written.
void TerminalScreen::put(QChar character)
{
    switch (character.unicode()) {
    case u'\r':
        m_column = 0;
        return;
    case u'\n':
        if (++m_row == m_rows.size())
            m_rows.append(QString());
        return;
    case u'\b':
        m_column = std::max(0, std::min(m_column, m_columns - 1) - 1);
        return;
    case u'\a':
        return;
    default:
        break;
    }
    if (m_column == m_columns) {
        put(u'\n');
        m_column = 0;
    }
    row()[m_column++] = character;
}

void TerminalScreen::control(const QString &sequence)
{
    const QString parameter = sequence.mid(2, sequence.size() - 3);
    const int count = std::max(1, parameter.toInt());
    switch (sequence.back().unicode()) {
    case u'A':
        m_row = std::max(0, m_row - count);
        break;
    case u'C':
        m_column = std::min(m_columns - 1, m_column + count);
        break;
    case u'D':
        m_column = std::max(0, m_column - count);
        break;
    case u'G':
        m_column = count - 1;
        break;
    case u'J':
        clearBehindCursor();
        while (m_rows.size() > m_row + 1)
            m_rows.removeLast();
        break;
    case u'K':
        clearBehindCursor();
        break;
    case u'P':
        row().remove(m_column, count);
        break;
    case u'@':
        row().insert(m_column, QString(count, u' '));
        break;
    case u'm': // A colour.
        break;
    default:
        m_problems.append(sequence);
    }
}

void TerminalScreen::clearBehindCursor()
{
    row().truncate(m_column);
}

/// Returns the row of the cursor, which is long enough for it.
QString &TerminalScreen::row()
{
    QString &row = m_rows[m_row];
    row = row.leftJustified(m_column + 1);
    return row;
}
