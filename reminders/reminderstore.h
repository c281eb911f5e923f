// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "reminderrecord.h"

#include <QDateTime>

#include <optional>

/// The records, in the order in which their numbers became known. It has the rules by which a
/// number finds its record; it emits nothing and calls nobody.
///
/// A pointer to a record is valid until the next call that changes the store.
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

    /// Whether the record of exactly that number lists \a reminder.
    bool isBound(const QString &normalizedNumber, const Reminder *reminder) const;

    void erase(const ReminderRecord *record);

private:
    template <typename Matches>
    ReminderRecord *findFirst(Matches matches);

    QVector<ReminderRecord> m_records;
};
