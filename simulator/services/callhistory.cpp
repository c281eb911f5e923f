// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "callhistory.h"

#include "callhistorycontrol.h"

CallHistory::CallHistory(QObject *parent)
    : QObject(parent)
{
    new CallHistoryControl(*this);
}

bool CallHistory::start(QDBusConnection bus)
{
    return bus.registerObject(QStringLiteral("/org/maemo/m"), this,
                              QDBusConnection::ExportScriptableContents
                                  | QDBusConnection::ExportAdaptors)
        && bus.registerService(QStringLiteral("com.nokia.telephony.callhistory"));
}
