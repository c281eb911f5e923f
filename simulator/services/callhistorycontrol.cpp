// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "callhistorycontrol.h"

#include "callhistory.h"

CallHistoryControl::CallHistoryControl(CallHistory &history)
    : QDBusAbstractAdaptor(&history)
{
    connect(&history, &CallHistory::launched, this, &CallHistoryControl::Launched);
}
