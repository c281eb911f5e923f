// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QMap>
#include <QString>

/// A settings database to be: each key ("/desktop/...") with its value in GVariant's text form.
using Settings = QMap<QString, QString>;

/// Makes the user database of a home whose configuration folder is \a configHome, in place of the
/// one that it had. A key may have any text that dconf takes.
bool writeSettings(const QString &configHome, const Settings &settings);
