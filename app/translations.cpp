// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "translations.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>

namespace {

QString catalogueFolder()
{
    return QStringLiteral("/usr/share/translations");
}

} // namespace

void installEngineeringEnglish(QTranslator &translator)
{
    // The delimiters are empty, not null: Qt then does not shorten the name in search of a file.
    static_cast<void>(
        translator.load(QStringLiteral("parley_eng_en"), catalogueFolder(), QStringLiteral("")));
    QCoreApplication::installTranslator(&translator);
}

void installUserLanguage(QTranslator &translator)
{
    static_cast<void>(translator.load(QLocale(), QStringLiteral("parley"), QStringLiteral("-"),
                                      catalogueFolder()));
    QCoreApplication::installTranslator(&translator);
}
