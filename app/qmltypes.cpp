// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "qmltypes.h"

#include "parleyuiadaptor.h"
#include "quickmessagesmodel.h"
#include "reminder.h"
#include "reminders.h"

#include <QtQml>

void registerQmlTypes()
{
    constexpr auto uri = "com.nimbo.parley";
    qmlRegisterType<QuickMessagesModel>(uri, 1, 0, "QuickMessagesModel");
    qmlRegisterType<Reminder>(uri, 1, 0, "Reminder");
    qmlRegisterType<Reminders>(uri, 1, 0, "RemindersBase");
    qmlRegisterType<ParleyUiAdaptor>(uri, 1, 0, "ParleyUiAdaptor");
}
