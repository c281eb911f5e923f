// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "event.h"

#include <QDBusAbstractInterface>
#include <QDBusPendingCall>

namespace Maemo::Timed {

/// Sends an event as the list of its recorded calls.
class Interface : public QDBusAbstractInterface
{
    Q_OBJECT

public:
    explicit Interface(QObject *parent = nullptr);

    QDBusPendingCall add_event_async(const Event &event);
    QDBusPendingCall replace_event_async(const Event &event, uint32_t cookie);

Q_SIGNALS:
    void alarm_triggers_changed(Maemo::Timed::Event::Triggers triggers);
};

} // namespace Maemo::Timed
