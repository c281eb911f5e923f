// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "qmlerrors.h"

#include <QRegularExpression>
#include <QUrl>

namespace {

constexpr int mostItems = 100;

} // namespace

bool QmlErrors::read(const QString &line)
{
    static const QRegularExpression form(
        QStringLiteral("^(file:///.*?):(\\d+)(?::(\\d+))?: (.*)$"));
    const auto match = form.match(line);
    if (!match.hasMatch())
        return false;
    if (m_items.size() < mostItems) {
        m_items.append(QVariantMap{
            {QStringLiteral("file"), QUrl(match.captured(1)).toLocalFile()},
            {QStringLiteral("line"), match.captured(2).toInt()},
            {QStringLiteral("column"), match.captured(3).toInt()},
            {QStringLiteral("text"), match.captured(4).trimmed()},
        });
        Q_EMIT itemsChanged();
    }
    return true;
}

void QmlErrors::clear()
{
    if (m_items.isEmpty())
        return;
    m_items.clear();
    Q_EMIT itemsChanged();
}
