// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "rootcontext.h"

#include "simfiltershelper.h"

#include <QQmlContext>
#include <QQuickView>

void fillRootContext(QQuickView &view, const SpecialSequences &specials, bool prestart)
{
    QQmlContext *context = view.rootContext();
    context->setContextProperty(QStringLiteral("__specials"), specials);
    context->setContextProperty(QStringLiteral("__window"), &view);
    context->setContextProperty(QStringLiteral("__prestart"), prestart);
    // The helper has no owner: it serves the screens until the process ends.
    context->setContextProperty(QStringLiteral("simFiltersHelper"), new SimFiltersHelper(nullptr));
}
