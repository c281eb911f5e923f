// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "seasidecache.h"

#include "fakeplatform.h"

QString SeasideCache::normalizePhoneNumber(const QString &number, bool validate)
{
    FakePlatform &platform = FakePlatform::instance();
    platform.record(QStringLiteral("normalize(%1, %2)").arg(number).arg(validate));
    return platform.normalize(number);
}

QString SeasideCache::minimizePhoneNumber(const QString &number, bool validate)
{
    FakePlatform &platform = FakePlatform::instance();
    platform.record(QStringLiteral("minimize(%1, %2)").arg(number).arg(validate));
    return platform.minimize(number);
}
