// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "qofonosimmanager.h"

#include <QList>
#include <QObject>
#include <QSharedPointer>

class QOfonoSimWatcher : public QObject
{
    Q_OBJECT

public:
    explicit QOfonoSimWatcher(QObject *parent = nullptr);
    ~QOfonoSimWatcher() override;

    bool isValid() const;
    void setRequireSubscriberIdentity(bool required);
    QList<QSharedPointer<QOfonoSimManager>> presentSimList() const;
    int presentSimCount() const;

Q_SIGNALS:
    void validChanged();
    void presentSimListChanged();
};
