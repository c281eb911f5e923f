// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "settings.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

bool writeSettings(const QString &configHome, const Settings &settings)
{
    // dconf compiles a folder of key files. A section is a path, which may have all characters but
    // ']'.
    const QTemporaryDir keyFiles;
    QFile file(keyFiles.filePath(QStringLiteral("keys")));
    if (!file.open(QIODevice::WriteOnly))
        return false;
    for (auto it = settings.cbegin(); it != settings.cend(); ++it) {
        const auto slash = it.key().lastIndexOf(QLatin1Char('/'));
        const QString section = it.key().mid(1, slash - 1);
        file.write(QStringLiteral("[%1]\n%2=%3\n")
                       .arg(section, it.key().mid(slash + 1), it.value())
                       .toUtf8());
    }
    file.close();

    QDir().mkpath(configHome + QLatin1String("/dconf"));
    return QProcess::execute(QStringLiteral("dconf"),
                             {QStringLiteral("compile"), configHome + QLatin1String("/dconf/user"),
                              keyFiles.path()})
        == 0;
}
