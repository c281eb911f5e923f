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

/// The rules of the reminder store, as plainly as they can be written: what a store and its
/// Reminder objects have to do, for a test to compare with what they do.
///
/// Objects are numbers, counted from 0 as they are made, and there is one store at a time. What is
/// done to others is written down as lines of text. Where a rule looks odd, it is one of the store.
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
        int store; ///< The store that made it, counted.
        QString normalized;
        QString minimized;
        QDateTime due;
        Text text;
    };

    /// One of the two services that are called.
    struct Service
    {
        QStringList calls; ///< In order; cleared by whoever has compared them.
        std::vector<Request> open; ///< Not answered yet, in the order of the calls.
    };

    using AttributesByCookie = QMap<uint, QMap<QString, QString>>;

    /// The keys of a number. The loose key of a number that is not normalized is often another one.
    static QString normalize(const QString &number);
    static QString minimize(const QString &number);

    /// How an event's line tells a time.
    static QString timeText(const QDateTime &when);
    /// The event of \a signal, with what its object shows at that time.
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
    /// \a throws: the time daemon's client throws its exception.
    void create(const QString &number, const QDateTime &when, const Text &text, bool throws);
    void changeTriggers(const QMap<uint, qlonglong> &triggers);
    void closeNotification(uint id);

    /// The answers to the open request \a index of a service; nothing for the error \a failure.
    /// A new notification gets the id \a freshId, if that is not 0.
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
    QStringList events; ///< Signals and notifications published; cleared by whoever compared them.
    QStringList warnings; ///< The same.

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
