// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

class MGConfItem;

/// What dialling a special sequence does: the sequence ("*#06#") with a QJsonObject that has the
/// string members "service" and "url", each only where it is set.
using SpecialSequences = QMap<QString, QVariant>;

/// Reads the sequences whose names \a supported lists, each from its keys below
/// "/desktop/nimbo/specials/NAME". Of two names with one sequence the later wins; a name without a
/// sequence stands under the empty one.
SpecialSequences readSpecialSequences(const MGConfItem &supported);
