// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "fakeplatform.h"
#include "literals.h"
#include "messagelog.h"
#include "privatebus.h"
#include "reminder.h"
#include "reminders.h"
#include "scriptedservice.h"
#include "temporaryzone.h"
#include "watchercount.h"

#include <notification.h>

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QPointer>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QTimeZone>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#ifdef __SANITIZE_ADDRESS__
// The compiler's run time has this function.
extern "C" size_t __sanitizer_get_current_allocated_bytes();
#else
#include <malloc.h>
#endif

using Attributes = QMap<QString, QString>;
using AttributesByCookie = QMap<uint, Attributes>;

Q_DECLARE_METATYPE(AttributesByCookie)
Q_DECLARE_METATYPE(QVector<NotificationData>)

namespace {

const QDateTime noon(QDate(2030, 1, 2), QTime(12, 0), Qt::UTC);

/// The cookies of alarms in the form in which the daemon sends them.
Attributes attributes(const QString &number, const QString &triggerTime = u"1000"_s)
{
    return {{u"phoneNumber"_s, number}, {u"triggerTime"_s, triggerTime}};
}

/// Returns the bytes of the heap that this process uses.
size_t allocatedBytes()
{
#ifdef __SANITIZE_ADDRESS__
    return __sanitizer_get_current_allocated_bytes();
#else
    return mallinfo2().uordblks;
#endif
}

NotificationData notification(uint id, const QVariant &cookie)
{
    NotificationData data;
    data.id = id;
    if (cookie.isValid())
        data.hints.insert(u"x-nimbo-alarm-cookie"_s, cookie);
    return data;
}

} // namespace

/// The reminders on a scripted platform. A number is written "prefix/rest". Its exact key is the
/// number without blanks, and its loose key is the rest.
class TestReminders : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void declareWhatQmlUses();

    void startInOrder();
    void stopWhenTheAlarmsCannotBeHad_data();
    void stopWhenTheAlarmsCannotBeHad();
    void keepTheirAlarmsWhenTheNotificationsCannotBeHad();
    void readCookiesOfAnyShape_data();
    void readCookiesOfAnyShape();
    void toleratesAttributesOfAnotherShape_data();
    void toleratesAttributesOfAnotherShape();
    void toleratesNotificationsOfAnotherShape_data();
    void toleratesNotificationsOfAnotherShape();
    void mergeAlarmsByTheirRawNumbers();
    void mergeAlarmsByTheFirstLookupRule();
    void readTheTriggerTime_data();
    void readTheTriggerTime();
    void keepTheirTimesInAnotherZone();
    void matchNotificationsByTheirCookies();
    void dropBothOfTwoRecordsWithOneCookie();
    void showNothingBeforeTheRebuild();

    void buildTheEventInOrder();
    void scheduleAtTheGivenTime_data();
    void scheduleAtTheGivenTime();
    void publishTheNotificationInOrder();
    void reportACreatedReminder();
    void chooseTheCookieToReplace_data();
    void chooseTheCookieToReplace();
    void readTheCookieOfAReply_data();
    void readTheCookieOfAReply();
    void warnOfAnAlarmThatIsNotMade_data();
    void warnOfAnAlarmThatIsNotMade();
    void warnOfAnException_data();
    void warnOfAnException();
    void lookTheRecordUpAgainWhenTheReplyComes();
    void takeRepliesInAnyOrder();
    void ignoreRepliesOnceTheyAreGone();
    void keepTheIdWithoutAnAnswer();
    void replaceTheNotification();
    void publishAnewAfterTheNotificationWasClosed();

    void publishOneAfterTheOther();
    void endAsOneNotificationForOneNumber();
    void takeBackWhatFiresWhilePublishing();
    void takeBackWhatIsRemovedWhilePublishing();
    void publishAnewWhatIsMadeAnewWhilePublishing();
    void noticeWhatIsClosedWhilePublishing_data();
    void noticeWhatIsClosedWhilePublishing();
    void outliveTheirStoreWhilePublishing();

    void makeSomeAlarmsAtATime();
    void closeSomeLeftoversAtATime();
    void askForNoAnswerThatNobodyReads();
    void leaveNothingOfFinishedCalls();
    void keepNothingOfDestroyedReminders();

    void bindToTheExactNumber();
    void bindToTheFirstLooseNumber();
    void bindToANewRecord();
    void reportOnlyWhatDiffersWhenBinding();
    void keepWhenForANewNumber();
    void eraseRecordsThatNobodyUses();
    void takeAReminderOutOfOtherRecords();
    void listAReminderTwice();
    void setTheSameNumberSilently();
    void clearTheNumber();
    void detachFromTheFirstRecordAlone();
    void eraseTheFirstRecordWhenNobodyUsesIt_data();
    void eraseTheFirstRecordWhenNobodyUsesIt();
    void setTheStoreSilently();
    void forgetADestroyedStore();
    void neverTouchADestroyedReminder();

    void removeAReminder();
    void removeNothingThatDoesNotExist();
    void removeWithoutANotification();
    void dropAlarmsThatHaveGone();
    void followTriggersOfOthers();
    void clearTheNotificationThatWasClosed();

    void surviveTheirHandlers_data();
    void surviveTheirHandlers();

private:
    void startEmpty();
    void start(const AttributesByCookie &alarms, const QVector<NotificationData> &notifications);
    Reminder *watch(const QString &name, const QString &number);
    QDBusMessage create(const QString &number, const QDateTime &when = noon);
    void whilePublishing(const std::function<void()> &deed);
    QStringList takePublications();
    void createReminder(const QString &number, uint cookie, const QDateTime &when = noon);
    QStringList takeEvents();
    QStringList log() { return m_log->take(); }

    QTemporaryDir m_folder;
    PrivateBus m_bus;
    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<FakePlatform> m_platform;
    std::unique_ptr<ScriptedService> m_daemon;
    std::unique_ptr<ScriptedService> m_notifications;
    std::unique_ptr<Reminders> m_reminders;
    std::vector<std::unique_ptr<Reminder>> m_watching;
    QStringList m_events;
};

void TestReminders::initTestCase()
{
    QVERIFY(m_bus.start(m_folder.path(), u"bus"_s));
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().toUtf8());
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address().toUtf8());
    QVERIFY(QDBusConnection::sessionBus().isConnected());
    QVERIFY(QDBusConnection::systemBus().isConnected());
    qDBusRegisterMetaType<NotificationData>();
    qDBusRegisterMetaType<QVector<NotificationData>>();
    qDBusRegisterMetaType<Attributes>();
    qDBusRegisterMetaType<AttributesByCookie>();
}

void TestReminders::init()
{
    m_log.reset();
    m_log = std::make_unique<MessageLog>();
    m_platform.reset();
    m_platform = std::make_unique<FakePlatform>();
    m_platform->normalize = [](QString number) { return number.remove(u' '); };
    m_platform->minimize = [](const QString &number) { return number.section(u'/', -1); };
    m_daemon = std::make_unique<ScriptedService>(m_bus.address(), u"com.nimbo.timed"_s,
                                                 u"/com/nimbo/timed"_s);
    m_notifications = std::make_unique<ScriptedService>(
        m_bus.address(), u"org.freedesktop.Notifications"_s, u"/org/freedesktop/Notifications"_s);
    m_events.clear();
}

void TestReminders::cleanup()
{
    m_daemon->settle();
    m_watching.clear();
    m_reminders.reset();
    m_daemon->settle();
    QCOMPARE(m_daemon->waiting(), 0);
    QCOMPARE(m_notifications->waiting(), 0);
    m_daemon.reset();
    m_notifications.reset();
    QCOMPARE(log(), QStringList());
}

void TestReminders::start(const AttributesByCookie &alarms,
                          const QVector<NotificationData> &notifications)
{
    m_reminders = std::make_unique<Reminders>();
    QVariantList cookies;
    for (auto it = alarms.cbegin(); it != alarms.cend(); ++it)
        cookies << it.key();
    m_daemon->reply(m_daemon->next(u"query"_s), {QVariant(cookies)});
    m_daemon->reply(m_daemon->next(u"get_attributes_by_cookies"_s), {QVariant::fromValue(alarms)});
    m_notifications->reply(m_notifications->next(u"GetNotificationsByCategory"_s),
                           {QVariant::fromValue(notifications)});
    m_daemon->settle();
    m_platform->takeCalls();
}

void TestReminders::startEmpty()
{
    start({}, {});
}

Reminder *TestReminders::watch(const QString &name, const QString &number)
{
    m_watching.push_back(std::make_unique<Reminder>());
    Reminder *reminder = m_watching.back().get();
    reminder->setReminders(m_reminders.get());
    reminder->setPhoneNumber(number);
    const auto report = [this, name, reminder](const char *what) {
        m_events << u"%1 %2: %3 %4"_s.arg(name, QLatin1String(what),
                                          reminder->exists() ? u"yes"_s : u"no"_s,
                                          reminder->when().toUTC().toString(Qt::ISODate));
    };
    connect(reminder, &Reminder::phoneNumberChanged, this, [report] { report("number"); });
    connect(reminder, &Reminder::whenChanged, this, [report] { report("when"); });
    connect(reminder, &Reminder::existsChanged, this, [report] { report("exists"); });
    connect(reminder, &Reminder::remindersChanged, this, [report] { report("reminders"); });
    return reminder;
}

/// Creates a reminder, and returns the call that the daemon gets.
QDBusMessage TestReminders::create(const QString &number, const QDateTime &when)
{
    m_reminders->createWithStrings(number, when, u"app"_s, u"contact"_s, u"title"_s, u"text"_s);
    return m_daemon->next();
}

void TestReminders::createReminder(const QString &number, uint cookie, const QDateTime &when)
{
    m_daemon->reply(create(number, when), {cookie});
    m_daemon->settle();
    m_platform->takeCalls();
}

/// Runs \a deed during the next publication only, and waits for its effects.
void TestReminders::whilePublishing(const std::function<void()> &deed)
{
    m_platform->whilePublishing = [this, deed] {
        deed();
        m_daemon->settle();
    };
}

/// Returns the notifications published by now: the cookie of each and the id that it replaces.
QStringList TestReminders::takePublications()
{
    const QRegularExpression call(u"^set(?:ReplacesId\\(|HintValue\\(.* )(\\d+)\\)$"_s);
    QStringList numbers;
    for (const QString &line : m_platform->takeCalls()) {
        const QRegularExpressionMatch match = call.match(line);
        if (match.hasMatch())
            numbers << match.captured(1);
    }
    QStringList publications;
    for (int i = 0; i + 1 < numbers.size(); i += 2)
        publications << u"%1 for %2"_s.arg(numbers.at(i + 1), numbers.at(i));
    return publications;
}

QStringList TestReminders::takeEvents()
{
    return std::exchange(m_events, {});
}

void TestReminders::declareWhatQmlUses()
{
    const auto declared = [](const QMetaObject &meta) {
        QStringList members;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            const QMetaMethod method = meta.method(i);
            members << u"%1 %2 %3 %4(%5)"_s.arg(method.access())
                           .arg(method.methodType())
                           .arg(QString::fromLatin1(method.typeName()),
                                QString::fromLatin1(method.methodSignature()),
                                QString::fromLatin1(method.parameterNames().join(',')));
        }
        for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
            const QMetaProperty property = meta.property(i);
            members << u"%1 %2%3 %4"_s.arg(QString::fromLatin1(property.typeName()),
                                           QString::fromLatin1(property.name()),
                                           property.isWritable() ? u" writable"_s : QString(),
                                           QString::fromLatin1(property.notifySignal().name()));
        }
        return members;
    };
    const int isPublic = QMetaMethod::Public;
    const int isPrivate = QMetaMethod::Private;
    QCOMPARE(declared(Reminder::staticMetaObject),
             QStringList({
                 u"%1 %2 void phoneNumberChanged()()"_s.arg(isPublic).arg(QMetaMethod::Signal),
                 u"%1 %2 void whenChanged()()"_s.arg(isPublic).arg(QMetaMethod::Signal),
                 u"%1 %2 void existsChanged()()"_s.arg(isPublic).arg(QMetaMethod::Signal),
                 u"%1 %2 void remindersChanged()()"_s.arg(isPublic).arg(QMetaMethod::Signal),
                 u"%1 %2 void remove()()"_s.arg(isPublic).arg(QMetaMethod::Method),
                 u"QString phoneNumber writable phoneNumberChanged"_s,
                 u"QDateTime when whenChanged"_s,
                 u"bool exists existsChanged"_s,
                 u"Reminders* _reminders writable remindersChanged"_s,
             }));
    QCOMPARE(declared(Reminders::staticMetaObject),
             QStringList({
                 u"%1 %2 void notificationClosed(uint,uint)(id,reason)"_s.arg(isPrivate).arg(
                     QMetaMethod::Slot),
                 u"%1 %2 void createWithStrings(QString,QDateTime,QString,QString,QString,QString)"
                 "(phoneNumber,when,applicationName,contactName,title,description)"_s.arg(isPublic)
                     .arg(QMetaMethod::Method),
             }));
}

void TestReminders::startInOrder()
{
    m_reminders = std::make_unique<Reminders>();
    const QDBusMessage query = m_daemon->next(u"query"_s);
    QCOMPARE(query.signature(), u"a{sv}"_s);
    QCOMPARE(qdbus_cast<QVariantMap>(query.arguments().constFirst()),
             QVariantMap({{u"APPLICATION"_s, u"nimbo_parley_ui"_s}, {u"type"_s, u"reminder"_s}}));
    m_daemon->settle();
    QCOMPARE(m_daemon->waiting() + m_notifications->waiting(), 0);

    m_daemon->reply(query, {QVariant(QVariantList())});
    const QDBusMessage details = m_daemon->next(u"get_attributes_by_cookies"_s);
    QCOMPARE(details.signature(), u"au"_s);
    QCOMPARE(qdbus_cast<QList<uint>>(details.arguments().constFirst()), QList<uint>());
    m_daemon->settle();
    QCOMPARE(m_daemon->waiting() + m_notifications->waiting(), 0);

    m_daemon->reply(details, {QVariant::fromValue(AttributesByCookie())});
    const QDBusMessage shown = m_notifications->next(u"GetNotificationsByCategory"_s);
    QCOMPARE(shown.signature(), u"s"_s);
    QCOMPARE(shown.interface(), u"org.freedesktop.Notifications"_s);
    QCOMPARE(shown.arguments(), QVariantList{u"x-nimbo-call-reminder"_s});
    m_notifications->reply(shown, {QVariant::fromValue(QVector<NotificationData>())});
}

void TestReminders::stopWhenTheAlarmsCannotBeHad_data()
{
    QTest::addColumn<bool>("cookiesComeFirst");
    QTest::newRow("no cookies") << false;
    QTest::newRow("no attributes") << true;
}

void TestReminders::stopWhenTheAlarmsCannotBeHad()
{
    QFETCH(bool, cookiesComeFirst);

    m_reminders = std::make_unique<Reminders>();
    QDBusMessage call = m_daemon->next(u"query"_s);
    if (cookiesComeFirst) {
        m_daemon->reply(call, {QVariant(QVariantList{1U})});
        call = m_daemon->next(u"get_attributes_by_cookies"_s);
    }
    m_daemon->fail(call, u"com.example.Error"_s, u"no alarms today"_s);
    m_daemon->settle();
    QCOMPARE(m_daemon->waiting() + m_notifications->waiting(), 0);
    QCOMPARE(
        log(),
        QStringList(u"warning: Unable to query reminder alarms QDBusError(\"com.example.Error\", "
                    "\"no alarms today\")"_s));
}

void TestReminders::keepTheirAlarmsWhenTheNotificationsCannotBeHad()
{
    m_reminders = std::make_unique<Reminders>();
    const Reminder *a = watch(u"a"_s, u"1"_s);
    m_daemon->reply(m_daemon->next(u"query"_s), {QVariant(QVariantList{5U})});
    m_daemon->reply(m_daemon->next(u"get_attributes_by_cookies"_s),
                    {QVariant::fromValue(AttributesByCookie{{5, attributes(u"1"_s)}})});
    m_notifications->fail(m_notifications->next(u"GetNotificationsByCategory"_s),
                          u"com.example.Error"_s, u"none"_s);
    m_daemon->settle();
    QCOMPARE(
        log(),
        QStringList(
            u"warning: Unable to query reminder notifications QDBusError(\"com.example.Error\", "
            "\"none\")"_s));
    QVERIFY(!a->exists());
    QCOMPARE(takeEvents(), QStringList());
    QCOMPARE(create(u"1"_s).member(), u"replace_event"_s);
}

void TestReminders::readCookiesOfAnyShape_data()
{
    QTest::addColumn<QVariant>("reply");
    QTest::addColumn<QList<uint>>("cookies");

    QTest::newRow("variants, in their order")
        << QVariant(QVariantList{9U, 2U, 5U}) << QList<uint>{9, 2, 5};
    QTest::newRow("texts in variants")
        << QVariant(QVariantList{u"7"_s, u"x"_s}) << QList<uint>{7, 0};
    QTest::newRow("numbers in variants")
        << QVariant(QVariantList{qlonglong{7}, -1}) << QList<uint>{7, 4294967295U};
    QTest::newRow("a list in a variant")
        << QVariant(QVariantList{QVariant(QVariantList{1U})}) << QList<uint>{0};
    QTest::newRow("an array of numbers") << QVariant::fromValue(QList<uint>{1, 2}) << QList<uint>();
    QTest::newRow("a number") << QVariant(3U) << QList<uint>();
    QTest::newRow("a text") << QVariant(u"3"_s) << QList<uint>{};
    QTest::newRow("a map") << QVariant(QVariantMap{{u"a"_s, 1}}) << QList<uint>();
    QTest::newRow("nothing") << QVariant() << QList<uint>();
}

void TestReminders::readCookiesOfAnyShape()
{
    QFETCH(QVariant, reply);
    QFETCH(QList<uint>, cookies);

    m_reminders = std::make_unique<Reminders>();
    m_daemon->reply(m_daemon->next(u"query"_s),
                    reply.isValid() ? QVariantList{reply} : QVariantList());
    const QDBusMessage details = m_daemon->next(u"get_attributes_by_cookies"_s);
    QCOMPARE(qdbus_cast<QList<uint>>(details.arguments().constFirst()), cookies);
}

void TestReminders::toleratesAttributesOfAnotherShape_data()
{
    QTest::addColumn<QVariant>("reply");

    QTest::newRow("nothing") << QVariant();
    QTest::newRow("a number") << QVariant(3U);
    QTest::newRow("a list") << QVariant(QVariantList{1U});
    QTest::newRow("a map of variants") << QVariant(QVariantMap{{u"1"_s, u"a"_s}});
    QTest::newRow("attributes alone") << QVariant::fromValue(attributes(u"1"_s));
}

void TestReminders::toleratesAttributesOfAnotherShape()
{
    QFETCH(QVariant, reply);

    m_reminders = std::make_unique<Reminders>();
    m_daemon->reply(m_daemon->next(u"query"_s), {QVariant(QVariantList{1U})});
    m_daemon->reply(m_daemon->next(u"get_attributes_by_cookies"_s),
                    reply.isValid() ? QVariantList{reply} : QVariantList());
    QVERIFY(m_notifications->next(u"GetNotificationsByCategory"_s).type()
            == QDBusMessage::MethodCallMessage);
    QCOMPARE(m_platform->takeCalls(), QStringList()); // There was no alarm.
}

void TestReminders::toleratesNotificationsOfAnotherShape_data()
{
    toleratesAttributesOfAnotherShape_data();
}

void TestReminders::toleratesNotificationsOfAnotherShape()
{
    QFETCH(QVariant, reply);

    m_reminders = std::make_unique<Reminders>();
    m_daemon->reply(m_daemon->next(u"query"_s), {QVariant(QVariantList())});
    m_daemon->reply(m_daemon->next(u"get_attributes_by_cookies"_s),
                    {QVariant::fromValue(AttributesByCookie())});
    m_notifications->reply(m_notifications->next(u"GetNotificationsByCategory"_s),
                           reply.isValid() ? QVariantList{reply} : QVariantList());
    QStringList lines;
    QTRY_VERIFY(!(lines += log()).isEmpty());
    QCOMPARE(lines.join(u'\n').remove(QRegularExpression(u"the form \"[^\"]*\""_s)),
             u"warning: Unable to read reminder notifications of  instead of "
             "\"a(susssasa{sv}i)\""_s);
    QCOMPARE(m_notifications->waiting(), 0);
}

void TestReminders::mergeAlarmsByTheirRawNumbers()
{
    m_reminders = std::make_unique<Reminders>();
    m_daemon->reply(m_daemon->next(u"query"_s), {QVariant(QVariantList{1U, 2U})});
    m_daemon->reply(m_daemon->next(u"get_attributes_by_cookies"_s),
                    {QVariant::fromValue(AttributesByCookie{{2, attributes(u" 2"_s)},
                                                            {1, attributes(u"1 "_s)},
                                                            {3, attributes(QString())},
                                                            {4, {}}})});
    m_notifications->next(u"GetNotificationsByCategory"_s);
    // The alarms come in the order of their cookies, with keys of the text itself, and without
    // those that have no number.
    QCOMPARE(m_platform->takeCalls(),
             QStringList({u"normalize(1 , 0)"_s, u"minimize(1 , 0)"_s, u"normalize( 2, 0)"_s,
                          u"minimize( 2, 0)"_s}));

    watch(u"a"_s, u"1 "_s);
    QCOMPARE(m_platform->takeCalls(), QStringList({u"normalize(1 , 0)"_s, u"minimize(1, 0)"_s}));
    create(u" 2"_s);
    QCOMPARE(m_platform->takeCalls(), QStringList({u"normalize( 2, 0)"_s, u"minimize(2, 0)"_s}));
}

void TestReminders::mergeAlarmsByTheFirstLookupRule()
{
    // 3 and 4 have the same number. 5 matches 1 and 2 loosely, and takes the record of the last. 6
    // has a record of its own.
    start({{1, attributes(u"a/1"_s)},
           {2, attributes(u"b/1"_s)},
           {3, attributes(u"x"_s)},
           {4, attributes(u"x"_s)},
           {6, attributes(u"y"_s)}},
          {});
    QCOMPARE(create(u"a/1"_s).arguments().at(1), QVariant(2U)); // b/1 has taken the record of a/1.
    QCOMPARE(create(u"x"_s).arguments().at(1), QVariant(4U));
    QCOMPARE(create(u"y"_s).arguments().at(1), QVariant(6U));
}

void TestReminders::readTheTriggerTime_data()
{
    QTest::addColumn<Attributes>("alarm");
    QTest::addColumn<qint64>("seconds");

    QTest::newRow("a number") << attributes(u"1"_s, u"1893585600"_s) << qint64{1893585600};
    QTest::newRow("missing") << Attributes{{u"phoneNumber"_s, u"1"_s}} << qint64{0};
    QTest::newRow("empty") << attributes(u"1"_s, QString()) << qint64{0};
    QTest::newRow("a word") << attributes(u"1"_s, u"soon"_s) << qint64{0};
    QTest::newRow("negative") << attributes(u"1"_s, u"-5"_s) << qint64{0};
    QTest::newRow("hexadecimal") << attributes(u"1"_s, u"0x10"_s) << qint64{0};
    QTest::newRow("the largest") << attributes(u"1"_s, u"4294967295"_s) << qint64{4294967295};
    QTest::newRow("too large") << attributes(u"1"_s, u"4294967296"_s) << qint64{0};
}

void TestReminders::readTheTriggerTime()
{
    QFETCH(Attributes, alarm);
    QFETCH(qint64, seconds);

    start({{1, alarm}}, {notification(7, 1U)});
    const Reminder *a = watch(u"a"_s, u"1"_s);
    QVERIFY(a->exists());
    QCOMPARE(a->when(), QDateTime::fromSecsSinceEpoch(seconds));
    QCOMPARE(a->when().timeSpec(), Qt::LocalTime);
}

void TestReminders::keepTheirTimesInAnotherZone()
{
    const TemporaryZone zone("PLY-03");
    start({{1, attributes(u"1"_s, QString::number(noon.toSecsSinceEpoch()))}},
          {notification(7, 1U)});
    const Reminder *before = watch(u"a"_s, u"1"_s);
    QCOMPARE(before->when().time(), QTime(15, 0));
    TemporaryZone::set("PLY+05");
    const Reminder *after = watch(u"b"_s, u"1"_s);
    for (const Reminder *reminder : {before, after}) {
        QVERIFY(reminder->exists());
        QCOMPARE(reminder->when(), noon);
        QCOMPARE(reminder->when().time(), QTime(7, 0));
    }
}

void TestReminders::matchNotificationsByTheirCookies()
{
    m_reminders = std::make_unique<Reminders>();
    const Reminder *a = watch(u"a"_s, u"1"_s);
    const Reminder *b = watch(u"b"_s, u"1"_s);
    const Reminder *c = watch(u"c"_s, u"2"_s);
    QCOMPARE(takeEvents(), QStringList());
    m_daemon->reply(m_daemon->next(u"query"_s), {QVariant(QVariantList{1U, 2U})});
    m_daemon->reply(m_daemon->next(u"get_attributes_by_cookies"_s),
                    {QVariant::fromValue(
                        AttributesByCookie{{1, attributes(u"1"_s)}, {2, attributes(u"2"_s)}})});
    const QDBusMessage query = m_notifications->next(u"GetNotificationsByCategory"_s);
    QCOMPARE(takeEvents(), QStringList()); // The merge alone reports nothing.
    m_notifications->reply(
        query,
        {QVariant::fromValue(QVector<NotificationData>{
            notification(20, {}), notification(21, 9U), notification(22, 1U),
            notification(23, u"none"_s), notification(24, u"2"_s), notification(25, 0U)})});
    for (const uint leftover : {20U, 21U, 23U, 25U})
        QCOMPARE(m_notifications->next(u"CloseNotification"_s).arguments(), QVariantList{leftover});
    QVERIFY(a->exists() && b->exists() && c->exists());
    const QString due = u"yes 1970-01-01T00:16:40Z"_s;
    QCOMPARE(takeEvents(),
             QStringList({u"a when: "_s + due, u"a exists: "_s + due, u"b when: "_s + due,
                          u"b exists: "_s + due, u"c when: "_s + due, u"c exists: "_s + due}));
}

void TestReminders::dropBothOfTwoRecordsWithOneCookie()
{
    startEmpty();
    createReminder(u"1"_s, 5);
    createReminder(u"2"_s, 5);
    const Reminder *a = watch(u"a"_s, u"1"_s);
    const Reminder *b = watch(u"b"_s, u"2"_s);
    QVERIFY(a->exists() && b->exists());
    m_daemon->emitSignal(u"com.nimbo.timed"_s, u"alarm_triggers_changed"_s,
                         {QVariant::fromValue(Maemo::Timed::Event::Triggers())});
    for (const uint id : {1U, 2U})
        QCOMPARE(m_notifications->next(u"CloseNotification"_s).arguments(), QVariantList{id});
    QVERIFY(!a->exists() && !b->exists());
}

void TestReminders::showNothingBeforeTheRebuild()
{
    m_reminders = std::make_unique<Reminders>();
    const Reminder *a = watch(u"a"_s, u"1"_s);
    QVERIFY(!a->exists());
    QVERIFY(!a->when().isValid());
    m_daemon->next(u"query"_s);
}

void TestReminders::buildTheEventInOrder()
{
    startEmpty();
    m_reminders->createWithStrings(u" 1 2"_s, noon, u"app"_s, u"contact"_s, u"title"_s, u"text"_s);
    QCOMPARE(m_platform->takeCalls(), QStringList({u"normalize( 1 2, 0)"_s, u"minimize(12, 0)"_s}));
    const QDBusMessage call = m_daemon->next(u"add_event"_s);
    QCOMPARE(call.arguments(),
             QVariantList{
                 QStringList({u"reminder"_s, u"alarm"_s, u"ticker 1893585600"_s, u"TITLE=contact"_s,
                              u"APPLICATION=nimbo_parley_ui"_s, u"type=reminder"_s,
                              u"phoneNumber=12"_s, u"triggerTime=1893585600"_s})});
}

void TestReminders::scheduleAtTheGivenTime_data()
{
    QTest::addColumn<QDateTime>("when");
    QTest::addColumn<QString>("seconds");

    QTest::newRow("UTC") << noon << u"1893585600"_s;
    QTest::newRow("elsewhere") << QDateTime(QDate(2030, 1, 2), QTime(12, 0), QTimeZone(3600))
                               << u"1893582000"_s;
    QTest::newRow("here") << QDateTime::fromSecsSinceEpoch(1893585600) << u"1893585600"_s;
    QTest::newRow("a fraction") << noon.addMSecs(999) << u"1893585600"_s;
    QTest::newRow("the epoch") << QDateTime::fromSecsSinceEpoch(0) << u"0"_s;
    QTest::newRow("the last second")
        << QDateTime::fromSecsSinceEpoch(4294967294) << u"4294967294"_s;
    QTest::newRow("too late") << QDateTime::fromSecsSinceEpoch(4294967296) << u"4294967295"_s;
    // In local time, Qt does not know each zone's offset before 1970.
    QTest::newRow("too early") << QDateTime::fromSecsSinceEpoch(-1, Qt::UTC) << u"4294967295"_s;
    QTest::newRow("invalid") << QDateTime() << u"4294967295"_s;
}

void TestReminders::scheduleAtTheGivenTime()
{
    QFETCH(QDateTime, when);
    QFETCH(QString, seconds);

    startEmpty();
    const Reminder *a = watch(u"a"_s, u"1"_s);
    const QDBusMessage call = create(u"1"_s, when);
    const QStringList steps = call.arguments().constFirst().toStringList();
    QCOMPARE(steps.value(2), u"ticker "_s + seconds);
    QCOMPARE(steps.value(7), u"triggerTime="_s + seconds);
    m_daemon->reply(call, {1U});
    QTRY_VERIFY(a->exists());
    QCOMPARE(a->when(), when);
    QCOMPARE(a->when().timeSpec(), when.isValid() ? Qt::UTC : a->when().timeSpec());
}

void TestReminders::publishTheNotificationInOrder()
{
    startEmpty();
    const QDBusMessage call = create(u"1"_s);
    m_platform->takeCalls();
    m_platform->nextNotificationId = 7;
    m_daemon->reply(call, {3000000000U});
    m_daemon->settle();
    const QString action =
        u"{\"arguments\":[[\"callHistory\"]],\"iface\":\"com.nokia.MApplicationIf\",\"method\":"
        u"\"launch\","
        "\"name\":\"%1\",\"path\":\"/org/maemo/m\",\"service\":\"com.nokia.telephony.callhistory\"}"_s;
    QCOMPARE(m_platform->takeCalls(),
             QStringList({u"Notification()"_s, u"setAppName(app)"_s,
                          u"setCategory(x-nimbo-call-reminder)"_s, u"setSummary(title)"_s,
                          u"setBody(text)"_s, u"setUrgency(0)"_s, u"setReplacesId(0)"_s,
                          u"setHintValue(x-nimbo-alarm-cookie, uint 3000000000)"_s,
                          u"setRemoteActions(["_s + action.arg(u"default"_s) + u','
                              + action.arg(u"app"_s) + u"])"_s,
                          u"publish()"_s, u"~Notification()"_s}));
}

void TestReminders::reportACreatedReminder()
{
    startEmpty();
    watch(u"a"_s, u"1"_s);
    watch(u"b"_s, u"2"_s);
    watch(u"c"_s, u" 1"_s);
    createReminder(u"1"_s, 5);
    const QString due = u"yes 2030-01-02T12:00:00Z"_s;
    const QStringList expected{u"a when: "_s + due, u"a exists: "_s + due, u"c when: "_s + due,
                               u"c exists: "_s + due};
    QCOMPARE(takeEvents(), expected);
    createReminder(u"1"_s, 6); // The same reminder again is reported all the same.
    QCOMPARE(takeEvents(), expected);
}

void TestReminders::chooseTheCookieToReplace_data()
{
    QTest::addColumn<QStringList>("numbers"); // Each has an alarm, unless it begins with '!'.
    QTest::addColumn<QString>("number");
    QTest::addColumn<uint>("cookie"); // The place in numbers, from 1; 0 for a new alarm.

    QTest::newRow("none") << QStringList() << u"1"_s << 0U;
    QTest::newRow("another") << QStringList{u"2"_s} << u"1"_s << 0U;
    QTest::newRow("exact") << QStringList{u"2"_s, u"1"_s} << u"1"_s << 2U;
    QTest::newRow("exact, written otherwise") << QStringList{u"12"_s} << u"1 2"_s << 1U;
    QTest::newRow("loose") << QStringList{u"a/1"_s, u"2"_s} << u"b/1"_s << 1U;
    QTest::newRow("exact without an alarm") << QStringList{u"!a/1"_s, u"2"_s} << u"a/1"_s << 0U;
    QTest::newRow("loose without an alarm") << QStringList{u"!a/1"_s, u"2"_s} << u"b/1"_s << 0U;
}

void TestReminders::chooseTheCookieToReplace()
{
    QFETCH(QStringList, numbers);
    QFETCH(QString, number);
    QFETCH(uint, cookie);

    startEmpty();
    uint next = 0;
    for (const QString &known : numbers) {
        ++next;
        if (known.startsWith(u'!'))
            watch(known, known.mid(1));
        else
            createReminder(known, next);
    }
    const QDBusMessage call = create(number);
    QCOMPARE(call.member(), cookie == 0 ? u"add_event"_s : u"replace_event"_s);
    QCOMPARE(call.arguments().value(1).toUInt(), cookie);
}

void TestReminders::readTheCookieOfAReply_data()
{
    QTest::addColumn<QVariant>("reply");
    QTest::addColumn<uint>("cookie");

    QTest::newRow("a number") << QVariant(5U) << 5U;
    QTest::newRow("the largest") << QVariant(4294967295U) << 4294967295U;
    QTest::newRow("a signed number") << QVariant(5) << 5U;
    QTest::newRow("a long number") << QVariant(qulonglong{5}) << 5U;
    QTest::newRow("a text") << QVariant(u"5"_s) << 5U;
    QTest::newRow("a variant") << QVariant::fromValue(QDBusVariant(5U)) << 0U;
}

void TestReminders::readTheCookieOfAReply()
{
    QFETCH(QVariant, reply);
    QFETCH(uint, cookie);

    startEmpty();
    const Reminder *a = watch(u"a"_s, u"1"_s);
    m_daemon->reply(create(u"1"_s), {reply});
    m_daemon->settle();
    QCOMPARE(a->exists(), cookie != 0);
    if (cookie == 0)
        QCOMPARE(log(), QStringList(u"warning: Failed to create alarm"_s));
    else
        QCOMPARE(create(u"1"_s).arguments().value(1), QVariant(cookie));
}

void TestReminders::warnOfAnAlarmThatIsNotMade_data()
{
    QTest::addColumn<QVariantList>("reply");

    QTest::newRow("an error") << QVariantList{QVariant()};
    QTest::newRow("0") << QVariantList{0U};
    QTest::newRow("a word") << QVariantList{u"five"_s};
    QTest::newRow("nothing") << QVariantList();
    QTest::newRow("a list") << QVariantList{QVariant(QVariantList{5U})};
    QTest::newRow("a map") << QVariantList{QVariantMap{{u"a"_s, 5}}};
    QTest::newRow("an array") << QVariantList{QVariant::fromValue(QList<uint>{5})};
}

void TestReminders::warnOfAnAlarmThatIsNotMade()
{
    QFETCH(QVariantList, reply);

    startEmpty();
    const Reminder *a = watch(u"a"_s, u"1"_s);
    const QDBusMessage call = create(u"1"_s);
    m_platform->takeCalls();
    if (reply.size() == 1 && !reply.constFirst().isValid())
        m_daemon->fail(call, u"com.example.Error"_s, u"no"_s);
    else
        m_daemon->reply(call, reply);
    m_daemon->settle();
    QCOMPARE(log(), QStringList(u"warning: Failed to create alarm"_s));
    QCOMPARE(m_platform->takeCalls(), QStringList());
    QVERIFY(!a->exists());
    QVERIFY(!a->when().isValid());
    QCOMPARE(takeEvents(), QStringList());
    QCOMPARE(create(u"1"_s).member(), u"add_event"_s);
}

void TestReminders::warnOfAnException_data()
{
    QTest::addColumn<bool>("building");
    QTest::addColumn<bool>("replacing");

    QTest::newRow("building") << true << false;
    QTest::newRow("sending") << false << false;
    QTest::newRow("replacing") << false << true;
}

void TestReminders::warnOfAnException()
{
    QFETCH(bool, building);
    QFETCH(bool, replacing);

    startEmpty();
    if (replacing)
        createReminder(u"1"_s, 1);
    (building ? m_platform->throwFromSetAttribute : m_platform->throwFromSending) = true;
    m_reminders->createWithStrings(u"1"_s, noon, u"app"_s, u"contact"_s, u"title"_s, u"text"_s);
    QCOMPARE(log(), QStringList(u"warning:  Timed triggered an exception"_s));
    m_daemon->settle();
    QCOMPARE(m_daemon->waiting(), 0);
    QCOMPARE(create(u"1"_s).member(), replacing ? u"replace_event"_s : u"add_event"_s);
}

void TestReminders::lookTheRecordUpAgainWhenTheReplyComes()
{
    startEmpty();
    const QDBusMessage call = create(u"a/1"_s);
    watch(u"b"_s, u"b/1"_s); // The number will find this record loosely.
    m_daemon->reply(call, {5U});
    m_daemon->settle();
    QCOMPARE(takeEvents(),
             QStringList(
                 {u"b when: yes 2030-01-02T12:00:00Z"_s, u"b exists: yes 2030-01-02T12:00:00Z"_s}));
    QCOMPARE(create(u"b/1"_s).arguments().value(1), QVariant(5U));
}

void TestReminders::takeRepliesInAnyOrder()
{
    startEmpty();
    const Reminder *a = watch(u"a"_s, u"1"_s);
    const QDBusMessage first = create(u"1"_s, noon);
    const QDBusMessage second = create(u"1"_s, noon.addSecs(60));
    QCOMPARE(second.member(), u"add_event"_s); // The first alarm was not known yet.
    m_daemon->reply(second, {8U});
    m_daemon->settle();
    QCOMPARE(a->when(), noon.addSecs(60));
    m_daemon->reply(first, {7U});
    m_daemon->settle();
    QCOMPARE(a->when(), noon);
    QCOMPARE(create(u"1"_s).arguments().value(1), QVariant(7U));
}

void TestReminders::ignoreRepliesOnceTheyAreGone()
{
    startEmpty();
    const Reminder *a = watch(u"a"_s, u"1"_s);
    const QDBusMessage call = create(u"1"_s);
    m_platform->takeCalls();
    m_reminders.reset();
    m_daemon->reply(call, {5U});
    m_daemon->settle();
    QCOMPARE(m_platform->takeCalls(), QStringList());
    QVERIFY(!a->exists());
    QCOMPARE(a->reminders(), nullptr);
}

void TestReminders::keepTheIdWithoutAnAnswer()
{
    startEmpty();
    const Reminder *a = watch(u"a"_s, u"1"_s);
    m_platform->nextNotificationId = 0;
    createReminder(u"1"_s, 5);
    QVERIFY(a->exists()); // The lack of the alarm is not known.
    m_platform->nextNotificationId = 3;
    createReminder(u"1"_s, 6);
    m_platform->nextNotificationId = 0;
    createReminder(u"1"_s, 7);
    m_notifications->emitSignal(u"org.freedesktop.Notifications"_s, u"NotificationClosed"_s,
                                {3U, 1U});
    m_daemon->settle();
    watch(u"b"_s, u"1"_s);
    QVERIFY(!m_watching.back()->exists()); // The id was 3 until now.
}

void TestReminders::replaceTheNotification()
{
    startEmpty();
    m_platform->nextNotificationId = 7;
    createReminder(u"1"_s, 5);
    m_daemon->reply(create(u"1"_s), {6U});
    m_daemon->settle();
    QVERIFY(m_platform->takeCalls().contains(u"setReplacesId(7)"_s));
}

void TestReminders::publishAnewAfterTheNotificationWasClosed()
{
    startEmpty();
    m_platform->nextNotificationId = 7;
    createReminder(u"1"_s, 5);
    m_notifications->emitSignal(u"org.freedesktop.Notifications"_s, u"NotificationClosed"_s,
                                {7U, 2U});
    m_daemon->settle();
    const QDBusMessage call = create(u"1"_s);
    QCOMPARE(call.member(), u"replace_event"_s);
    m_daemon->reply(call, {6U});
    m_daemon->settle();
    QVERIFY(m_platform->takeCalls().contains(u"setReplacesId(0)"_s));
}

/// The publications come in the order of the alarms, and none is nested in another.
void TestReminders::publishOneAfterTheOther()
{
    startEmpty();
    watch(u"a"_s, u"1"_s);
    watch(u"b"_s, u"2"_s);
    watch(u"c"_s, u"3"_s);
    const QDBusMessage first = create(u"1"_s);
    const QDBusMessage second = create(u"2"_s);
    const QDBusMessage third = create(u"3"_s);
    takePublications();
    whilePublishing([&] {
        m_daemon->reply(third, {6U});
        m_daemon->reply(second, {7U});
        m_daemon->settle();
        QCOMPARE(takePublications(), QStringList(u"5 for 0"_s));
        QCOMPARE(takeEvents(), QStringList());
    });
    m_daemon->reply(first, {5U});
    QTRY_COMPARE(m_events.size(), 6);
    QCOMPARE(takePublications(), QStringList({u"6 for 0"_s, u"7 for 0"_s}));
    const QString due = u"yes 2030-01-02T12:00:00Z"_s;
    QCOMPARE(takeEvents(),
             QStringList({u"a when: "_s + due, u"a exists: "_s + due, u"c when: "_s + due,
                          u"c exists: "_s + due, u"b when: "_s + due, u"b exists: "_s + due}));
}

void TestReminders::endAsOneNotificationForOneNumber()
{
    startEmpty();
    watch(u"a"_s, u"1"_s);
    m_platform->nextNotificationId = 7;
    const QDBusMessage first = create(u"1"_s, noon);
    takePublications();
    whilePublishing([&] {
        const QDBusMessage second = create(u"1"_s, noon.addSecs(60));
        QCOMPARE(second.member(), u"replace_event"_s);
        QCOMPARE(second.arguments().at(1), QVariant(5U));
        m_daemon->reply(second, {6U});
    });
    m_daemon->reply(first, {5U});
    QTRY_COMPARE(m_events.size(), 4);
    QCOMPARE(takePublications(), QStringList({u"5 for 0"_s, u"6 for 7"_s}));
    QCOMPARE(takeEvents(),
             QStringList(
                 {u"a when: yes 2030-01-02T12:00:00Z"_s, u"a exists: yes 2030-01-02T12:00:00Z"_s,
                  u"a when: yes 2030-01-02T12:01:00Z"_s, u"a exists: yes 2030-01-02T12:01:00Z"_s}));
}

/// One publication is under way, and one waits for its turn.
void TestReminders::takeBackWhatFiresWhilePublishing()
{
    startEmpty();
    watch(u"a"_s, u"1"_s);
    watch(u"b"_s, u"2"_s);
    m_platform->nextNotificationId = 7;
    const QDBusMessage first = create(u"1"_s);
    const QDBusMessage second = create(u"2"_s);
    takePublications();
    whilePublishing([&] {
        m_daemon->reply(second, {6U});
        m_daemon->emitSignal(u"com.nimbo.timed"_s, u"alarm_triggers_changed"_s,
                             {QVariant::fromValue(Maemo::Timed::Event::Triggers())});
    });
    m_daemon->reply(first, {5U});
    const QDBusMessage close = m_notifications->next(u"CloseNotification"_s);
    QCOMPARE(close.arguments(), QVariantList{7U});
    m_daemon->settle();
    QCOMPARE(takePublications(), QStringList(u"5 for 0"_s));
    // This is the same for every alarm that goes.
    QCOMPARE(takeEvents(), QStringList({u"a exists: no "_s, u"b exists: no "_s}));
    createReminder(u"2"_s, 9);
    QVERIFY(m_watching.back()->exists());
}

void TestReminders::takeBackWhatIsRemovedWhilePublishing()
{
    startEmpty();
    Reminder *a = watch(u"a"_s, u"1"_s);
    m_platform->nextNotificationId = 7;
    createReminder(u"1"_s, 5);
    const QDBusMessage again = create(u"1"_s, noon.addSecs(60));
    takeEvents();
    whilePublishing([&] { a->remove(); });
    m_daemon->reply(again, {6U});
    QCOMPARE(m_notifications->next(u"CloseNotification"_s).arguments(), QVariantList{7U});
    QCOMPARE(m_daemon->next(u"cancel"_s).arguments(), QVariantList{6U});
    // The notification is closed again, because it may have been shown again since then.
    QCOMPARE(m_notifications->next(u"CloseNotification"_s).arguments(), QVariantList{7U});
    m_daemon->settle();
    QCOMPARE(takeEvents(), QStringList(u"a exists: no 2030-01-02T12:00:00Z"_s));
}

void TestReminders::publishAnewWhatIsMadeAnewWhilePublishing()
{
    startEmpty();
    Reminder *a = watch(u"a"_s, u"1"_s);
    m_platform->nextNotificationId = 7;
    createReminder(u"1"_s, 5);
    const QDBusMessage again = create(u"1"_s, noon.addSecs(60));
    takeEvents();
    takePublications();
    whilePublishing([&] {
        a->remove();
        QCOMPARE(m_daemon->next(u"cancel"_s).arguments(), QVariantList{6U});
        const QDBusMessage anew = create(u"1"_s, noon.addSecs(120));
        QCOMPARE(anew.member(), u"add_event"_s);
        m_daemon->reply(anew, {8U});
    });
    m_daemon->reply(again, {6U});
    QTRY_COMPARE(m_events.size(), 3);
    m_notifications->settle();
    m_notifications->forget(); // The notification is closed, once or twice.
    QCOMPARE(takePublications(), QStringList({u"6 for 7"_s, u"8 for 0"_s}));
    QCOMPARE(
        takeEvents(),
        QStringList({u"a exists: no 2030-01-02T12:00:00Z"_s, u"a when: yes 2030-01-02T12:02:00Z"_s,
                     u"a exists: yes 2030-01-02T12:02:00Z"_s}));
}

void TestReminders::noticeWhatIsClosedWhilePublishing_data()
{
    QTest::addColumn<uint>("closed");
    QTest::addColumn<bool>("replaces");
    QTest::addColumn<bool>("isShown");

    QTest::newRow("the new one") << 7U << false << false;
    QTest::newRow("another") << 9U << false << true;
    QTest::newRow("one that is shown again") << 7U << true << true;
}

/// A new notification can only be closed after it was shown, which is before its id arrives.
void TestReminders::noticeWhatIsClosedWhilePublishing()
{
    QFETCH(uint, closed);
    QFETCH(bool, replaces);
    QFETCH(bool, isShown);

    startEmpty();
    m_platform->nextNotificationId = 7;
    if (replaces)
        createReminder(u"1"_s, 5);
    const QDBusMessage call = create(u"1"_s);
    whilePublishing([&] {
        m_notifications->emitSignal(u"org.freedesktop.Notifications"_s, u"NotificationClosed"_s,
                                    {closed, 1U});
    });
    m_daemon->reply(call, {6U});
    m_daemon->settle();
    QCOMPARE(watch(u"b"_s, u"1"_s)->exists(), isShown);
}

void TestReminders::outliveTheirStoreWhilePublishing()
{
    startEmpty();
    const Reminder *a = watch(u"a"_s, u"1"_s);
    const QDBusMessage first = create(u"1"_s);
    const QDBusMessage second = create(u"2"_s);
    takePublications();
    whilePublishing([&] {
        m_daemon->reply(second, {6U});
        m_daemon->settle();
        m_reminders.reset();
    });
    m_daemon->reply(first, {5U});
    m_daemon->settle();
    QCOMPARE(takePublications(), QStringList(u"5 for 0"_s));
    QCOMPARE(takeEvents(), QStringList());
    QCOMPARE(a->reminders(), nullptr);
}

/// A system bus allows a connection to wait for 128 answers, and refuses further calls.
void TestReminders::makeSomeAlarmsAtATime()
{
    startEmpty();
    for (int i = 0; i < 300; ++i)
        m_reminders->createWithStrings(QString::number(i), noon, u"app"_s, u"contact"_s, u"title"_s,
                                       u"text"_s);
    m_daemon->settle();
    for (uint i = 0; i < 300; ++i) {
        QVERIFY2(m_daemon->waiting() <= 64, qPrintable(QString::number(m_daemon->waiting())));
        const QDBusMessage call = m_daemon->next(u"add_event"_s);
        QCOMPARE(call.arguments().constFirst().toStringList().value(6), u"phoneNumber=%1"_s.arg(i));
        m_daemon->reply(call, {i + 1});
    }
    int published = 0;
    QTRY_COMPARE(published += static_cast<int>(takePublications().size()), 300);
}

void TestReminders::closeSomeLeftoversAtATime()
{
    QVector<NotificationData> leftovers;
    for (uint id = 1; id <= 1000; ++id)
        leftovers.append(notification(id, id));
    start({}, leftovers);
    for (uint id = 1; id <= 1000; ++id) {
        QVERIFY(m_notifications->waiting() <= 64);
        const QDBusMessage call = m_notifications->next(u"CloseNotification"_s);
        QCOMPARE(call.arguments(), QVariantList{id});
        if (id % 2 == 0)
            m_notifications->reply(call, {});
        else
            m_notifications->fail(call, u"com.example.Error"_s, u"no"_s);
    }
}

void TestReminders::askForNoAnswerThatNobodyReads()
{
    startEmpty();
    Reminder *a = watch(u"a"_s, u"1"_s);
    createReminder(u"1"_s, 5);
    a->remove();
    QVERIFY(!m_daemon->next(u"cancel"_s).isReplyRequired());
    QVERIFY(!m_notifications->next(u"CloseNotification"_s).isReplyRequired());
}

void TestReminders::leaveNothingOfFinishedCalls()
{
    startEmpty();
    createReminder(u"1"_s, 1);
    const WatcherCount watchers;
    for (uint cookie = 2; cookie < 100; ++cookie)
        createReminder(u"1"_s, cookie);
    m_daemon->settle();
    QTRY_COMPARE(watchers.value(), 0);
}

/// Only the first record forgets a destroyed object. Another one lists it as null. No more memory
/// than that is used: no more than for an alarm, whose record has other parts. The containers of
/// Qt 6 round some of them up further than others.
void TestReminders::keepNothingOfDestroyedReminders()
{
    constexpr uint many = 10000;
    AttributesByCookie alarms;
    for (uint i = 1; i <= many; ++i)
        alarms.insert(i, attributes(u"alarm %1"_s.arg(i)));
    const size_t before = allocatedBytes();
    start(alarms, {});
    const size_t withAlarms = allocatedBytes();
    {
        std::vector<std::unique_ptr<Reminder>> watching(many);
        for (uint i = 0; i < many; ++i) {
            watching[i] = std::make_unique<Reminder>();
            watching[i]->setReminders(m_reminders.get());
            watching[i]->setPhoneNumber(u"watch %1"_s.arg(i));
        }
    }
    m_platform->takeCalls();
    const size_t withDestroyed = allocatedBytes();
    const auto each = (withAlarms - before) / many;
    const auto eachDestroyed = (withDestroyed - withAlarms) / many;
    constexpr uint percent = QT_VERSION_MAJOR == 5 ? 100 : 110;
    QVERIFY2(100 * eachDestroyed <= percent * each,
             qPrintable(u"%1 %2"_s.arg(eachDestroyed).arg(each)));
}

void TestReminders::bindToTheExactNumber()
{
    startEmpty();
    createReminder(u"2"_s, 2);
    createReminder(u"1"_s, 5);
    Reminder *a = watch(u"a"_s, QString());
    a->setPhoneNumber(u" 1"_s);
    const QString due = u"yes 2030-01-02T12:00:00Z"_s;
    QCOMPARE(takeEvents(),
             QStringList({u"a when: "_s + due, u"a exists: "_s + due, u"a number: "_s + due}));
    QCOMPARE(a->phoneNumber(), u" 1"_s);
}

void TestReminders::bindToTheFirstLooseNumber()
{
    startEmpty();
    createReminder(u"a/1"_s, 5);
    createReminder(u"2"_s, 6);
    QVERIFY(watch(u"b"_s, u"b/1"_s)->exists());
    QVERIFY(!watch(u"c"_s, u"b/3"_s)->exists());
}

void TestReminders::bindToANewRecord()
{
    startEmpty();
    const Reminder *a = watch(u"a"_s, u"1"_s);
    QVERIFY(!a->exists());
    QVERIFY(!a->when().isValid());
    createReminder(u"1"_s, 5);
    QVERIFY(a->exists());
}

void TestReminders::reportOnlyWhatDiffersWhenBinding()
{
    startEmpty();
    createReminder(u"1"_s, 5);
    createReminder(u"2"_s, 6);
    createReminder(u"3"_s, 7, noon.addSecs(60));
    Reminder *a = watch(u"a"_s, u"1"_s);
    a->setPhoneNumber(u"2"_s); // The reminder is due at the same time.
    QCOMPARE(takeEvents(), QStringList(u"a number: yes 2030-01-02T12:00:00Z"_s));
    a->setPhoneNumber(u"3"_s);
    QCOMPARE(takeEvents(),
             QStringList(
                 {u"a when: yes 2030-01-02T12:01:00Z"_s, u"a number: yes 2030-01-02T12:01:00Z"_s}));
}

void TestReminders::keepWhenForANewNumber()
{
    startEmpty();
    createReminder(u"1"_s, 5);
    Reminder *a = watch(u"a"_s, u"1"_s);
    a->setPhoneNumber(u"2"_s);
    const QString was = u"no 2030-01-02T12:00:00Z"_s;
    QCOMPARE(takeEvents(), QStringList({u"a exists: "_s + was, u"a number: "_s + was}));
}

void TestReminders::eraseRecordsThatNobodyUses()
{
    startEmpty();
    Reminder *a = watch(u"a"_s, u"a/1"_s);
    a->setPhoneNumber(u"2"_s); // The record of a/1 goes, so b/1 gets its own.
    const QDBusMessage call = create(u"b/1"_s);
    m_daemon->reply(call, {5U});
    m_daemon->settle();
    a->setPhoneNumber(u"b/1"_s);
    QVERIFY(a->exists());
    a->setPhoneNumber(u"a/1"_s);
    QVERIFY(a->exists()); // The number matches loosely.
    QCOMPARE(create(u"c/1"_s).arguments().value(1), QVariant(5U));
}

void TestReminders::takeAReminderOutOfOtherRecords()
{
    startEmpty();
    const Reminder *first = watch(u"first"_s, u"0"_s); // No record below is the first one.
    Reminder *a = watch(u"a"_s, u"1"_s);
    a->setPhoneNumber(u"2"_s);
    a->setPhoneNumber(u"3"_s);
    takeEvents();
    createReminder(u"1"_s, 5);
    createReminder(u"2"_s, 6);
    QCOMPARE(takeEvents(), QStringList());
    createReminder(u"3"_s, 7);
    QCOMPARE(takeEvents().size(), 2);
    QVERIFY(a->exists() && !first->exists());
}

void TestReminders::listAReminderTwice()
{
    startEmpty();
    Reminder *a = watch(u"a"_s, u"1"_s);
    a->setPhoneNumber(u" 1"_s);
    QCOMPARE(takeEvents(), QStringList(u"a number: no "_s));
    createReminder(u"1"_s, 5);
    const QString due = u"yes 2030-01-02T12:00:00Z"_s;
    QCOMPARE(takeEvents(),
             QStringList({u"a when: "_s + due, u"a exists: "_s + due, u"a when: "_s + due,
                          u"a exists: "_s + due}));

    a->setPhoneNumber(QString()); // One of the two entries goes.
    takeEvents();
    createReminder(u"1"_s, 6);
    QCOMPARE(takeEvents(), QStringList({u"a when: "_s + due, u"a exists: "_s + due}));
}

void TestReminders::setTheSameNumberSilently()
{
    startEmpty();
    Reminder *a = watch(u"a"_s, u"1"_s);
    m_platform->takeCalls();
    a->setPhoneNumber(u"1"_s);
    QCOMPARE(takeEvents(), QStringList());
    QCOMPARE(m_platform->takeCalls(), QStringList());
}

void TestReminders::clearTheNumber()
{
    startEmpty();
    createReminder(u"1"_s, 5);
    Reminder *a = watch(u"a"_s, u"1"_s);
    Reminder *b = watch(u"b"_s, u"2"_s);
    a->setPhoneNumber(QString());
    b->setPhoneNumber(QString());
    const QString was = u"no 2030-01-02T12:00:00Z"_s;
    QCOMPARE(takeEvents(),
             QStringList({u"a exists: "_s + was, u"a number: "_s + was, u"b number: no "_s}));
}

void TestReminders::detachFromTheFirstRecordAlone()
{
    startEmpty();
    Reminder *a = watch(u"a"_s, u"1"_s);
    Reminder *b = watch(u"b"_s, u"2"_s);
    b->setPhoneNumber(QString()); // b stays listed, in the second record.
    a->setPhoneNumber(QString()); // a goes, and so does the first record.
    takeEvents();
    createReminder(u"1"_s, 5);
    QCOMPARE(takeEvents(), QStringList());
    createReminder(u"2"_s, 6);
    QCOMPARE(takeEvents(),
             QStringList(
                 {u"b when: yes 2030-01-02T12:00:00Z"_s, u"b exists: yes 2030-01-02T12:00:00Z"_s}));
}

void TestReminders::eraseTheFirstRecordWhenNobodyUsesIt_data()
{
    QTest::addColumn<bool>("byItsAlarm");

    QTest::newRow("its last reminder goes") << false;
    QTest::newRow("its alarm goes") << true;
}

/// The second record then is the first one, and unbinds its reminder.
void TestReminders::eraseTheFirstRecordWhenNobodyUsesIt()
{
    QFETCH(bool, byItsAlarm);

    startEmpty();
    if (byItsAlarm)
        createReminder(u"1"_s, 5);
    Reminder *a = watch(u"a"_s, byItsAlarm ? QString() : u"1"_s);
    Reminder *b = watch(u"b"_s, u"2"_s);
    if (byItsAlarm) {
        m_daemon->emitSignal(u"com.nimbo.timed"_s, u"alarm_triggers_changed"_s,
                             {QVariant::fromValue(Maemo::Timed::Event::Triggers())});
        QCOMPARE(m_notifications->next(u"CloseNotification"_s).arguments(), QVariantList{1U});
    } else {
        a->setPhoneNumber(QString());
    }
    b->setPhoneNumber(QString());
    takeEvents();
    createReminder(u"2"_s, 6);
    QCOMPARE(takeEvents(), QStringList());
}

void TestReminders::setTheStoreSilently()
{
    startEmpty();
    createReminder(u"1"_s, 5);
    Reminder *a = watch(u"a"_s, u"1"_s);
    QVERIFY(a->exists());
    a->setReminders(nullptr);
    QVERIFY(!a->exists());
    a->setReminders(nullptr);
    a->setReminders(m_reminders.get());
    QVERIFY(a->exists());
    const QString due = u" 2030-01-02T12:00:00Z"_s;
    QCOMPARE(takeEvents(), QStringList({u"a exists: no"_s + due, u"a exists: yes"_s + due}));

    Reminder withoutNumber;
    m_platform->takeCalls();
    withoutNumber.setReminders(m_reminders.get());
    QCOMPARE(m_platform->takeCalls(), QStringList());
}

void TestReminders::forgetADestroyedStore()
{
    startEmpty();
    createReminder(u"1"_s, 5);
    Reminder *a = watch(u"a"_s, u"1"_s);
    m_reminders.reset();
    QCOMPARE(a->reminders(), nullptr);
    QVERIFY(a->exists()); // The state has not changed.
    QCOMPARE(a->when(), noon);
    a->remove();
    a->setPhoneNumber(u"2"_s);
    a->setReminders(nullptr);
    QCOMPARE(takeEvents(), QStringList(u"a number: yes 2030-01-02T12:00:00Z"_s));
}

void TestReminders::neverTouchADestroyedReminder()
{
    startEmpty();
    watch(u"a"_s, u"1"_s);
    watch(u"b"_s, u"2"_s);
    createReminder(u"2"_s, 5);
    takeEvents();
    m_watching.pop_back(); // b is destroyed, and stays listed in the second record.
    QCOMPARE(takeEvents(), QStringList(u"b exists: no 2030-01-02T12:00:00Z"_s));
    createReminder(u"2"_s, 6);
    m_daemon->emitSignal(u"com.nimbo.timed"_s, u"alarm_triggers_changed"_s,
                         {QVariant::fromValue(Maemo::Timed::Event::Triggers())});
    QCOMPARE(m_notifications->next(u"CloseNotification"_s).arguments(), QVariantList{1U});
    // The record still exists: a number that matches it loosely finds it.
    for (int i = 0; i < 100; ++i) {
        watch(u"c"_s, u"2"_s);
        m_watching.pop_back();
    }
    createReminder(u"x/2"_s, 7);
    QVERIFY(watch(u"d"_s, u"2"_s)->exists());
    QCOMPARE(takeEvents(), QStringList());
}

void TestReminders::removeAReminder()
{
    startEmpty();
    m_platform->nextNotificationId = 7;
    createReminder(u"1"_s, 5);
    Reminder *a = watch(u"a"_s, u"1"_s);
    watch(u"b"_s, u"1"_s);
    a->remove();
    const QString was = u" no 2030-01-02T12:00:00Z"_s;
    QCOMPARE(takeEvents(), QStringList({u"a exists:"_s + was, u"b exists:"_s + was}));
    QCOMPARE(m_notifications->next(u"CloseNotification"_s).arguments(), QVariantList{7U});
    const QDBusMessage cancel = m_daemon->next(u"cancel"_s);
    QCOMPARE(cancel.arguments(), QVariantList{5U});
    m_daemon->fail(cancel, u"com.example.Error"_s, u"not noticed"_s);
    a->remove();
    m_daemon->settle();
    QCOMPARE(create(u"1"_s).member(), u"add_event"_s); // The record exists, without an alarm.
}

void TestReminders::removeNothingThatDoesNotExist()
{
    start({{5, attributes(u"1"_s)}}, {});
    Reminder *a = watch(u"a"_s, u"1"_s);
    a->remove(); // An alarm alone is no reminder.
    Reminder unbound;
    unbound.remove();
    m_daemon->settle();
    QCOMPARE(takeEvents(), QStringList());
    QCOMPARE(create(u"1"_s).arguments().value(1), QVariant(5U));
}

void TestReminders::removeWithoutANotification()
{
    startEmpty();
    createReminder(u"1"_s, 5);
    Reminder *a = watch(u"a"_s, u"1"_s);
    m_notifications->emitSignal(u"org.freedesktop.Notifications"_s, u"NotificationClosed"_s,
                                {1U, 2U});
    m_daemon->settle();
    QVERIFY(a->exists());
    a->remove();
    QCOMPARE(m_daemon->next(u"cancel"_s).arguments(), QVariantList{5U});
    QCOMPARE(takeEvents(), QStringList(u"a exists: no 2030-01-02T12:00:00Z"_s));
}

void TestReminders::dropAlarmsThatHaveGone()
{
    startEmpty();
    createReminder(u"1"_s, 5);
    createReminder(u"2"_s, 6);
    createReminder(u"3"_s, 7);
    watch(u"a"_s, u"1"_s);
    watch(u"b"_s, u"3"_s);
    watch(u"c"_s, u"3"_s);
    Maemo::Timed::Event::Triggers triggers;
    triggers.insert(5, 1);
    triggers.insert(9, 1);
    m_daemon->emitSignal(u"com.nimbo.timed"_s, u"alarm_triggers_changed"_s,
                         {QVariant::fromValue(triggers)});
    for (const uint id : {2U, 3U})
        QCOMPARE(m_notifications->next(u"CloseNotification"_s).arguments(), QVariantList{id});
    const QString was = u" no 2030-01-02T12:00:00Z"_s;
    QCOMPARE(takeEvents(), QStringList({u"b exists:"_s + was, u"c exists:"_s + was}));

    // The record of 2, which no object watched, is gone. That of 3 is not.
    m_daemon->reply(create(u"x/2"_s), {8U});
    m_daemon->settle();
    watch(u"d"_s, u"2"_s);
    createReminder(u"x/3"_s, 9);
    QCOMPARE(takeEvents().size(), 4); // The events are those of b and c.
}

void TestReminders::followTriggersOfOthers()
{
    startEmpty();
    createReminder(u"1"_s, 5);
    watch(u"a"_s, u"1"_s);
    Maemo::Timed::Event::Triggers triggers;
    triggers.insert(5, 99);
    m_daemon->emitSignal(u"com.nimbo.timed"_s, u"alarm_triggers_changed"_s,
                         {QVariant::fromValue(triggers)});
    m_daemon->emitSignal(u"com.nimbo.timed"_s, u"alarm_triggers_changed"_s, {u"junk"_s});
    m_daemon->emitSignal(u"com.nimbo.timed"_s, u"alarm_triggers_changed"_s, {});
    m_daemon->settle();
    QCOMPARE(takeEvents(), QStringList());
}

void TestReminders::clearTheNotificationThatWasClosed()
{
    startEmpty();
    createReminder(u"1"_s, 5);
    createReminder(u"2"_s, 6);
    const Reminder *a = watch(u"a"_s, u"1"_s);
    m_notifications->emitSignal(u"org.freedesktop.Notifications"_s, u"NotificationClosed"_s,
                                {1U, 2U});
    m_notifications->emitSignal(u"org.freedesktop.Notifications"_s, u"NotificationClosed"_s,
                                {77U, 3U});
    m_notifications->emitSignal(u"org.freedesktop.Notifications"_s, u"NotificationClosed"_s,
                                {0U, 3U});
    m_daemon->settle();
    QCOMPARE(takeEvents(), QStringList());
    QVERIFY(a->exists()); // It stays true until the object is bound anew.
    QVERIFY(!watch(u"b"_s, u"1"_s)->exists());
    QVERIFY(watch(u"c"_s, u"2"_s)->exists());
}

void TestReminders::surviveTheirHandlers_data()
{
    QTest::addColumn<QString>("cause");
    QTest::addColumn<QString>("deed");

    for (const QString &cause :
         {u"created"_s, u"gone"_s, u"removed"_s, u"bound"_s, u"matched"_s, u"detached"_s}) {
        for (const QString &deed :
             {u"remove this"_s, u"remove another"_s, u"clear the number"_s, u"set another number"_s,
              u"clear the store"_s, u"destroy this"_s, u"destroy another"_s, u"destroy all"_s,
              u"destroy the store"_s, u"create some"_s, u"create a reminder"_s,
              u"unbind another"_s})
            QTest::newRow(qUtf8Printable(u"%1: %2"_s.arg(cause, deed))) << cause << deed;
    }
}

/// Three objects watch one number, and one object watches another. The second one has a handler
/// that runs the deed once, when the cause makes the object report a change.
void TestReminders::surviveTheirHandlers()
{
    QFETCH(QString, cause);
    QFETCH(QString, deed);

    if (cause == u"matched"_s) {
        m_reminders = std::make_unique<Reminders>();
    } else {
        startEmpty();
        createReminder(u"0"_s, 4);
        if (cause != u"created"_s)
            createReminder(u"1"_s, 5);
    }
    Reminder *other = watch(u"other"_s, u"0"_s);
    Reminder *a = watch(u"a"_s, u"1"_s);
    Reminder *b = watch(u"b"_s, cause == u"bound"_s ? u"2"_s : u"1"_s);
    Reminder *c = watch(u"c"_s, u"1"_s);
    const QPointer<Reminder> living(c);
    takeEvents();

    const auto destroy = [this](Reminder *reminder) {
        for (auto &watching : m_watching) {
            if (watching.get() == reminder) {
                reminder->disconnect(this);
                watching.reset();
            }
        }
    };
    // Whether the second object is destroyed by then.
    const bool isDestroyed = cause == u"detached"_s;
    const std::map<QString, std::function<void()>> deeds{
        {u"remove this"_s, [&] { b->remove(); }},
        {u"remove another"_s, [&] { other->remove(); }},
        {u"clear the number"_s, [&] { b->setPhoneNumber(QString()); }},
        {u"set another number"_s, [&] { b->setPhoneNumber(u"0"_s); }},
        {u"clear the store"_s, [&] { b->setReminders(nullptr); }},
        {u"destroy this"_s,
         [&] {
             if (!isDestroyed)
                 destroy(b);
         }},
        {u"destroy another"_s, [&] { destroy(c); }},
        {u"destroy all"_s,
         [&] {
             if (isDestroyed)
                 return;
             for (Reminder *reminder : {other, a, b, c})
                 destroy(reminder);
         }},
        {u"destroy the store"_s, [&] { m_reminders.reset(); }},
        {u"create some"_s,
         [&] {
             for (const QString &number : {u"1"_s, u"0"_s, u"7"_s, u"1"_s})
                 watch(u"new"_s, number);
         }},
        {u"create a reminder"_s,
         [&] {
             m_reminders->createWithStrings(u"1"_s, noon, u"app"_s, u"contact"_s, u"title"_s,
                                            u"text"_s);
         }},
        {u"unbind another"_s, [&] { c->setPhoneNumber(u"0"_s); }},
    };
    bool done = false;
    const auto act = [&] {
        if (!std::exchange(done, true))
            deeds.at(deed)();
    };
    connect(b, &Reminder::whenChanged, this, act);
    connect(b, &Reminder::existsChanged, this, act);

    const std::map<QString, std::function<void()>> causes{
        {u"created"_s, [&] { m_daemon->reply(create(u"1"_s), {5U}); }},
        {u"gone"_s,
         [&] {
             m_daemon->emitSignal(u"com.nimbo.timed"_s, u"alarm_triggers_changed"_s,
                                  {QVariant::fromValue(Maemo::Timed::Event::Triggers())});
         }},
        {u"removed"_s, [&] { a->remove(); }},
        {u"bound"_s, [&] { b->setPhoneNumber(u"1"_s); }},
        {u"matched"_s,
         [&] {
             const AttributesByCookie alarms{{4, attributes(u"0"_s)}, {5, attributes(u"1"_s)}};
             const QVector<NotificationData> shown{notification(2, 5U), notification(1, 4U)};
             m_daemon->reply(m_daemon->next(u"query"_s), {QVariant(QVariantList{4U, 5U})});
             m_daemon->reply(m_daemon->next(u"get_attributes_by_cookies"_s),
                             {QVariant::fromValue(alarms)});
             m_notifications->reply(m_notifications->next(u"GetNotificationsByCategory"_s),
                                    {QVariant::fromValue(shown)});
         }},
        {u"detached"_s,
         [&] {
             const auto isSecond = [b](const auto &watching) { return watching.get() == b; };
             std::find_if(m_watching.begin(), m_watching.end(), isSecond)->reset();
         }},
    };
    causes.at(cause)();
    m_daemon->settle();
    QVERIFY(done);
    if (cause != u"bound"_s && cause != u"detached"_s) {
        // The third was told, unless it was destroyed or the store was.
        const bool told = !m_events.filter(QRegularExpression(u"^c "_s)).isEmpty();
        const bool gone = deed == u"destroy another"_s || deed == u"destroy all"_s
            || deed == u"destroy the store"_s;
        QVERIFY(told != gone);
        QCOMPARE(living.isNull(), deed == u"destroy another"_s || deed == u"destroy all"_s);
    }
    if (deed == u"remove this"_s && !living.isNull() && cause != u"bound"_s
        && cause != u"detached"_s)
        QVERIFY(!a->exists() && !b->exists() && !c->exists());
    m_watching.clear(); // Their handlers refer to variables of this function.
    m_reminders.reset();
    m_daemon->settle();
    m_notifications->settle();
    m_daemon->forget();
    m_notifications->forget();
}

QTEST_GUILESS_MAIN(TestReminders)

#include "tst_reminders.moc"
