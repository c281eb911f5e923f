// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QString>

/// A SIM that is present, as it was when it was asked for.
class QOfonoSimManager
{
public:
    explicit QOfonoSimManager(QString subscriberIdentity);

    /// Its IMSI (3GPP TS 23.003, 2.2). Empty while the SIM has not been read, as when it is locked.
    QString subscriberIdentity() const { return m_subscriberIdentity; }

private:
    QString m_subscriberIdentity;
};
