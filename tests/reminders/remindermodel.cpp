// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "remindermodel.h"

#include "literals.h"

#include <algorithm>
#include <utility>

QString ReminderModel::normalize(const QString &number)
{
    return QString(number).remove(u'-');
}

QString ReminderModel::minimize(const QString &number)
{
    return number.right(2);
}

QString ReminderModel::timeText(const QDateTime &when)
{
    if (!when.isValid())
        return u"never"_s;
    const bool isUtc = when.timeSpec() == Qt::UTC;
    return QString::number(when.toMSecsSinceEpoch()) + (isUtc ? u" UTC"_s : u" local"_s);
}

QString ReminderModel::signalText(int object, const QString &signal, bool exists,
                                  const QDateTime &when)
{
    return u"r%1 %2: %3, %4"_s.arg(QString::number(object), signal,
                                   exists ? u"exists"_s : u"does not exist"_s, timeText(when));
}

int ReminderModel::make()
{
    objects.emplace_back();
    return static_cast<int>(objects.size()) - 1;
}

void ReminderModel::destroy(int object)
{
    if (objects[object].hasStore && !objects[object].phoneNumber.isEmpty())
        detach(object);
    objects[object].alive = false;
}

void ReminderModel::setPhoneNumber(int object, const QString &number)
{
    if (number == objects[object].phoneNumber)
        return;
    objects[object].phoneNumber = number;
    if (objects[object].hasStore) {
        if (number.isEmpty())
            detach(object);
        else
            attach(object);
    }
    emitSignal(object, u"phoneNumberChanged"_s);
}

void ReminderModel::setStore(int object, bool store)
{
    if (store == objects[object].hasStore)
        return;
    const bool hasNumber = !objects[object].phoneNumber.isEmpty();
    if (objects[object].hasStore && hasNumber)
        detach(object);
    objects[object].hasStore = store;
    if (store && hasNumber)
        attach(object);
}

void ReminderModel::remove(int object)
{
    if (!objects[object].hasStore || !objects[object].exists)
        return;
    for (Record &record : m_records) {
        if (std::count(record.objects.begin(), record.objects.end(), object) == 0)
            continue;
        if (record.notification != 0) {
            close(record.notification);
            record.notification = 0;
        }
        if (record.cookie != 0) {
            timeDaemon.calls << u"cancel(%1)"_s.arg(record.cookie);
            record.cookie = 0;
        }
        forEachListed(record, [this](int listed) {
            objects[listed].exists = false;
            emitSignal(listed, u"existsChanged"_s);
        });
        return;
    }
}

void ReminderModel::startStore()
{
    m_hasStore = true;
    ++m_store;
    request(timeDaemon, u"query(APPLICATION=nimbo_parley_ui|type=reminder)"_s,
            {Request::Query, m_store, {}, {}, {}, {}});
}

void ReminderModel::stopStore()
{
    m_hasStore = false;
    m_records.clear();
    for (Object &object : objects)
        object.hasStore = false;
}

void ReminderModel::create(const QString &number, const QDateTime &when, const Text &text,
                           bool throws)
{
    if (throws) {
        warnings << u"warning:  Timed triggered an exception"_s;
        return;
    }

    const QDateTime due = when.toUTC();
    const QString seconds =
        when.isValid() ? QString::number(due.toSecsSinceEpoch()) : u"4294967295"_s;
    const QString normalized = normalize(number);
    const QString minimized = minimize(normalized);
    const QString event = QStringList({u"reminder"_s, u"alarm"_s, u"ticker "_s + seconds,
                                       u"TITLE="_s + text.contactName,
                                       u"APPLICATION=nimbo_parley_ui"_s, u"type=reminder"_s,
                                       u"phoneNumber="_s + normalized, u"triggerTime="_s + seconds})
                              .join(u'|');

    const Record *record = exactElseLastLoose(normalized, minimized);
    const uint cookie = record ? record->cookie : 0;
    const QString call = cookie != 0 ? u"replace_event(%1, %2)"_s.arg(event).arg(cookie)
                                     : u"add_event(%1)"_s.arg(event);
    request(timeDaemon, call, {Request::Alarm, m_store, normalized, minimized, due, text});
}

void ReminderModel::changeTriggers(const QMap<uint, qlonglong> &triggers)
{
    for (std::size_t i = 0; i < m_records.size();) {
        Record &record = m_records[i];
        if (record.cookie == 0 || triggers.contains(record.cookie)) {
            ++i;
            continue;
        }
        record.cookie = 0;
        if (record.notification != 0) {
            close(record.notification);
            record.notification = 0;
        }
        if (record.objects.empty()) {
            m_records.erase(m_records.begin() + static_cast<std::ptrdiff_t>(i));
            continue;
        }
        forEachListed(record, [this](int listed) {
            objects[listed].exists = false;
            emitSignal(listed, u"existsChanged"_s);
        });
        ++i;
    }
}

void ReminderModel::closeNotification(uint id)
{
    for (Record &record : m_records) {
        if (record.notification == id) {
            record.notification = 0;
            return;
        }
    }
}

void ReminderModel::answerAlarm(int index, std::optional<uint> cookie, uint freshId)
{
    const Request answered = take(timeDaemon, index);
    if (!m_hasStore || answered.store != m_store)
        return;
    if (!cookie || *cookie == 0) {
        warnings << u"warning: Failed to create alarm"_s;
        return;
    }
    Record *record = exactElseLastLoose(answered.normalized, answered.minimized);
    if (!record) {
        m_records.push_back({answered.normalized, answered.minimized, {}, {}, 0, 0});
        record = &m_records.back();
    }
    record->cookie = *cookie;
    record->when = answered.due;
    publish(*record, answered, freshId);
}

void ReminderModel::publish(Record &record, const Request &request, uint freshId)
{
    events << u"setAppName(%1)"_s.arg(request.text.applicationName)
           << u"setSummary(%1)"_s.arg(request.text.title)
           << u"setBody(%1)"_s.arg(request.text.description)
           << u"setReplacesId(%1)"_s.arg(record.notification)
           << u"setHintValue(x-nimbo-alarm-cookie, uint %1)"_s.arg(record.cookie) << u"publish()"_s;
    if (record.notification == 0)
        record.notification = freshId;
    forEachListed(record, [this, &request](int listed) {
        objects[listed].exists = true;
        objects[listed].when = request.due;
        emitSignal(listed, u"whenChanged"_s);
        emitSignal(listed, u"existsChanged"_s);
    });
}

void ReminderModel::answerQuery(int index, const std::optional<QList<uint>> &cookies,
                                const QString &failure)
{
    const Request answered = take(timeDaemon, index);
    if (!m_hasStore || answered.store != m_store)
        return;
    if (!cookies) {
        warnings << u"warning: Unable to query reminder alarms "_s + failure;
        return;
    }
    QStringList list;
    for (const uint cookie : *cookies)
        list << QString::number(cookie);
    request(timeDaemon, u"get_attributes_by_cookies(%1)"_s.arg(list.join(u'|')),
            {Request::Attributes, m_store, {}, {}, {}, {}});
}

void ReminderModel::answerAttributes(int index, const std::optional<AttributesByCookie> &alarms,
                                     const QString &failure)
{
    const Request answered = take(timeDaemon, index);
    if (!m_hasStore || answered.store != m_store)
        return;
    if (!alarms) {
        warnings << u"warning: Unable to query reminder alarms "_s + failure;
        return;
    }
    for (auto alarm = alarms->begin(); alarm != alarms->end(); ++alarm) {
        const QString raw = alarm->value(u"phoneNumber"_s);
        if (raw.isEmpty())
            continue;
        // Both keys are made from the text itself.
        const QString normalized = normalize(raw);
        const QString minimized = minimize(raw);
        const QDateTime time =
            QDateTime::fromSecsSinceEpoch(alarm->value(u"triggerTime"_s).toUInt());
        if (Record *record = exactElseLastLoose(normalized, minimized)) {
            record->cookie = alarm.key();
            record->when = time;
        } else {
            m_records.push_back({normalized, minimized, time, {}, alarm.key(), 0});
        }
    }
    request(notificationService, u"GetNotificationsByCategory(x-nimbo-call-reminder)"_s,
            {Request::Notifications, m_store, {}, {}, {}, {}});
}

void ReminderModel::answerNotifications(
    int index, const std::optional<std::vector<Notification>> &notifications,
    const QString &failure)
{
    const Request answered = take(notificationService, index);
    if (!m_hasStore || answered.store != m_store)
        return;
    if (!notifications) {
        warnings << u"warning: Unable to query reminder notifications "_s + failure;
        return;
    }
    for (const Notification &notification : *notifications) {
        const auto record =
            std::find_if(m_records.begin(), m_records.end(), [&notification](const Record &each) {
                return each.cookie == notification.cookie;
            });
        if (notification.cookie == 0 || record == m_records.end()) {
            close(notification.id);
            continue;
        }
        record->notification = notification.id;
        forEachListed(*record, [this, &record](int listed) {
            objects[listed].exists = true;
            objects[listed].when = record->when;
            emitSignal(listed, u"whenChanged"_s);
            emitSignal(listed, u"existsChanged"_s);
        });
    }
}

void ReminderModel::attach(int object)
{
    const bool existed = objects[object].exists;
    const QDateTime whenBefore = objects[object].when;
    bool found = false;
    const QString normalized = normalize(objects[object].phoneNumber);
    const QString minimized = minimize(normalized);

    const auto bindTo = [&](Record &record) {
        record.objects.push_back(object);
        objects[object].when = record.when;
        objects[object].exists = record.cookie != 0 && record.notification != 0;
        if (objects[object].when != whenBefore)
            emitSignal(object, u"whenChanged"_s);
        if (objects[object].exists != existed)
            emitSignal(object, u"existsChanged"_s);
        found = true;
    };

    for (Record &record : m_records) {
        if (record.normalized == normalized) {
            bindTo(record);
            break;
        }
    }

    for (std::size_t i = 0; i < m_records.size();) {
        Record &record = m_records[i];
        const bool isExact = record.normalized == normalized;
        if (!isExact && !found && record.minimized == minimized) {
            bindTo(record);
        } else if (!isExact && unlist(record, object) && isUnused(record)) {
            m_records.erase(m_records.begin() + static_cast<std::ptrdiff_t>(i));
            continue;
        }
        ++i;
    }

    if (!found) {
        m_records.push_back({normalized, minimized, {}, {object}, 0, 0});
        if (objects[object].exists) {
            objects[object].exists = false;
            emitSignal(object, u"existsChanged"_s);
        }
    }
}

void ReminderModel::detach(int object)
{
    // This affects the first record and no other.
    if (!m_records.empty() && unlist(m_records.front(), object) && isUnused(m_records.front()))
        m_records.erase(m_records.begin());
    if (objects[object].exists) {
        objects[object].exists = false;
        emitSignal(object, u"existsChanged"_s);
    }
}

ReminderModel::Record *ReminderModel::exactElseLastLoose(const QString &normalized,
                                                         const QString &minimized)
{
    Record *loose = nullptr;
    for (Record &record : m_records) {
        if (record.normalized == normalized)
            return &record;
        if (record.minimized == minimized)
            loose = &record;
    }
    return loose;
}

/// An object that is listed twice is visited twice. A destroyed object stays listed and is not
/// visited.
void ReminderModel::forEachListed(const Record &record, const std::function<void(int)> &change)
{
    for (const int object : record.objects) {
        if (objects[object].alive)
            change(object);
    }
}

void ReminderModel::emitSignal(int object, const QString &signal)
{
    events << signalText(object, signal, objects[object].exists, objects[object].when);
}

void ReminderModel::close(uint id)
{
    notificationService.calls << u"CloseNotification(%1)"_s.arg(id);
}

void ReminderModel::request(Service &service, const QString &call, Request request)
{
    service.calls << call;
    service.open.push_back(std::move(request));
}

ReminderModel::Request ReminderModel::take(Service &service, int index)
{
    Request request = service.open[index];
    service.open.erase(service.open.begin() + index);
    return request;
}

bool ReminderModel::isUnused(const Record &record)
{
    return record.objects.empty() && record.cookie == 0 && record.notification == 0;
}

bool ReminderModel::unlist(Record &record, int object)
{
    const auto found = std::find(record.objects.begin(), record.objects.end(), object);
    if (found == record.objects.end())
        return false;
    record.objects.erase(found);
    return true;
}
