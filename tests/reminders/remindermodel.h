// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDateTime>
#include <QMap>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <vector>

/// The rules of the reminder store in their plainest form: what a store and its Reminder objects
/// have to do. A test compares this with what they do.
///
/// Objects are numbers from 0 in the order of their creation, and there is one store at a time.
/// Effects on others are recorded as lines of text. If a rule looks odd, the store has the same
/// rule.
class ReminderModel
{
public:
    struct Object
    {
        bool alive = true;
        bool hasStore = false;
        bool exists = false;
        QString phoneNumber;
        QDateTime when;
    };

    struct Text
    {
        QString applicationName;
        QString contactName;
        QString title;
        QString description;
    };

    struct Notification
    {
        uint id;
        uint cookie;
    };

    /// A call that may be answered.
    struct Request
    {
        enum Kind { Alarm, Query, Attributes, Notifications };

        Kind kind;
        int store; ///< The number of the store that made the call.
        QString normalized;
        QString minimized;
        QDateTime due;
        Text text;
    };

    /// One of the two services that are called.
    struct Service
    {
        /// The calls in their order. The caller clears them after comparing them.
        QStringList calls;
        std::vector<Request> open; ///< The requests without an answer, in their order.
    };

    using AttributesByCookie = QMap<uint, QMap<QString, QString>>;

    /// Make the keys of a number. The loose key of a number that is not normalized is often another
    /// one.
    static QString normalize(const QString &number);
    static QString minimize(const QString &number);

    /// Returns the form of a time in the line of an event.
    static QString timeText(const QDateTime &when);
    /// Records the event of \a signal with the state that its object shows at that time.
    static QString signalText(int object, const QString &signal, bool exists,
                              const QDateTime &when);

    int make();
    void destroy(int object);
    void setPhoneNumber(int object, const QString &number);
    void setStore(int object, bool store);
    void remove(int object);

    bool hasStore() const { return m_hasStore; }
    void startStore();
    void stopStore();
    /// If \a throws is true, the time daemon's client throws its exception.
    void create(const QString &number, const QDateTime &when, const Text &text, bool throws);
    void changeTriggers(const QMap<uint, qlonglong> &triggers);
    void closeNotification(uint id);

    /// These functions answer the open request \a index of a service, with the error \a failure if
    /// there is no value. A new notification gets the id \a freshId, unless that is 0.
    void answerAlarm(int index, std::optional<uint> cookie, uint freshId);
    void answerQuery(int index, const std::optional<QList<uint>> &cookies, const QString &failure);
    void answerAttributes(int index, const std::optional<AttributesByCookie> &alarms,
                          const QString &failure);
    void answerNotifications(int index,
                             const std::optional<std::vector<Notification>> &notifications,
                             const QString &failure);

    std::vector<Object> objects;
    Service timeDaemon;
    Service notificationService;
    QStringList events; ///< Signals and published notifications. The caller clears them after
                        ///< comparing them.
    QStringList warnings; ///< Warnings, which the caller clears as well.

private:
    struct Record
    {
        QString normalized;
        QString minimized;
        QDateTime when;
        std::vector<int> objects;
        uint cookie;
        uint notification;
    };

    void attach(int object);
    void detach(int object);
    Record *exactElseLastLoose(const QString &normalized, const QString &minimized);
    void forEachListed(const Record &record, const std::function<void(int)> &change);
    void publish(Record &record, const Request &request, uint freshId);
    void emitSignal(int object, const QString &signal);
    void close(uint id);
    void request(Service &service, const QString &call, Request request);
    static Request take(Service &service, int index);

    static bool isUnused(const Record &record);
    static bool unlist(Record &record, int object);

    bool m_hasStore = false;
    int m_store = 0;
    std::vector<Record> m_records;
};
