// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "firstframe.h"

#include <QImage>
#include <QQuickView>
#include <QTimer>

void drawAhead(QQuickView &view)
{
    if (QQuickWindow::sceneGraphBackend() != QLatin1String("software"))
        return;
    QTimer::singleShot(0, &view, [&view] {
        if (!view.isVisible() && view.status() == QQuickView::Ready)
            view.grabWindow();
    });
}
