// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "reminderrecord.h"

#include <QDateTime>
#include <QHash>
#include <QVector>

#include <map>
#include <optional>

/// The records, in the order in which their numbers became known. It has the rules by which a
/// number finds its record; it emits nothing and calls nobody.
///
/// A pointer to a record is valid until the record is erased.
class ReminderStore
{
public:
    /// What a Reminder that has just been bound is to show.
    struct Shown
    {
        bool exists;
        QDateTime when;
    };

    /// The record with the exact number; failing that, the last one that matches loosely; or null.
    ReminderRecord *find(const PhoneNumberKeys &keys);
    /// The same, with a new record at the end where there is none.
    ReminderRecord *findOrAppend(const PhoneNumberKeys &keys);
    /// The first record with that alarm, or null. There is none for cookie 0.
    ReminderRecord *findByCookie(uint cookie);
    /// Gives \a record an alarm, or with 0 takes it away.
    void setCookie(ReminderRecord &record, uint cookie);
    /// The first record with that notification, or null. There is none for id 0.
    ReminderRecord *findByNotification(uint id);
    /// The first record that lists \a reminder, or null.
    ReminderRecord *findByReminder(const Reminder *reminder);

    /// The cookies of all alarms.
    QVector<uint> cookies() const;

    /// Lists \a reminder with the record of its number: the exact one, failing that the first that
    /// matches loosely, failing that a new one, of which there is nothing to show. It is taken out
    /// of the records of other numbers.
    std::optional<Shown> bind(Reminder *reminder, const PhoneNumberKeys &keys);

    /// Takes \a reminder out of the first record of the store, and of no other. This is meant.
    void unbindFromFirst(const Reminder *reminder);

    /// Drops the index of \a reminder, which is being destroyed. Records go on listing it, as null.
    void forget(const Reminder *reminder) { m_byReminder.remove(reminder); }

    /// Whether the record of exactly that number lists \a reminder.
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
    /// Of the records that list an object, one for each time that they do. It may be that they
    /// listed another, which is destroyed, at the same address.
    QHash<const Reminder *, QVector<Age>> m_byReminder;
    QHash<uint, QVector<Age>> m_byCookie;
    Age m_lastAge = 0;
};
