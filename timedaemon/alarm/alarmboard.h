// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "callui.h"
#include "duealarms.h"
#include "notificationserver.h"
#include "shownalarm.h"

#include <QDBusConnection>
#include <QObject>
#include <QSet>

#include <map>
#include <memory>

/// Shows the due alarms of this user as notifications, a limited number at a time. Those that have
/// been due for the longest time come first, and the others wait.
class AlarmBoard : public QObject
{
    Q_OBJECT

public:
    /// How many alarms are shown at a time.
    static constexpr int mostShown = 20;

    AlarmBoard(const QDBusConnection &sessionBus, const QDBusConnection &systemBus,
               const ShownAlarm::Delays &delays = {}, QObject *parent = nullptr);
    /// Closes the notifications.
    ~AlarmBoard() override;

    /// Shows what is due from now on.
    void start();

private:
    void setDue(const QList<uint> &cookies);
    void fillUp();
    int freePlaces() const;
    void read(uint cookie);
    void handleRead(uint cookie, DueAlarms::Outcome outcome, const Alarm &alarm);
    void add(uint cookie, const Alarm &alarm);
    void remove(uint cookie);

    const ShownAlarm::Delays m_delays;
    DueAlarms m_daemon;
    NotificationServer m_server;
    CallUi m_callUi;
    QList<uint> m_due; ///< The last list, without what was dismissed since.
    QSet<uint> m_reading; ///< The daemon was asked for these.
    QSet<uint> m_unreadable; ///< These are passed over until the next list.
    int m_lists = 0; ///< How many lists there were.
    bool m_isSilent = false; ///< The daemon has not answered, and is not asked until the next list.
    std::map<uint, std::unique_ptr<ShownAlarm>> m_shown;
};
