// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "bususers.h"
#include "pacedsignals.h"
#include "useralarms.h"
#include "wallclock.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>
#include <QString>
#include <QVariantList>

#include <map>
#include <variant>

/// The time daemon, "com.nimbo.timed" at "/com/nimbo/timed" on the system bus. It keeps the alarms
/// of each user, and fires them by the wall clock. The scriptable members are its interface: each
/// caller sees and changes the alarms of its own user only.
class TimeDaemon : public QObject, public QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.nimbo.timed")

public:
    /// A cookie list longer than that is refused: no user has more alarms.
    static constexpr int maxCookies = UserAlarms::maxAlarms;

    /// Keeps the alarms of each user in a file in \a stateFolder. \a clock must outlive the daemon.
    TimeDaemon(QString stateFolder, WallClock &clock, const QDBusConnection &bus,
               QObject *parent = nullptr);

    /// Registers the name and the object on the bus and loads the alarms. Those that are past due
    /// fire when the event loop runs. Returns false without loading them if the name is taken.
    bool start();

    /// Adds an alarm and returns its cookie. No cookie is used twice for a user's alarms, until
    /// there are no others.
    Q_SCRIPTABLE uint add_event(const Alarm &alarm);
    /// Adds an alarm as add_event() does, and removes the one with \a cookie if it exists.
    Q_SCRIPTABLE uint replace_event(const Alarm &alarm, uint cookie);
    /// Removes an alarm. Returns whether there was one with that cookie.
    Q_SCRIPTABLE bool cancel(uint cookie);
    /// Returns the cookies (uint) of the alarms that have all attributes of \a criteria as text.
    Q_SCRIPTABLE QVariantList query(const QVariantMap &criteria);
    /// Returns the attributes of the alarms that exist.
    Q_SCRIPTABLE AttributesByCookie get_attributes_by_cookies(const QList<uint> &cookies);

    /// Returns the user who has made the current call. Replies with an error if it is unknown.
    std::optional<uint> caller();
    UserAlarms &alarmsOf(uint user);

    /// Fires an alarm of \a user ahead of its time. Returns false if there is none.
    bool fireEarly(uint user, uint cookie);
    /// Removes a due alarm of \a user, the caller. Returns whether there was one. Replies with an
    /// error if that cannot be kept.
    bool dismiss(uint user, uint cookie);

    /// Sends a signal to each connection of \a user, \a times times. A connection that does not
    /// read gets fewer.
    void tell(uint user, const PacedSignals::Signal &signal, qsizetype times = 1);

Q_SIGNALS:
    /// An alarm was added, cancelled or has fired. \a triggers are the times of those that remain.
    /// It stands here for the introspection alone: it is not emitted but sent with tell(), because
    /// no other user may hear it.
    Q_SCRIPTABLE void alarm_triggers_changed(const TickersByCookie &triggers);

    void added(uint user, uint cookie);
    void cancelled(uint user, uint cookie);
    void fired(uint user, uint cookie);
    /// The list of the user's due alarms has changed.
    void dueChanged(uint user);

private Q_SLOTS:
    void loseBus();

private:
    /// Returns the value of \a result. Replies with its refusal instead, if it is one.
    template <typename Value>
    Value answer(const std::variant<Value, Refusal> &result)
    {
        if (const auto *refusal = std::get_if<Refusal>(&result)) {
            sendErrorReply(refusal->name, refusal->text);
            return Value();
        }
        return std::get<Value>(result);
    }

    void load();
    void tellTriggersLater(uint user, qsizetype times = 1);
    void fireDue();
    void scheduleNext();

    const QString m_stateFolder;
    WallClock &m_clock;
    QDBusConnection m_bus;
    BusUsers m_busUsers;
    std::map<uint, UserAlarms> m_alarms; ///< By user.
    std::map<uint, PacedSignals> m_signals; ///< By user, so that no user keeps another behind.
};
