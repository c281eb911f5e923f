// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// Does the least that a process needs to show a QML file. The call UI is compared with it.

#include <QGuiApplication>
#include <QQuickView>

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    QQuickView view;
    view.setSource(QUrl::fromLocalFile(QCoreApplication::arguments().constLast()));
    view.showFullScreen();
    return QGuiApplication::exec();
}
