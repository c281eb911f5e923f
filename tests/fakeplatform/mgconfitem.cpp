// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "mgconfitem.h"

#include "fakeplatform.h"

MGConfItem::MGConfItem(const QString &key)
    : m_key(key)
{
    FakePlatform::instance().record(QStringLiteral("MGConfItem(%1)").arg(key));
}

QVariant MGConfItem::value() const
{
    return FakePlatform::instance().settings.value(m_key);
}
