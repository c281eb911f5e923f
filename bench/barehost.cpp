// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// The least that a process can do that shows a QML file: what the call UI is measured against.

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
