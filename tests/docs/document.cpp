// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "document.h"

#include "literals.h"

#include <QFile>
#include <QRegularExpression>

namespace {

const QString fence = u"```"_s;

QString anchorOf(const QString &heading)
{
    QString anchor = heading.toLower();
    anchor.remove(QRegularExpression(u"[^\\w -]"_s));
    return anchor.replace(u' ', u'-');
}

} // namespace

Document::Document(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    for (int i = 0; i < lines.size(); ++i) {
        const QString &line = lines.at(i);
        if (line.startsWith(fence)) {
            if (!m_inBlock)
                m_blocks.append({line.mid(fence.size()), {}, i + 1});
            m_inBlock = !m_inBlock;
        } else if (m_inBlock) {
            m_blocks.last().lines.append(line);
        } else {
            readText(line);
        }
    }
    if (m_inBlock)
        m_blocks.last().kind = u"no end"_s;
}

void Document::readText(const QString &line)
{
    static const QRegularExpression link(u"\\]\\(([^)]*)\\)"_s);
    for (auto it = link.globalMatch(line); it.hasNext();)
        m_links.append(it.next().captured(1));

    static const QRegularExpression headingLine(u"^#+ (.*)$"_s);
    const QRegularExpressionMatch heading = headingLine.match(line);
    if (heading.hasMatch()) {
        m_section = heading.captured(1);
        m_anchors.append(anchorOf(m_section));
    }
    if (line.startsWith(u'|'))
        readRow(line);
    else
        m_column.clear();
}

void Document::readRow(const QString &line)
{
    QStringList cells = line.mid(1, line.lastIndexOf(u'|') - 1).split(u'|');
    for (QString &cell : cells)
        cell = cell.trimmed();
    if (m_column.isEmpty())
        m_column = cells.constFirst();
    else if (!cells.constFirst().startsWith(u"---"_s))
        m_rows.append({m_section, m_column, cells});
}
