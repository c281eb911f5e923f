// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "alarmfile.h"

#include <QList>
#include <QString>
#include <QVariantMap>

#include <optional>
#include <variant>

/// Why a request fails, as D-Bus tells it.
struct Refusal
{
    QString name; ///< The name of the error.
    QString text;
};

/// The alarms of one user, which are kept in a file. A change that cannot be kept is not made.
class UserAlarms
{
public:
    static constexpr int maxAlarms = 10'000; ///< Those that have yet to fire.
    static constexpr int maxAttributes = 64; ///< Of an alarm.
    static constexpr int maxAlarmSize = 64 * 1024; ///< Bytes of UTF-8 in an alarm's attributes.
    /// UTF-16 characters in the attributes of all alarms that have yet to fire, and eight more for
    /// each attribute. The due ones may have as many. An answer with all of them stays below 16
    /// MiB: a stock system bus disconnects whoever sends a message of more than 32 MiB.
    static constexpr int maxCharacters = 4 * 1024 * 1024;

    /// Loads the alarms from the file at \a path, and keeps changes there.
    explicit UserAlarms(const QString &path);

    const AlarmsByCookie &pending() const { return m_alarms.pending; }
    /// Returns the alarms that have fired, had the reminder flag, and were not dismissed.
    const AlarmsByCookie &due() const { return m_alarms.due; }
    /// Returns their cookies: first the one with the earliest time.
    QList<uint> dueInOrder() const;

    /// Returns when the next alarm is due, in seconds since 1970-01-01 00:00 UTC.
    std::optional<qint64> nextTicker() const;

    /// Adds an alarm and returns its cookie, which is never 0. Removes the pending alarm with the
    /// cookie \a replaced, if there is one.
    std::variant<uint, Refusal> add(const Alarm &alarm, uint replaced = 0);

    /// Removes a pending alarm. Returns whether there was one.
    std::variant<bool, Refusal> cancel(uint cookie);

    /// Returns the cookies of the pending alarms that have all attributes of \a criteria as text.
    QList<uint> find(const QVariantMap &criteria) const;

    /// Fires the alarms whose time has come. Those with the reminder flag are due then, the others
    /// are removed. Returns the cookies. An alarm fires even if that cannot be kept. If too many
    /// are due, those with the earliest times are dropped, with a warning in the log.
    QList<uint> fire(qint64 now);

    /// Fires an alarm ahead of its time. Returns false if no pending alarm has that cookie.
    bool fireEarly(uint cookie);

    /// Removes a due alarm. Returns whether there was one.
    std::variant<bool, Refusal> dismiss(uint cookie);

private:
    std::optional<Refusal> change(const Alarms &alarms);
    void makeDue(const QList<uint> &cookies);
    void dropEarliestDue();

    AlarmFile m_file;
    Alarms m_alarms;
};
