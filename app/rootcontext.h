// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "specialsequences.h"

class QQuickView;

/// Sets the properties of the root context in which the QML is evaluated: "__specials" (a copy of
/// \a specials), "__window" (\a view itself), "__prestart" and "simFiltersHelper" (a
/// SimFiltersHelper that is created here and lives as long as the process). They never change.
void fillRootContext(QQuickView &view, const SpecialSequences &specials, bool prestart);
