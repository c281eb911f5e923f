// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "fakeplatform.h"
#include "literals.h"
#include "messagelog.h"
#include "privatebus.h"
#include "reminder.h"
#include "remindermodel.h"
#include "reminders.h"
#include "scriptedservice.h"

#include <notification.h>

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <array>
#include <memory>
#include <random>
#include <utility>
#include <vector>

namespace {

/// The numbers are so few that exact and loose matches are frequent. Some have another loose key
/// when they are normalized first, and some normalize to nothing.
const std::array<QString, 20> numbers = {
    u""_s,     u"12"_s,   u"1-2"_s,  u"-12"_s, u"112"_s, u"1-12"_s, u"212"_s,
    u"21-2"_s, u"2112"_s, u"22"_s,   u"122"_s, u"-22"_s, u"2-2"_s,  u"11"_s,
    u"1-1"_s,  u"2-11"_s, u"2111"_s, u"21"_s,  u"-"_s,   u"2-"_s,
};

/// The same time in several forms, and other times.
const std::array<QDateTime, 6> times = {
    QDateTime(),
    QDateTime::fromSecsSinceEpoch(1900000000, Qt::UTC),
    QDateTime::fromSecsSinceEpoch(1900000000, Qt::OffsetFromUTC, 3600),
    QDateTime::fromMSecsSinceEpoch(1900000000500, Qt::UTC),
    QDateTime::fromSecsSinceEpoch(1900003600, Qt::UTC),
    QDateTime::fromSecsSinceEpoch(0, Qt::UTC),
};

const std::array<QString, 5> triggerTimes = {u"1900000000"_s, u"1900003600"_s, u"0"_s, u"soon"_s,
                                             u""_s};

const QString refusal = u"com.example.Refused"_s;
const QString refusalText = u"QDBusError(\"com.example.Refused\", \"No.\")"_s;

/// An operation has plain numbers, which each kind interprets in its own way. It can therefore be
/// repeated, with or without the others of its sequence.
struct Operation
{
    enum Kind {
        Make,
        Destroy,
        SetPhoneNumber,
        SetStore,
        Remove,
        Create,
        AnswerDaemon,
        AnswerService,
        ChangeTriggers,
        CloseNotification,
        StartStore,
        StopStore,
    };

    Kind kind;
    uint a;
    uint b;
    uint c;
};

using Sequence = std::vector<Operation>;

/// Generates the details of an operation from its numbers.
using Dice = std::linear_congruential_engine<uint, 48271, 0, 2147483647>;

/// One of the handset's services, which can wait until all earlier messages have arrived.
class Service : public ScriptedService
{
public:
    Service(const QString &address, const QString &service, const QString &path,
            QDBusConnection client)
        : ScriptedService(address, service, path)
        , m_client(std::move(client))
        , m_marker(QDBusMessage::createMethodCall(service, path, service, u"Marker"_s))
    {
    }

    /// Waits until all earlier messages of the client and of this service have arrived. Messages
    /// that the client's handlers send meanwhile need another call.
    void catchUp()
    {
        const QDBusPendingCallWatcher marker(m_client.asyncCall(m_marker));
        QEventLoop loop;
        QObject::connect(&marker, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
        loop.exec();
        if (marker.isError())
            qFatal("The bus does not answer.");
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

protected:
    void take(const QDBusMessage &call) override
    {
        if (call.member() == m_marker.member())
            reply(call, {});
        else
            ScriptedService::take(call);
    }

private:
    const QDBusConnection m_client;
    const QDBusMessage m_marker;
};

struct Handset
{
    explicit Handset(const QString &address)
        : timeDaemon(address, u"com.nimbo.timed"_s, u"/com/nimbo/timed"_s,
                     QDBusConnection::systemBus())
        , notificationService(address, u"org.freedesktop.Notifications"_s,
                              u"/org/freedesktop/Notifications"_s, QDBusConnection::sessionBus())
    {
    }

    Service timeDaemon;
    Service notificationService;
};

QString argumentText(const QVariant &argument)
{
    if (argument.canConvert<QDBusArgument>()) {
        const auto wired = argument.value<QDBusArgument>();
        QStringList entries;
        if (wired.currentSignature() == u"au") {
            const auto list = qdbus_cast<QList<uint>>(wired);
            for (const uint entry : list)
                entries << QString::number(entry);
        } else if (wired.currentSignature() == u"a{sv}") {
            const auto map = qdbus_cast<QVariantMap>(wired);
            for (auto entry = map.begin(); entry != map.end(); ++entry)
                entries << entry.key() + u'=' + entry->toString();
        }
        return entries.join(u'|');
    }
    return argument.userType() == QMetaType::QStringList ? argument.toStringList().join(u'|')
                                                         : argument.toString();
}

QString callText(const QDBusMessage &call)
{
    QStringList arguments;
    for (const QVariant &argument : call.arguments())
        arguments << argumentText(argument);
    return call.member() + u'(' + arguments.join(u", "_s) + u')';
}

/// The store and the model side by side, from their beginning.
class Comparison
{
public:
    explicit Comparison(Handset &handset);
    ~Comparison();

    /// Applies the operation to both. Returns its description; empty if it does not apply.
    QString apply(const Operation &operation);

    /// Destroys everything on both sides, in the same order.
    void finish();

    /// Returns the first difference; empty if there has been none.
    QString difference() const { return m_difference.join(u'\n'); }

private:
    struct Place
    {
        std::unique_ptr<Reminder> reminder;
        int object = 0;
    };

    /// The calls from the product that the test can answer, in the form of the model.
    struct Side
    {
        Service &service;
        ReminderModel::Service &model;
        std::vector<QDBusMessage> open;
    };

    QString make(Place &place);
    QString destroy(Place &place);
    QString setPhoneNumber(Place &place, const QString &number);
    QString setStore(Place &place, bool store);
    QString remove(Place &place);
    QString create(const Operation &operation);
    QString answer(Side &side, const Operation &operation);
    QString answerAlarm(int index, const QDBusMessage &call, const Operation &operation);
    QString answerQuery(int index, const QDBusMessage &call, const Operation &operation);
    QString answerAttributes(int index, const QDBusMessage &call, const Operation &operation);
    QString answerNotifications(int index, const QDBusMessage &call, const Operation &operation);
    QString changeTriggers(uint cookies);
    QString closeNotification(uint id);
    QString startStore();
    QString stopStore();

    void takeCalls(Side &side);
    void compare();
    void compare(const QString &what, const QStringList &product, const QStringList &model);

    FakePlatform m_platform;
    MessageLog m_log;
    ReminderModel m_model;
    Side m_timeDaemon;
    Side m_notificationService;
    std::unique_ptr<Reminders> m_store;
    std::array<Place, 5> m_places;
    QStringList m_difference;
};

Comparison::Comparison(Handset &handset)
    : m_timeDaemon{handset.timeDaemon, m_model.timeDaemon, {}}
    , m_notificationService{handset.notificationService, m_model.notificationService, {}}
{
    m_platform.normalize = ReminderModel::normalize;
    m_platform.minimize = ReminderModel::minimize;
}

Comparison::~Comparison()
{
    for (Place &place : m_places)
        place.reminder.reset();
    m_store.reset();
    for (Side *side : {&m_timeDaemon, &m_notificationService}) {
        side->service.catchUp();
        side->service.forget();
        for (const QDBusMessage &call : side->open)
            side->service.fail(call, refusal, u"No."_s);
        side->service.catchUp();
    }
}

QString Comparison::apply(const Operation &operation)
{
    const auto done = [this, &operation]() -> QString {
        Place &place = m_places[operation.a % m_places.size()];
        switch (operation.kind) {
        case Operation::Make:
            return make(place);
        case Operation::Destroy:
            return destroy(place);
        case Operation::SetPhoneNumber:
            return setPhoneNumber(place, numbers[operation.b % numbers.size()]);
        case Operation::SetStore:
            return setStore(place, operation.b % 4 != 0);
        case Operation::Remove:
            return remove(place);
        case Operation::Create:
            return create(operation);
        case Operation::AnswerDaemon:
            return answer(m_timeDaemon, operation);
        case Operation::AnswerService:
            return answer(m_notificationService, operation);
        case Operation::ChangeTriggers:
            return changeTriggers(operation.a | operation.b);
        case Operation::CloseNotification:
            return closeNotification(operation.a % 7);
        case Operation::StartStore:
            return startStore();
        case Operation::StopStore:
            return stopStore();
        }
        return {};
    };
    QString line = done();
    compare();
    return line;
}

void Comparison::finish()
{
    for (Place &place : m_places)
        destroy(place);
    stopStore();
    takeCalls(m_timeDaemon);
    takeCalls(m_notificationService);
    compare();
}

QString Comparison::make(Place &place)
{
    if (place.reminder)
        return {};
    place.object = m_model.make();
    place.reminder = std::make_unique<Reminder>();

    Reminder *reminder = place.reminder.get();
    const auto watch = [this, reminder, object = place.object](auto signal, const QString &name) {
        QObject::connect(reminder, signal, [this, reminder, object, name] {
            m_platform.record(
                ReminderModel::signalText(object, name, reminder->exists(), reminder->when()));
        });
    };
    watch(&Reminder::phoneNumberChanged, u"phoneNumberChanged"_s);
    watch(&Reminder::whenChanged, u"whenChanged"_s);
    watch(&Reminder::existsChanged, u"existsChanged"_s);
    watch(&Reminder::remindersChanged, u"remindersChanged"_s);
    return u"new Reminder r%1"_s.arg(place.object);
}

QString Comparison::destroy(Place &place)
{
    if (!place.reminder)
        return {};
    place.reminder.reset();
    m_model.destroy(place.object);
    return u"delete r%1"_s.arg(place.object);
}

QString Comparison::setPhoneNumber(Place &place, const QString &number)
{
    if (!place.reminder)
        return {};
    place.reminder->setPhoneNumber(number);
    m_model.setPhoneNumber(place.object, number);
    return u"r%1.phoneNumber = \"%2\""_s.arg(QString::number(place.object), number);
}

QString Comparison::setStore(Place &place, bool store)
{
    if (!place.reminder || (store && !m_store))
        return {};
    place.reminder->setReminders(store ? m_store.get() : nullptr);
    m_model.setStore(place.object, store);
    return u"r%1._reminders = %2"_s.arg(QString::number(place.object),
                                        store ? u"store"_s : u"null"_s);
}

QString Comparison::remove(Place &place)
{
    if (!place.reminder)
        return {};
    place.reminder->remove();
    m_model.remove(place.object);
    return u"r%1.remove()"_s.arg(place.object);
}

QString Comparison::create(const Operation &operation)
{
    if (!m_store || m_timeDaemon.model.open.size() > 20)
        return {};
    const QString &number = numbers[operation.a % numbers.size()];
    const QDateTime &when = times[operation.b % times.size()];
    const QString name = QString::number(operation.c % 100);
    const ReminderModel::Text text = {u"application "_s + name, u"contact "_s + name,
                                      u"title "_s + name, u"text "_s + name};
    m_platform.throwFromSetAttribute = operation.c % 32 == 0;
    m_platform.throwFromSending = operation.c % 32 == 1;

    m_store->createWithStrings(number, when, text.applicationName, text.contactName, text.title,
                               text.description);
    m_model.create(number, when, text, operation.c % 32 < 2);
    return u"createWithStrings(\"%1\", %2, ... %3)%4"_s.arg(
        number, ReminderModel::timeText(when), name,
        operation.c % 32 < 2 ? u", exception"_s : QString());
}

QString Comparison::answer(Side &side, const Operation &operation)
{
    if (!side.model.calls.isEmpty())
        takeCalls(side);
    if (side.open.empty() || !m_difference.isEmpty())
        return {};
    // Choose the latest one more often than others.
    const auto count = static_cast<uint>(side.open.size());
    const int index = static_cast<int>(operation.a % 3 == 0 ? count - 1 : operation.a / 3 % count);
    const QDBusMessage call = side.open[index];
    side.open.erase(side.open.begin() + index);

    const auto answered = [&]() -> QString {
        switch (side.model.open[index].kind) {
        case ReminderModel::Request::Alarm:
            return answerAlarm(index, call, operation);
        case ReminderModel::Request::Query:
            return answerQuery(index, call, operation);
        case ReminderModel::Request::Attributes:
            return answerAttributes(index, call, operation);
        case ReminderModel::Request::Notifications:
            return answerNotifications(index, call, operation);
        }
        return {};
    };
    const QString line = u"answer call %1, %2: "_s.arg(QString::number(index), call.member());
    const QString told = answered();
    side.service.catchUp();
    if (&side == &m_notificationService)
        side.service.catchUp(); // The question for the owner of the name comes first.
    return line + told;
}

QString Comparison::answerAlarm(int index, const QDBusMessage &call, const Operation &operation)
{
    const uint id = operation.c / 8 % 6;
    m_platform.nextNotificationId = id;

    if (operation.b % 16 == 0) {
        m_timeDaemon.service.fail(call, refusal, u"No."_s);
        m_model.answerAlarm(index, {}, id);
        return u"an error"_s;
    }
    if (operation.b % 16 == 1) {
        m_timeDaemon.service.reply(call, {u"junk"_s});
        m_model.answerAlarm(index, 0, id);
        return u"junk"_s;
    }
    const uint cookie = operation.b % 16 == 2 ? 0 : operation.c % 8;
    const bool asText = operation.b % 16 == 3;
    m_timeDaemon.service.reply(call,
                               {asText ? QVariant(QString::number(cookie)) : QVariant(cookie)});
    m_model.answerAlarm(index, cookie, id);
    return u"cookie %1, notification id %2"_s.arg(cookie).arg(id);
}

QString Comparison::answerQuery(int index, const QDBusMessage &call, const Operation &operation)
{
    if (operation.b % 16 == 0) {
        m_timeDaemon.service.fail(call, refusal, u"No."_s);
        m_model.answerQuery(index, {}, refusalText);
        return u"an error"_s;
    }
    QList<uint> cookies;
    QVariantList values;
    QStringList texts;
    Dice random(operation.c);
    for (uint i = operation.b % 5; i != 0; --i) {
        cookies << random() % 8;
        values << cookies.last();
        texts << QString::number(cookies.last());
    }
    m_timeDaemon.service.reply(call, {QVariant(values)});
    m_model.answerQuery(index, cookies, {});
    return texts.join(u", "_s);
}

QString Comparison::answerAttributes(int index, const QDBusMessage &call,
                                     const Operation &operation)
{
    if (operation.b % 16 == 0) {
        m_timeDaemon.service.fail(call, refusal, u"No."_s);
        m_model.answerAttributes(index, {}, refusalText);
        return u"an error"_s;
    }
    ReminderModel::AttributesByCookie alarms;
    QStringList texts;
    Dice random(operation.c);
    for (uint i = operation.b % 6; i != 0; --i) {
        const uint cookie = 1 + random() % 7;
        const QString &number = numbers[random() % numbers.size()];
        const QString &triggerTime = triggerTimes[random() % triggerTimes.size()];
        alarms[cookie] = {{u"TITLE"_s, u"Somebody"_s}};
        if (random() % 16 != 0)
            alarms[cookie].insert(u"phoneNumber"_s, number);
        if (random() % 16 != 0)
            alarms[cookie].insert(u"triggerTime"_s, triggerTime);
    }
    for (auto alarm = alarms.cbegin(); alarm != alarms.cend(); ++alarm)
        texts << u"%1 \"%2\" at \"%3\""_s.arg(QString::number(alarm.key()),
                                              alarm->value(u"phoneNumber"_s),
                                              alarm->value(u"triggerTime"_s));
    m_timeDaemon.service.reply(call, {QVariant::fromValue(alarms)});
    m_model.answerAttributes(index, alarms, {});
    return texts.join(u", "_s);
}

QString Comparison::answerNotifications(int index, const QDBusMessage &call,
                                        const Operation &operation)
{
    if (operation.b % 16 == 0) {
        m_notificationService.service.fail(call, refusal, u"No."_s);
        m_model.answerNotifications(index, {}, refusalText);
        return u"an error"_s;
    }
    QVector<NotificationData> notifications;
    std::vector<ReminderModel::Notification> modelled;
    QStringList texts;
    Dice random(operation.c);
    for (uint i = operation.b % 6; i != 0; --i) {
        NotificationData data;
        data.id = random() % 7;
        const uint cookie = random() % 8;
        if (cookie != 0 || random() % 2 == 0)
            data.hints.insert(u"x-nimbo-alarm-cookie"_s, cookie);
        notifications << data;
        modelled.push_back({data.id, cookie});
        texts << u"%1 for cookie %2"_s.arg(data.id).arg(cookie);
    }
    m_notificationService.service.reply(call, {QVariant::fromValue(notifications)});
    m_model.answerNotifications(index, modelled, {});
    return texts.join(u", "_s);
}

QString Comparison::changeTriggers(uint cookies)
{
    if (!m_store)
        return {};
    Maemo::Timed::Event::Triggers triggers;
    QMap<uint, qlonglong> modelled;
    QStringList texts;
    for (uint cookie = 1; cookie < 8; ++cookie) {
        if ((cookies >> cookie) % 2 == 0)
            continue;
        triggers.insert(cookie, 1);
        modelled.insert(cookie, 1);
        texts << QString::number(cookie);
    }
    m_timeDaemon.service.emitSignal(u"com.nimbo.timed"_s, u"alarm_triggers_changed"_s,
                                    {QVariant::fromValue(triggers)});
    m_model.changeTriggers(modelled);
    m_timeDaemon.service.catchUp();
    return u"alarm_triggers_changed: "_s + texts.join(u", "_s);
}

QString Comparison::closeNotification(uint id)
{
    if (!m_store)
        return {};
    m_notificationService.service.emitSignal(u"org.freedesktop.Notifications"_s,
                                             u"NotificationClosed"_s, {id, 2U});
    m_model.closeNotification(id);
    m_notificationService.service.catchUp();
    return u"NotificationClosed: %1"_s.arg(id);
}

QString Comparison::startStore()
{
    if (m_store)
        return {};
    m_store = std::make_unique<Reminders>();
    m_model.startStore();
    return u"new Reminders store"_s;
}

QString Comparison::stopStore()
{
    if (!m_store)
        return {};
    m_store.reset();
    m_model.stopStore();
    return u"delete store"_s;
}

void Comparison::takeCalls(Side &side)
{
    side.service.catchUp();
    QStringList calls;
    while (side.service.waiting() != 0) {
        const QDBusMessage call = side.service.next();
        calls << callText(call);
        // The answers to these calls are not used.
        if (call.member() == u"cancel")
            side.service.reply(call, {});
        else if (call.member() == u"CloseNotification")
            side.service.fail(call, refusal, u"No."_s);
        else
            side.open.push_back(call);
    }
    compare(u"calls"_s, calls, side.model.calls);
    side.model.calls.clear();
}

void Comparison::compare()
{
    QStringList events = m_platform.takeCalls();
    const auto isOfNoInterest = [](const QString &event) {
        const QString function = event.section(u'(', 0, 0);
        return function == u"normalize" || function == u"minimize" || function == u"Notification"
            || function == u"~Notification" || function == u"setCategory"
            || function == u"setUrgency" || function == u"setRemoteActions";
    };
    events.erase(std::remove_if(events.begin(), events.end(), isOfNoInterest), events.end());
    compare(u"events"_s, events, m_model.events);
    m_model.events.clear();

    compare(u"log"_s, m_log.take(), m_model.warnings);
    m_model.warnings.clear();

    for (const Place &place : m_places) {
        if (!place.reminder)
            continue;
        const auto state = [&place](bool exists, const QDateTime &when, const QString &number,
                                    bool store) {
            return QStringList(ReminderModel::signalText(place.object, u"now"_s, exists, when)
                               + u", \""_s + number + u'"' + (store ? QString() : u", no store"_s));
        };
        const Reminder &reminder = *place.reminder;
        const ReminderModel::Object &model = m_model.objects[place.object];
        compare(u"state"_s,
                state(reminder.exists(), reminder.when(), reminder.phoneNumber(),
                      reminder.reminders() != nullptr),
                state(model.exists, model.when, model.phoneNumber, model.hasStore));
    }
}

void Comparison::compare(const QString &what, const QStringList &product, const QStringList &model)
{
    if (product == model)
        return;
    const auto list = [](const QStringList &lines) {
        return lines.isEmpty() ? u"\n    (nothing)"_s : u"\n    "_s + lines.join(u"\n    "_s);
    };
    m_difference << what + u" of the store:"_s + list(product)
                 << what + u" by the rules:"_s + list(model);
}

struct Outcome
{
    QStringList lines; ///< The operations that applied.
    std::size_t length = 0; ///< The number of operations until the difference.
    QString difference; ///< Empty if there is no difference.
};

Outcome run(const Sequence &sequence, Handset &handset)
{
    Outcome outcome;
    Comparison comparison(handset);
    for (const Operation &operation : sequence) {
        const QString line = comparison.apply(operation);
        if (!line.isEmpty())
            outcome.lines << line;
        ++outcome.length;
        outcome.difference = comparison.difference();
        if (!outcome.difference.isEmpty())
            return outcome;
    }
    comparison.finish();
    outcome.difference = comparison.difference();
    if (!outcome.difference.isEmpty())
        outcome.lines << u"delete everything"_s;
    return outcome;
}

/// Shortens a sequence that shows a difference: removes halves, then quarters, and single
/// operations at last, as long as the difference stays.
Sequence shrink(Sequence sequence, Handset &handset)
{
    const auto fails = [&handset](const Sequence &candidate) {
        return !run(candidate, handset).difference.isEmpty();
    };
    for (std::size_t chunk = sequence.size() / 2; chunk != 0;) {
        bool hasShrunk = false;
        for (std::size_t at = 0; at < sequence.size();) {
            Sequence candidate = sequence;
            const auto begin = candidate.begin() + static_cast<std::ptrdiff_t>(at);
            const std::size_t count = std::min(chunk, sequence.size() - at);
            candidate.erase(begin, begin + static_cast<std::ptrdiff_t>(count));
            if (fails(candidate)) {
                sequence = candidate;
                hasShrunk = true;
            } else {
                at += chunk;
            }
        }
        if (!hasShrunk || chunk > 1)
            chunk /= 2;
    }
    return sequence;
}

Sequence generate(uint seed)
{
    std::mt19937 random(seed);
    Sequence sequence;
    const auto add = [&](Operation::Kind kind) {
        const auto a = static_cast<uint>(random());
        const auto b = static_cast<uint>(random());
        const auto c = static_cast<uint>(random());
        sequence.push_back({kind, a, b, c});
    };
    const auto addStart = [&] {
        add(Operation::StartStore);
        if (random() % 4 == 0)
            return;
        // Answer the latest calls, so that the store is rebuilt.
        for (const Operation::Kind kind :
             {Operation::AnswerDaemon, Operation::AnswerDaemon, Operation::AnswerService}) {
            add(kind);
            sequence.back().a = 0;
        }
    };
    const auto addReminder = [&] {
        add(Operation::Make);
        const uint place = sequence.back().a;
        sequence.push_back({Operation::SetStore, place, 1, 0});
        sequence.push_back({Operation::SetPhoneNumber, place, static_cast<uint>(random()), 0});
    };

    // The weights of the kinds of operations, in their order.
    std::discrete_distribution<int> kinds({80, 60, 370, 120, 60, 120, 110, 10, 30, 30, 5, 5});
    addStart();
    while (sequence.size() < 300) {
        const auto kind = static_cast<Operation::Kind>(kinds(random));
        if (kind == Operation::Make)
            addReminder();
        else if (kind == Operation::StartStore)
            addStart();
        else
            add(kind);
    }
    return sequence;
}

} // namespace

/// Compares the store with the plain rules, by random operations on both. PARLEY_MODEL_SEED repeats
/// a run, and PARLEY_MODEL_OPERATIONS sets its length.
class TestReminderModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void agreesWithTheStore();

private:
    QTemporaryDir m_folder;
    PrivateBus m_bus;
};

void TestReminderModel::initTestCase()
{
    // The time zone is not UTC, so that a local time differs from it.
    qputenv("TZ", "PLY-03");
    QVERIFY(m_bus.start(m_folder.path(), u"session"_s));
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().toUtf8());
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address().toUtf8());
    QVERIFY(QDBusConnection::sessionBus().isConnected());
    QVERIFY(QDBusConnection::systemBus().isConnected());

    qDBusRegisterMetaType<NotificationData>();
    qDBusRegisterMetaType<QVector<NotificationData>>();
    qDBusRegisterMetaType<QMap<QString, QString>>();
    qDBusRegisterMetaType<ReminderModel::AttributesByCookie>();
    qDBusRegisterMetaType<QList<uint>>();
}

void TestReminderModel::agreesWithTheStore()
{
    uint seed = qEnvironmentVariable("PARLEY_MODEL_SEED").toUInt();
    if (!qEnvironmentVariableIsSet("PARLEY_MODEL_SEED"))
        seed = std::random_device()();
    bool isNumber = false;
    int wanted = qEnvironmentVariableIntValue("PARLEY_MODEL_OPERATIONS", &isNumber);
    if (!isNumber)
        wanted = 100000;
    qInfo("PARLEY_MODEL_SEED=%u PARLEY_MODEL_OPERATIONS=%d", seed, wanted);

    Handset handset(m_bus.address());
    QElapsedTimer timer;
    timer.start();
    int sequences = 0;
    int operations = 0;
    while (operations < wanted) {
        const uint own = seed + static_cast<uint>(sequences);
        Sequence sequence = generate(own);
        const Outcome outcome = run(sequence, handset);
        ++sequences;
        operations += static_cast<int>(outcome.lines.size());
        if (outcome.difference.isEmpty())
            continue;

        sequence.resize(outcome.length);
        const Outcome shrunk = run(shrink(sequence, handset), handset);
        const bool isSame = !shrunk.difference.isEmpty();
        const Outcome &shown = isSame ? shrunk : outcome;
        QFAIL(qPrintable(u"The store differs from the rules. PARLEY_MODEL_SEED=%1 begins with this "
                         "sequence, here %2:\n  %3\n%4"_s.arg(
                             QString::number(own),
                             isSame ? u"shrunk"_s : u"as it was, for it did not fail again"_s,
                             shown.lines.join(u"\n  "_s), shown.difference)));
    }
    qInfo("%d operations in %d sequences, %lld a second", operations, sequences,
          operations * 1000LL / std::max<qint64>(timer.elapsed(), 1));
}

QTEST_GUILESS_MAIN(TestReminderModel)

#include "tst_remindermodel.moc"
