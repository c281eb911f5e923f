// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "simfiltershelper.h"

#include <QDebug>

#include <utility>

void SimFiltersHelper::set(const QVariantMap &values)
{
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        if (metaObject()->indexOfProperty(it.key().toUtf8().constData()) < 0)
            qWarning().noquote() << "simFiltersHelper has no property" << it.key();
    }
    const bool canDial = values.value(QStringLiteral("anyActiveSimCanDial"), true).toBool();
    const bool canReceive = values.value(QStringLiteral("anyActiveSimCanReceive"), true).toBool();
    const bool ready = values.value(QStringLiteral("ready"), true).toBool();
    const int count = values.value(QStringLiteral("activeSimCount"), 0).toInt();
    if (std::exchange(m_count, count) != count)
        Q_EMIT activeSimCountChanged();
    if (std::exchange(m_canDial, canDial) != canDial)
        Q_EMIT anyActiveSimCanDialChanged();
    if (std::exchange(m_canReceive, canReceive) != canReceive)
        Q_EMIT anyActiveSimCanReceiveChanged();
    if (std::exchange(m_ready, ready) != ready)
        Q_EMIT readyChanged();
}
