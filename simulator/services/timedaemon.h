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

/// The handset's time daemon, "com.nimbo.timed" on the system bus: keeps alarms, and fires each at
/// its time of the wall clock. They outlive the process. The scriptable members are its interface.
class TimeDaemon : public QObject, public QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.nimbo.timed")

public:
    /// With the alarms that were kept in \a stateFolder; new ones are kept there, too.
    explicit TimeDaemon(const QString &stateFolder, QObject *parent = nullptr);

    /// Takes its name and place on \a bus. Alarms past due fire as soon as the event loop
    /// runs.
    bool start(QDBusConnection bus);

    const AlarmsByCookie &alarms() const { return m_content.alarms; }

    /// Fires an alarm ahead of its time. False if there is none with that cookie.
    bool fire(uint cookie);

    /// Adds an alarm; its cookie. Cookies ascend, and none is given twice.
    Q_SCRIPTABLE uint add_event(const Alarm &alarm);
    /// As add_event(), in place of the alarm with \a cookie, which goes if it exists.
    Q_SCRIPTABLE uint replace_event(const Alarm &alarm, uint cookie);
    /// Whether there was such an alarm.
    Q_SCRIPTABLE bool cancel(uint cookie);
    /// The cookies, uint each, of the alarms that have each attribute in \a criteria, as that text.
    Q_SCRIPTABLE QVariantList query(const QVariantMap &criteria) const;
    /// The attributes of those that exist.
    Q_SCRIPTABLE AttributesByCookie get_attributes_by_cookies(const QList<uint> &cookies) const;

Q_SIGNALS:
    /// An alarm was added, cancelled or has fired: \a triggers are those still to fire.
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
