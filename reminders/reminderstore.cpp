// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "reminderstore.h"

#include "reminder.h"

#include <seasidecache.h>

#include <algorithm>

namespace {

bool lists(const ReminderRecord &record, const Reminder *reminder)
{
    return std::find(record.reminders.cbegin(), record.reminders.cend(), reminder)
        != record.reminders.cend();
}

/// Removes the entries of destroyed objects except for one, so that the record still counts as
/// used.
void dropDestroyed(QVector<QPointer<Reminder>> &reminders)
{
    const auto isGone = [](const QPointer<Reminder> &listed) { return listed.isNull(); };
    const auto first = std::find_if(reminders.begin(), reminders.end(), isGone);
    if (first != reminders.end())
        reminders.erase(std::remove_if(first + 1, reminders.end(), isGone), reminders.end());
}

template <typename Key, typename Value>
void removeFrom(QHash<Key, QVector<Value>> &index, const Key &key, Value value)
{
    const auto entry = index.find(key);
    if (entry == index.end())
        return;
    entry->removeOne(value);
    if (entry->isEmpty())
        index.erase(entry);
}

} // namespace

PhoneNumberKeys PhoneNumberKeys::of(const QString &number)
{
    const QString normalized = SeasideCache::normalizePhoneNumber(number, false);
    return {normalized, SeasideCache::minimizePhoneNumber(normalized, false)};
}

PhoneNumberKeys PhoneNumberKeys::ofAlarm(const QString &number)
{
    return {SeasideCache::normalizePhoneNumber(number, false),
            SeasideCache::minimizePhoneNumber(number, false)};
}

ReminderStore::Records::iterator ReminderStore::findExact(const QString &normalizedNumber)
{
    const auto age = m_byNormalizedNumber.constFind(normalizedNumber);
    return age == m_byNormalizedNumber.cend() ? m_records.end() : m_records.find(*age);
}

ReminderRecord *ReminderStore::find(const PhoneNumberKeys &keys)
{
    const auto exact = findExact(keys.normalized);
    if (exact != m_records.end())
        return &exact->second;
    const QVector<Age> loose = m_byMinimizedNumber.value(keys.minimized);
    return loose.isEmpty() ? nullptr : &m_records.at(loose.last());
}

ReminderRecord *ReminderStore::findOrAppend(const PhoneNumberKeys &keys)
{
    ReminderRecord *record = find(keys);
    return record ? record : &append(keys)->second;
}

ReminderRecord *ReminderStore::findByCookie(uint cookie)
{
    const QVector<Age> ages = m_byCookie.value(cookie);
    return ages.isEmpty() ? nullptr : &m_records.at(*std::min_element(ages.cbegin(), ages.cend()));
}

void ReminderStore::setCookie(ReminderRecord &record, uint cookie)
{
    removeFrom(m_byCookie, record.alarmCookie, record.age);
    record.alarmCookie = cookie;
    if (cookie != 0)
        m_byCookie[cookie].append(record.age);
}

ReminderRecord *ReminderStore::findByNotification(uint id)
{
    if (id == 0)
        return nullptr;
    const auto found = std::find_if(m_records.begin(), m_records.end(), [id](const auto &entry) {
        return entry.second.notificationId == id;
    });
    return found == m_records.end() ? nullptr : &found->second;
}

ReminderRecord *ReminderStore::findByReminder(const Reminder *reminder)
{
    const QVector<Age> ages = agesListing(reminder);
    return ages.isEmpty() ? nullptr : &m_records.at(ages.first());
}

/// Returns the ages in ascending order, each once. Removes those that are left from a destroyed
/// object at the same address.
QVector<ReminderStore::Age> ReminderStore::agesListing(const Reminder *reminder)
{
    const auto entry = m_byReminder.find(reminder);
    if (entry == m_byReminder.end())
        return {};
    QVector<Age> &listing = *entry;
    const auto isStale = [&](Age age) {
        const auto record = m_records.find(age);
        return record == m_records.end() || !lists(record->second, reminder);
    };
    listing.erase(std::remove_if(listing.begin(), listing.end(), isStale), listing.end());
    QVector<Age> ages = listing;
    std::sort(ages.begin(), ages.end());
    ages.erase(std::unique(ages.begin(), ages.end()), ages.end());
    return ages;
}

QVector<uint> ReminderStore::cookies() const
{
    QVector<uint> cookies;
    for (const auto &[age, record] : m_records) {
        if (record.alarmCookie != 0)
            cookies.append(record.alarmCookie);
    }
    return cookies;
}

std::optional<ReminderStore::Shown> ReminderStore::bind(Reminder *reminder,
                                                        const PhoneNumberKeys &keys)
{
    auto bound = findExact(keys.normalized);
    const QVector<Age> loose = m_byMinimizedNumber.value(keys.minimized);
    if (bound == m_records.end() && !loose.isEmpty())
        bound = m_records.find(loose.first());

    const QVector<Age> listing = agesListing(reminder);
    for (const Age age : listing) {
        const auto record = m_records.find(age);
        if (record != bound)
            unlist(record, reminder);
    }

    if (bound == m_records.end()) {
        list(append(keys), reminder);
        return {};
    }
    list(bound, reminder);
    return Shown{bound->second.hasReminder(), bound->second.when.toDateTime()};
}

void ReminderStore::unbindFromFirst(const Reminder *reminder)
{
    if (!m_records.empty() && lists(m_records.begin()->second, reminder))
        unlist(m_records.begin(), reminder);
}

void ReminderStore::forget(const Reminder *reminder)
{
    m_byReminder.remove(reminder);
    // In Qt 6 a hash never shrinks by itself.
    if (m_byReminder.isEmpty())
        m_byReminder.clear();
}

bool ReminderStore::isBound(const QString &normalizedNumber, const Reminder *reminder) const
{
    const auto age = m_byNormalizedNumber.constFind(normalizedNumber);
    return age != m_byNormalizedNumber.cend() && lists(m_records.at(*age), reminder);
}

ReminderStore::Records::iterator ReminderStore::append(const PhoneNumberKeys &keys)
{
    const Age age = ++m_lastAge;
    m_byNormalizedNumber.insert(keys.normalized, age);
    m_byMinimizedNumber[keys.minimized].append(age);
    return m_records.emplace(age, ReminderRecord{age, keys.normalized, keys.minimized, {}, {}})
        .first;
}

void ReminderStore::list(Records::iterator record, Reminder *reminder)
{
    auto &reminders = record->second.reminders;
    if (reminders.size() == reminders.capacity())
        dropDestroyed(reminders);
    reminders.append(reminder);
    m_byReminder[reminder].append(record->first);
}

/// Removes one entry of \a reminder, and then the record if nothing uses it any more.
void ReminderStore::unlist(Records::iterator record, const Reminder *reminder)
{
    auto &reminders = record->second.reminders;
    reminders.erase(std::find(reminders.begin(), reminders.end(), reminder));
    removeFrom(m_byReminder, reminder, record->first);
    if (record->second.isUnused())
        erase(record);
}

void ReminderStore::erase(const ReminderRecord *record)
{
    erase(m_records.find(record->age));
}

void ReminderStore::erase(Records::iterator record)
{
    m_byNormalizedNumber.remove(record->second.normalizedNumber);
    removeFrom(m_byMinimizedNumber, record->second.minimizedNumber, record->first);
    m_records.erase(record);
}
