// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QString>

#include <utility>

class QOfonoSimManager
{
public:
    explicit QOfonoSimManager(QString subscriberIdentity)
        : m_subscriberIdentity(std::move(subscriberIdentity))
    {
    }

    QString subscriberIdentity() const { return m_subscriberIdentity; }

private:
    QString m_subscriberIdentity;
};
