// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QString>

/// A SIM that is present, in its state at the time of QOfonoSimWatcher::presentSimList().
class QOfonoSimManager
{
public:
    explicit QOfonoSimManager(QString subscriberIdentity);

    /// The IMSI (3GPP TS 23.003, 2.2). Empty while the SIM cannot be read, for example because it
    /// is locked.
    QString subscriberIdentity() const { return m_subscriberIdentity; }

private:
    QString m_subscriberIdentity;
};
