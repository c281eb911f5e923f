// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

class MGConfItem;

/// Maps each special sequence ("*#06#") to what dialling it does: a QJsonObject with the string
/// members "service" and "url", each of them only if it is set.
using SpecialSequences = QMap<QString, QVariant>;

/// Reads the sequences whose names \a supported lists, each from its keys below
/// "/desktop/nimbo/specials/NAME". If two names have the same sequence, the later one wins. A name
/// without a sequence is listed under the empty sequence.
SpecialSequences readSpecialSequences(const MGConfItem &supported);
