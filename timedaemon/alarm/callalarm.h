// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "alarm.h"

#include <QString>
#include <QStringList>

class QDateTime;

/// A due alarm in words: what its user reads, and what its user can do about it.
class CallAlarm
{
public:
    /// The variable parts of a notification (Desktop Notifications Specification).
    struct Notification
    {
        QString summary;
        QString body; ///< Plain text, without markup.
        QStringList actions; ///< A key and a label in turn for each action.
    };

    /// The key of the action that calls the number.
    static QString callAction();
    /// The key of the action that makes the alarm due again later.
    static QString snoozeAction();

    /// The key of the action that some servers send for a click on the notification itself, also if
    /// it has no such action. The user has seen the alarm then.
    static QString defaultAction();

    explicit CallAlarm(Alarm alarm);

    /// Returns the number to call. It is empty if the alarm, which may be another application's,
    /// has none.
    QString number() const;

    /// Returns the notification for a user who sees it at \a now, in that user's language.
    Notification notification(const QDateTime &now) const;

    /// Returns the alarm that is due ten minutes after \a now.
    Alarm snoozed(const QDateTime &now) const;

private:
    QString name() const;
    QString dueTime(const QDateTime &now) const;

    Alarm m_alarm;
};
