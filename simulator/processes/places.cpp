// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "places.h"

#include <QFileInfo>
#include <QSettings>

Places Places::find()
{
    const QFileInfo program(QFileInfo(QStringLiteral("/proc/self/exe")).canonicalFilePath());
    const QSettings built(program.path() + QLatin1String("/parley-handset.ini"),
                          QSettings::IniFormat);
    const auto place = [&built](const char *key, const char *installed) {
        return built.value(QLatin1String(key), QString::fromUtf8(installed)).toString();
    };
    return {place("ui", PARLEY_INSTALLED_BIN "/parley-ui"),
            place("time-daemon", PARLEY_INSTALLED_SBIN "/parley-time-daemon"),
            place("alarm", PARLEY_INSTALLED_BIN "/parley-alarm"),
            place("phone", PARLEY_INSTALLED_LIB "/parley-handset"),
            place("screens", PARLEY_INSTALLED_SCREENS "/main.qml"),
            place("translations", PARLEY_INSTALLED_TRANSLATIONS),
            place("modules", ""),
            place("kit", PARLEY_INSTALLED_LIB "/parley-handset/kit"),
            place("tour", PARLEY_INSTALLED_DATA "/parley-handset/tour")};
}
