// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "mdeclarativecache.h"

#include <QGuiApplication>
#include <QQuickView>

QGuiApplication *MDeclarativeCache::qApplication(int &argc, char **argv)
{
    return new QGuiApplication(argc, argv);
}

QQuickView *MDeclarativeCache::qQuickView()
{
    return new QQuickView;
}
