// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "phonewindow.h"

#include <QGuiApplication>
#include <QQuickWindow>

#include <utility>

PhoneWindow::PhoneWindow(QObject *parent)
    : QObject(parent)
{
    if (auto *application = qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        connect(application, &QGuiApplication::focusObjectChanged, this,
                &PhoneWindow::activeFocusItemChanged);
}

void PhoneWindow::setVisible(bool visible)
{
    if (visible != isVisible())
        setVisibility(visible ? QWindow::Windowed : QWindow::Hidden);
}

void PhoneWindow::setVisibility(QWindow::Visibility visibility)
{
    if (visibility == QWindow::AutomaticVisibility)
        visibility = QWindow::Windowed;
    const bool wasVisible = isVisible();
    if (std::exchange(m_visibility, visibility) == visibility)
        return;
    if (isVisible() != wasVisible) {
        Q_EMIT visibleChanged(isVisible());
        Q_EMIT activeChanged();
    }
    Q_EMIT visibilityChanged(visibility);
}

bool PhoneWindow::close()
{
    hide();
    return true;
}

QQuickItem *PhoneWindow::activeFocusItem() const
{
    return qobject_cast<QQuickItem *>(QGuiApplication::focusObject());
}

QQuickItem *PhoneWindow::contentItem() const
{
    const QWindowList windows = QGuiApplication::topLevelWindows();
    for (QWindow *window : windows) {
        if (auto *view = qobject_cast<QQuickWindow *>(window))
            return view->contentItem();
    }
    return nullptr;
}
