// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "qofonosimmanager.h"

#include <utility>

QOfonoSimManager::QOfonoSimManager(QString subscriberIdentity)
    : m_subscriberIdentity(std::move(subscriberIdentity))
{
}
