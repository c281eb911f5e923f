// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "specialsequences.h"

class QQuickView;

/// Sets the properties that the QML finds in its root context: "__specials" (\a specials, copied),
/// "__window" (\a view itself), "__prestart" and "simFiltersHelper" (a SimFiltersHelper that is
/// made here and lives as long as the process). They are never set again.
void fillRootContext(QQuickView &view, const SpecialSequences &specials, bool prestart);
