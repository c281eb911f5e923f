// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "phonedisplay.h"

#include <QGuiApplication>
#include <QPlatformSurfaceEvent>
#include <QTimer>
#include <QWindow>

#include <cstdio>

namespace {

constexpr QSize phoneSize(360, 640);
/// Qt's platforms heed this while they show a window.
const char *const showsWithoutFocus = "_q_showWithoutActivating";

void tell(const char *what)
{
    std::fprintf(stderr, "phone: %s\n", what);
}

bool isOfThePhone(const QWindow *window)
{
    return window->isTopLevel() && window->type() == Qt::Window && !window->transientParent();
}

} // namespace

PhoneDisplay::PhoneDisplay(QObject *parent)
    : QObject(parent)
{
    qApp->installEventFilter(this);
    // The screens are loaded before the event loop runs.
    QTimer::singleShot(0, this, &PhoneDisplay::screensLoaded);
}

/// A window is fitted when it has been created, which is before it is shown.
bool PhoneDisplay::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::PlatformSurface
        && static_cast<QPlatformSurfaceEvent *>(event)->surfaceEventType()
            == QPlatformSurfaceEvent::SurfaceCreated) {
        auto *window = qobject_cast<QWindow *>(object);
        if (window && isOfThePhone(window))
            fit(window);
    }
    return false;
}

void PhoneDisplay::screensLoaded()
{
    tell("loaded");
    const bool showsThem = qEnvironmentVariableIsSet("PARLEY_PHONE_SHOWN");
    const QWindowList windows = QGuiApplication::topLevelWindows();
    for (QWindow *window : windows) {
        if (!isOfThePhone(window))
            continue;
        const auto report = [](bool isVisible) { tell(isVisible ? "shown" : "hidden"); };
        connect(window, &QWindow::visibleChanged, this, report);
        if (window->isVisible()) {
            report(true);
        } else if (showsThem) {
            window->setProperty(showsWithoutFocus, true); // The user is typing elsewhere.
            window->show();
            window->setProperty(showsWithoutFocus, QVariant());
        }
    }
}

void PhoneDisplay::fit(QWindow *window)
{
    connect(window, &QWindow::windowStateChanged, this,
            [this, window](Qt::WindowState state) { keepSmall(window, state); });
    window->setFramePosition({0, 0});
    window->resize(phoneSize);
    keepSmall(window, window->windowState());
}

void PhoneDisplay::keepSmall(QWindow *window, Qt::WindowState state)
{
    if (state != Qt::WindowFullScreen && state != Qt::WindowMaximized)
        return;
    window->setWindowState(Qt::WindowNoState);
    window->resize(phoneSize);
}
