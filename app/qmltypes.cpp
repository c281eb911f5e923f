// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "qmltypes.h"

#include "parleyuiadaptor.h"

#include <QtQml>

void registerQmlTypes()
{
    constexpr auto uri = "com.nimbo.parley";
    qmlRegisterType<ParleyUiAdaptor>(uri, 1, 0, "ParleyUiAdaptor");
}
