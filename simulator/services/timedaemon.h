// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "alarmfile.h"
#include "wallclocktimer.h"

#include <timed/event.h>

#include <QDBusConnection>
#include <QDBusContext>
#include <QList>
#include <QObject>
#include <QVariantMap>

/// The time daemon of the handset, "com.nimbo.timed" on the system bus. It keeps alarms, also after
/// its process ends, and fires them by the wall clock. The scriptable members are its interface.
class TimeDaemon : public QObject, public QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.nimbo.timed")

public:
    /// Loads the alarms from \a stateFolder, and keeps changes there.
    explicit TimeDaemon(const QString &stateFolder, QObject *parent = nullptr);

    /// Registers its object and its name on \a bus. Alarms that are past due fire when the event
    /// loop runs.
    bool start(QDBusConnection bus);

    const AlarmsByCookie &alarms() const { return m_content.alarms; }

    /// Fires an alarm ahead of its time. Returns false if no alarm has that cookie.
    bool fire(uint cookie);

    /// Adds an alarm and returns its cookie. Cookies ascend, and none is used twice.
    Q_SCRIPTABLE uint add_event(const Alarm &alarm);
    /// Adds an alarm as add_event() does, and removes the one with \a cookie if it exists.
    Q_SCRIPTABLE uint replace_event(const Alarm &alarm, uint cookie);
    /// Removes an alarm. Returns whether there was one with that cookie.
    Q_SCRIPTABLE bool cancel(uint cookie);
    /// Returns the cookies (uint) of the alarms that have all attributes of \a criteria as text.
    Q_SCRIPTABLE QVariantList query(const QVariantMap &criteria) const;
    /// Returns the attributes of the alarms that exist.
    Q_SCRIPTABLE AttributesByCookie get_attributes_by_cookies(const QList<uint> &cookies) const;

Q_SIGNALS:
    /// An alarm was added, cancelled or has fired. \a triggers are the times of those that remain.
    Q_SCRIPTABLE void alarm_triggers_changed(const Maemo::Timed::Event::Triggers &triggers);

    void added(uint cookie);
    void cancelled(uint cookie);
    void fired(uint cookie);

private:
    void alarmsChanged();
    Maemo::Timed::Event::Triggers triggers() const;
    void fireDue();
    void scheduleNext();

    const AlarmFile m_file;
    AlarmFile::Content m_content;
    WallClockTimer m_timer;
};
