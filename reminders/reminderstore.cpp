// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "reminderstore.h"

#include "reminder.h"

#include <seasidecache.h>

#include <algorithm>

namespace {

void list(ReminderRecord &record, Reminder *reminder)
{
    // Of those that are gone one goes on standing for all: a record that lists it is in use.
    if (record.reminders.size() == record.reminders.capacity()) {
        const auto isGone = [](const QPointer<Reminder> &listed) { return listed.isNull(); };
        const auto first = std::find_if(record.reminders.begin(), record.reminders.end(), isGone);
        if (first != record.reminders.end())
            record.reminders.erase(std::remove_if(first + 1, record.reminders.end(), isGone),
                                   record.reminders.end());
    }
    record.reminders.append(reminder);
}

/// Whether a record is the one of that number, exactly or loosely.
class Matcher
{
public:
    explicit Matcher(const PhoneNumberKeys &keys)
        : m_keys(keys)
        , m_normalizedHash(qHash(keys.normalized))
        , m_minimizedHash(qHash(keys.minimized))
    {
    }

    bool isExact(const ReminderRecord &record) const
    {
        return record.normalizedHash == m_normalizedHash
            && record.normalizedNumber == m_keys.normalized;
    }

    bool isLoose(const ReminderRecord &record) const
    {
        return record.minimizedHash == m_minimizedHash
            && record.minimizedNumber == m_keys.minimized;
    }

private:
    const PhoneNumberKeys &m_keys;
    const uint m_normalizedHash;
    const uint m_minimizedHash;
};

bool unlist(ReminderRecord &record, const Reminder *reminder)
{
    const auto listed = std::find(record.reminders.begin(), record.reminders.end(), reminder);
    if (listed == record.reminders.end())
        return false;
    record.reminders.erase(listed);
    return true;
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

template <typename Matches>
ReminderRecord *ReminderStore::findFirst(Matches matches)
{
    const auto record = std::find_if(m_records.begin(), m_records.end(), matches);
    return record == m_records.end() ? nullptr : &*record;
}

ReminderRecord *ReminderStore::find(const PhoneNumberKeys &keys)
{
    const Matcher matcher(keys);
    ReminderRecord *loose = nullptr;
    for (ReminderRecord &record : m_records) {
        if (matcher.isExact(record))
            return &record;
        if (matcher.isLoose(record))
            loose = &record;
    }
    return loose;
}

ReminderRecord *ReminderStore::findOrAppend(const PhoneNumberKeys &keys)
{
    if (ReminderRecord *record = find(keys))
        return record;
    m_records.append({keys.normalized, keys.minimized, {}, {}});
    return &m_records.last();
}

ReminderRecord *ReminderStore::findByCookie(uint cookie)
{
    return cookie == 0 ? nullptr : findFirst([cookie](const ReminderRecord &record) {
        return record.alarmCookie == cookie;
    });
}

ReminderRecord *ReminderStore::findByNotification(uint id)
{
    return id == 0
        ? nullptr
        : findFirst([id](const ReminderRecord &record) { return record.notificationId == id; });
}

ReminderRecord *ReminderStore::findByReminder(const Reminder *reminder)
{
    return findFirst([reminder](const ReminderRecord &record) {
        return std::find(record.reminders.cbegin(), record.reminders.cend(), reminder)
            != record.reminders.cend();
    });
}

QVector<uint> ReminderStore::cookies() const
{
    QVector<uint> cookies;
    for (const ReminderRecord &record : m_records) {
        if (record.alarmCookie != 0)
            cookies.append(record.alarmCookie);
    }
    return cookies;
}

std::optional<ReminderStore::Shown> ReminderStore::bind(Reminder *reminder,
                                                        const PhoneNumberKeys &keys)
{
    std::optional<Shown> shown;
    const auto bindTo = [&](ReminderRecord &record) {
        list(record, reminder);
        shown = Shown{record.hasReminder(), record.when};
    };

    const Matcher matcher(keys);
    const auto isExact = [&matcher](const ReminderRecord &record) {
        return matcher.isExact(record);
    };
    if (ReminderRecord *exact = findFirst(isExact))
        bindTo(*exact);

    for (int i = 0; i < m_records.size();) {
        ReminderRecord &record = m_records[i];
        if (!isExact(record)) {
            if (!shown && matcher.isLoose(record)) {
                bindTo(record);
            } else if (unlist(record, reminder) && record.isUnused()) {
                m_records.removeAt(i);
                continue;
            }
        }
        ++i;
    }

    if (!shown)
        m_records.append({keys.normalized, keys.minimized, {}, {QPointer<Reminder>(reminder)}});
    return shown;
}

void ReminderStore::unbindFromFirst(const Reminder *reminder)
{
    if (!m_records.isEmpty() && unlist(m_records.first(), reminder) && m_records.first().isUnused())
        m_records.removeFirst();
}

bool ReminderStore::isBound(const QString &normalizedNumber, const Reminder *reminder) const
{
    const uint hash = qHash(normalizedNumber);
    const auto isExact = [&](const ReminderRecord &record) {
        return record.normalizedHash == hash && record.normalizedNumber == normalizedNumber;
    };
    const auto record = std::find_if(m_records.cbegin(), m_records.cend(), isExact);
    return record != m_records.cend()
        && std::find(record->reminders.cbegin(), record->reminders.cend(), reminder)
        != record->reminders.cend();
}

void ReminderStore::erase(const ReminderRecord *record)
{
    m_records.removeAt(static_cast<int>(record - m_records.constData()));
}
