// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "catalogues.h"

#include <QCoreApplication>
#include <QLocale>

Catalogues::Catalogues(const QString &folder)
{
    // The delimiters are empty, not null: Qt then does not shorten the name in search of a file.
    if (m_engineeringEnglish.load(QStringLiteral("parley_eng_en"), folder, QStringLiteral("")))
        QCoreApplication::installTranslator(&m_engineeringEnglish);
    // Qt asks the translator that was installed last first.
    if (m_userLanguage.load(QLocale(), QStringLiteral("parley"), QStringLiteral("-"), folder))
        QCoreApplication::installTranslator(&m_userLanguage);
}
