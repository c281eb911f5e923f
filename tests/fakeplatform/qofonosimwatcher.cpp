// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "qofonosimwatcher.h"

#include "fakeplatform.h"

QOfonoSimWatcher::QOfonoSimWatcher(QObject *parent)
    : QObject(parent)
{
    FakePlatform::instance().record(QStringLiteral("QOfonoSimWatcher()"));
}

QOfonoSimWatcher::~QOfonoSimWatcher()
{
    FakePlatform::instance().record(QStringLiteral("~QOfonoSimWatcher()"));
}

bool QOfonoSimWatcher::isValid() const
{
    return FakePlatform::instance().simsValid;
}

void QOfonoSimWatcher::setRequireSubscriberIdentity(bool required)
{
    FakePlatform::instance().record(
        QStringLiteral("setRequireSubscriberIdentity(%1)").arg(QVariant(required).toString()));
}

QList<QSharedPointer<QOfonoSimManager>> QOfonoSimWatcher::presentSimList() const
{
    QList<QSharedPointer<QOfonoSimManager>> sims;
    for (const QString &identity : FakePlatform::instance().sims)
        sims.append(QSharedPointer<QOfonoSimManager>::create(identity));
    return sims;
}

int QOfonoSimWatcher::presentSimCount() const
{
    return static_cast<int>(FakePlatform::instance().sims.size());
}
