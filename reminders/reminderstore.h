// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "reminderrecord.h"

#include <QDateTime>
#include <QHash>
#include <QVector>

#include <map>
#include <optional>

/// The records, in the order in which their numbers became known. This class has the rules by which
/// a number finds its record. It emits no signal and calls no object.
///
/// A pointer to a record is valid until the record is erased.
class ReminderStore
{
public:
    /// What a Reminder that has just been bound has to show.
    struct Shown
    {
        bool exists;
        QDateTime when;
    };

    /// Returns the record with the exact number, or else the last record that matches loosely, or
    /// null.
    ReminderRecord *find(const PhoneNumberKeys &keys);
    /// Does the same, but appends a new record if there is none.
    ReminderRecord *findOrAppend(const PhoneNumberKeys &keys);
    /// Returns the first record with that alarm, or null. Cookie 0 has no record.
    ReminderRecord *findByCookie(uint cookie);
    /// Sets the alarm of \a record; 0 for none.
    void setCookie(ReminderRecord &record, uint cookie);
    /// Returns the first record with that notification, or null. Id 0 has no record.
    ReminderRecord *findByNotification(uint id);
    /// Returns the first record that lists \a reminder, or null.
    ReminderRecord *findByReminder(const Reminder *reminder);

    /// Returns the cookies of all alarms.
    QVector<uint> cookies() const;

    /// Lists \a reminder with the record of its number, and removes it from the records of other
    /// numbers. The record is the one with the exact number, or else the first that matches
    /// loosely, or else a new one. A new record has nothing to show.
    std::optional<Shown> bind(Reminder *reminder, const PhoneNumberKeys &keys);

    /// Removes \a reminder from the first record of the store, and from no other. This is meant.
    void unbindFromFirst(const Reminder *reminder);

    /// Removes the index of \a reminder, which is being destroyed. Records go on listing it as
    /// null.
    void forget(const Reminder *reminder);

    /// Returns whether the record with exactly that number lists \a reminder.
    bool isBound(const QString &normalizedNumber, const Reminder *reminder) const;

    void erase(const ReminderRecord *record);

private:
    using Age = ReminderRecord::Age;
    using Records = std::map<Age, ReminderRecord>;

    Records::iterator findExact(const QString &normalizedNumber);
    QVector<Age> agesListing(const Reminder *reminder);
    Records::iterator append(const PhoneNumberKeys &keys);
    void list(Records::iterator record, Reminder *reminder);
    void unlist(Records::iterator record, const Reminder *reminder);
    void erase(Records::iterator record);

    Records m_records;
    QHash<QString, Age> m_byNormalizedNumber;
    QHash<QString, QVector<Age>> m_byMinimizedNumber; ///< Ascending.
    /// The ages of the records that list an object, each as often as it lists the object. An entry
    /// may be left from a destroyed object that had the same address.
    QHash<const Reminder *, QVector<Age>> m_byReminder;
    QHash<uint, QVector<Age>> m_byCookie;
    Age m_lastAge = 0;
};
