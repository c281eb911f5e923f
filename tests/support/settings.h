// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QMap>
#include <QString>

/// The content of a settings database: maps each key ("/desktop/...") to its value in GVariant's
/// text form.
using Settings = QMap<QString, QString>;

/// Creates or replaces the user database of the home with the configuration folder \a configHome. A
/// key may have any text that dconf accepts.
bool writeSettings(const QString &configHome, const Settings &settings);
