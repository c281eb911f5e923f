// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "childprocess.h"
#include "literals.h"
#include "scriptedservice.h"
#include "uiundertest.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QDateTime>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QProcessEnvironment>
#include <QTest>

#include <csignal>
#include <map>
#include <memory>

#include <sys/types.h>

using AttributesByCookie = QMap<uint, QMap<QString, QString>>;

Q_DECLARE_METATYPE(AttributesByCookie)

struct Pair
{
    uint first;
    uint second;
};

Q_DECLARE_METATYPE(Pair)

QDBusArgument &operator<<(QDBusArgument &argument, const Pair &pair)
{
    argument.beginStructure();
    argument << pair.first << pair.second;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Pair &pair)
{
    argument.beginStructure();
    argument >> pair.first >> pair.second;
    argument.endStructure();
    return argument;
}

namespace {

const QString timed = u"com.nimbo.timed"_s;
const QString timedPath = u"/com/nimbo/timed"_s;
const QString notifications = u"org.freedesktop.Notifications"_s;
const QString notificationsPath = u"/org/freedesktop/Notifications"_s;
const QString timeDaemon = u"time-daemon"_s;
const QString notificationService = u"notification-service"_s;
const QString number = u"+1 (555) 010-0"_s;
const QString normalized = u"+15550100"_s;

constexpr qlonglong due = 1893585600; // 2030-01-02 12:00 UTC

/// Returns arguments of that signature, with meaningless numbers and texts.
QVariantList valuesOf(const QString &signature)
{
    const QMap<QString, QVariantList> values{
        {u""_s, {}},
        {u"u"_s, {9U}},
        {u"uuu"_s, {9U, 1U, 1U}},
        {u"su"_s, {u"9"_s, 1U}},
        {u"us"_s, {9U, u"1"_s}},
        {u"ii"_s, {9, 1}},
        {u"vv"_s, {QVariant::fromValue(QDBusVariant(9U)), QVariant::fromValue(QDBusVariant(1U))}},
        {u"(uu)u"_s, {QVariant::fromValue(Pair{9, 1}), 1U}},
        {u"u(uu)"_s, {9U, QVariant::fromValue(Pair{9, 1})}},
        {u"a{sv}u"_s, {QVariantMap{{u"9"_s, 1U}}, 1U}},
        {u"auu"_s, {QVariant::fromValue(QList<uint>{9}), 1U}},
        {u"uau"_s, {9U, QVariant::fromValue(QList<uint>{1})}},
        {u"(uu)"_s, {QVariant::fromValue(Pair{9, 1})}},
    };
    return values.value(signature);
}

} // namespace

/// Reminders of the built process, with services that are scripted message by message, and with
/// those of the simulated handset.
class TestReminderServices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void speakToTheServicesInOrder();
    void sendExactlyThis();
    void answerOthersWhileTheTimeDaemonHangs();
    void goOnWhileTheNotificationServiceHangs();
    void endWhileTheNotificationServiceHangs();
    void outliveClosingsOfAnyShape_data();
    void outliveClosingsOfAnyShape();
    void comeAndGoByTheHundred();

    void goWhenTheAlarmFires();
    void waitForServicesThatHang();
    void stayWhenTheNotificationIsDismissed();
    void goWhenTheyAreRemoved();
    void surviveARestartOfTheUi();
    void keepTheirTimeWhereTheClockChanges_data();
    void keepTheirTimeWhereTheClockChanges();
    void closeLeftovers();
    void tolerateMissingServices();
    void tolerateNoSystemBus();
    void tolerateADaemonThatDiesInACall();
    void returnWithTheDaemon();
    void surviveQmlHandlers_data();
    void surviveQmlHandlers();

private:
    bool startUi();
    void awaitItsFirstQuestions();
    bool startService(const QString &name);
    void endService(const QString &name, int signal);
    bool create(const QString &what = number, qlonglong seconds = due);
    QDBusMessage ask(const QDBusConnection &bus, const QString &service, const QString &path,
                     const QString &interface, const QString &method,
                     const QVariantList &arguments = {});
    QVariantList alarms();
    QVariant onlyAlarm();
    int notificationsShown();
    bool logsError(const QString &what);

    std::unique_ptr<UiUnderTest> m_ui;
    std::unique_ptr<QDBusConnection> m_system;
    std::map<QString, std::unique_ptr<ChildProcess>> m_services;
};

void TestReminderServices::initTestCase()
{
    qDBusRegisterMetaType<QList<uint>>();
    qDBusRegisterMetaType<Pair>();
    qDBusRegisterMetaType<QMap<QString, QString>>();
    qDBusRegisterMetaType<AttributesByCookie>();
}

void TestReminderServices::init()
{
    m_ui = std::make_unique<UiUnderTest>();
    QVERIFY(m_ui->isValid());
    // ScriptedService::settle() uses these connections of this process.
    m_system = std::make_unique<QDBusConnection>(
        QDBusConnection::connectToBus(m_ui->systemBus().address(), m_ui->folder() + u"/system"_s));
    QVERIFY(m_system->isConnected());
}

void TestReminderServices::cleanup()
{
    m_ui->stop();
    m_services.clear();
    QDBusConnection::disconnectFromBus(m_system->name());
    m_system.reset();
    QCOMPARE(m_ui->takeLog().join(u'\n'), QString());
    m_ui.reset();
}

bool TestReminderServices::startUi()
{
    if (!m_ui->startScreens(QStringLiteral(PARLEY_REMINDER_SCREENS), {u"-prestart"_s}))
        return false;
    if (m_services.count(timeDaemon) != 0 && m_services.count(notificationService) != 0)
        awaitItsFirstQuestions();
    return true;
}

/// They are "query", "get_attributes_by_cookies" and "GetNotificationsByCategory", and each is
/// asked when the one before is answered. A reminder that is created meanwhile may be in the
/// answers, and is then announced once more.
void TestReminderServices::awaitItsFirstQuestions()
{
    const QString peer = u"org.freedesktop.DBus.Peer"_s;
    const int questions = 3;
    const int delays = 7; // The process reads from each bus in a thread of its own, perhaps later.
    for (int round = 0; round < questions + delays; ++round) {
        // The answer comes behind that to the process.
        ask(*m_system, timed, timedPath, peer, u"Ping"_s);
        ask(m_ui->session(), notifications, notificationsPath, peer, u"Ping"_s);
        m_ui->evaluate(u"0"_s);
    }
}

bool TestReminderServices::startService(const QString &name)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, m_ui->sessionBus().address());
    environment.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, m_ui->systemBus().address());
    auto process = std::make_unique<ChildProcess>();
    process->setProcessEnvironment(environment);
    process->start(qEnvironmentVariable("PARLEY_HANDSET"),
                   {u"--service"_s, name, u"--state"_s, m_ui->folder() + u"/state"_s});
    m_services[name] = std::move(process);
    const QDBusConnection bus = name == timeDaemon ? *m_system : m_ui->session();
    const QString service = name == timeDaemon ? timed : notifications;
    return QTest::qWaitFor([&] { return bus.interface()->isServiceRegistered(service).value(); },
                           30000);
}

void TestReminderServices::endService(const QString &name, int signal)
{
    const auto &process = m_services.at(name);
    QVERIFY(process->processId() > 0);
    ::kill(static_cast<pid_t>(process->processId()), signal);
    QVERIFY(process->waitForFinished());
}

bool TestReminderServices::create(const QString &what, qlonglong seconds)
{
    m_ui->evaluate(u"create('%1', %2)"_s.arg(what).arg(seconds));
    return m_ui->logs(u"qml: when %1"_s.arg(seconds)) && m_ui->logs(u"qml: exists true"_s);
}

QDBusMessage TestReminderServices::ask(const QDBusConnection &bus, const QString &service,
                                       const QString &path, const QString &interface,
                                       const QString &method, const QVariantList &arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, method);
    call.setArguments(arguments);
    return bus.call(call);
}

/// Returns the cookies of all alarms.
QVariantList TestReminderServices::alarms()
{
    const QDBusMessage reply = ask(*m_system, timed, timedPath, timed, u"query"_s,
                                   {QVariantMap{{u"type"_s, u"reminder"_s}}});
    return qdbus_cast<QVariantList>(reply.arguments().value(0));
}

/// Returns the cookie of the only alarm; invalid if there are none, or more.
QVariant TestReminderServices::onlyAlarm()
{
    const QVariantList cookies = alarms();
    return cookies.size() == 1 ? cookies.constFirst() : QVariant();
}

int TestReminderServices::notificationsShown()
{
    const QDBusMessage reply = ask(m_ui->session(), notifications, notificationsPath, notifications,
                                   u"GetNotificationsByCategory"_s, {u"x-nimbo-call-reminder"_s});
    int count = 0;
    const auto list = reply.arguments().value(0).value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
        list.asVariant();
        ++count;
    }
    list.endArray();
    return count;
}

bool TestReminderServices::logsError(const QString &what)
{
    return !m_ui->lineBeginning(what).isNull();
}

void TestReminderServices::speakToTheServicesInOrder()
{
    ScriptedService daemon(m_ui->systemBus().address(), timed, timedPath);
    ScriptedService service(m_ui->sessionBus().address(), notifications, notificationsPath);
    QVERIFY(startUi());
    const QDBusMessage query = daemon.next(u"query"_s);
    QCOMPARE(query.signature(), u"a{sv}"_s);
    QCOMPARE(qdbus_cast<QVariantMap>(query.arguments().constFirst()),
             QVariantMap({{u"APPLICATION"_s, u"nimbo_parley_ui"_s}, {u"type"_s, u"reminder"_s}}));
    QCOMPARE(service.waiting(), 0);
    daemon.reply(query, {QVariant(QVariantList{3U, 1U})});
    const QDBusMessage details = daemon.next(u"get_attributes_by_cookies"_s);
    QCOMPARE(qdbus_cast<QList<uint>>(details.arguments().constFirst()), QList<uint>({3, 1}));
    QCOMPARE(service.waiting(), 0);
    daemon.fail(details, u"com.example.Error"_s, u"no"_s);
    QVERIFY(
        m_ui->logs(u"Unable to query reminder alarms QDBusError(\"com.example.Error\", \"no\")"_s));
    m_ui->evaluate(u"0"_s);
    QCOMPARE(service.waiting(), 0);

    // Start again, and answer every call.
    m_ui->stop();
    QVERIFY(startUi());
    daemon.reply(daemon.next(u"query"_s), {QVariant(QVariantList())});
    QCOMPARE(service.waiting(), 0);
    const QDBusMessage last = daemon.next(u"get_attributes_by_cookies"_s);
    m_ui->evaluate(u"0"_s);
    QCOMPARE(service.waiting(), 0);
    daemon.reply(last, {QVariant::fromValue(AttributesByCookie())});
    const QDBusMessage shown = service.next(u"GetNotificationsByCategory"_s);
    QCOMPARE(shown.arguments(), QVariantList{u"x-nimbo-call-reminder"_s});
    service.fail(shown, u"com.example.Error"_s, u"no"_s);
    QVERIFY(m_ui->logs(
        u"Unable to query reminder notifications QDBusError(\"com.example.Error\", \"no\")"_s));
}

void TestReminderServices::sendExactlyThis()
{
    ScriptedService daemon(m_ui->systemBus().address(), timed, timedPath);
    ScriptedService service(m_ui->sessionBus().address(), notifications, notificationsPath);
    QVERIFY(startUi());
    daemon.fail(daemon.next(u"query"_s), u"com.example.Error"_s, u"no"_s);
    QVERIFY(
        m_ui->logs(u"Unable to query reminder alarms QDBusError(\"com.example.Error\", \"no\")"_s));

    m_ui->evaluate(u"create('%1', %2)"_s.arg(number).arg(due));
    QDBusMessage alarm = daemon.next(u"add_event"_s);
    QCOMPARE(alarm.signature(), u"(uxa{ss})"_s);
    uint flags = 0;
    qlonglong ticker = 0;
    QMap<QString, QString> attributes;
    const auto event = alarm.arguments().constFirst().value<QDBusArgument>();
    event.beginStructure();
    event >> flags >> ticker >> attributes;
    event.endStructure();
    QCOMPARE(flags, 3U);
    QCOMPARE(ticker, due);
    QCOMPARE(attributes,
             (QMap<QString, QString>{{u"TITLE"_s, u"contact"_s},
                                     {u"APPLICATION"_s, u"nimbo_parley_ui"_s},
                                     {u"type"_s, u"reminder"_s},
                                     {u"phoneNumber"_s, normalized},
                                     {u"triggerTime"_s, QString::number(due)}}));
    daemon.reply(alarm, {7U});

    QDBusMessage notify = service.next(u"Notify"_s);
    QCOMPARE(notify.signature(), u"susssasa{sv}i"_s);
    QCOMPARE(notify.arguments().mid(0, 6),
             QVariantList({u"app"_s, 0U, QString(), u"title"_s, u"text"_s,
                           QStringList{u"default"_s, QString(), u"app"_s, QString()}}));
    QCOMPARE(notify.arguments().at(7), QVariant(-1));
    auto hints = qdbus_cast<QVariantMap>(notify.arguments().at(6));
    QCOMPARE(hints.value(u"urgency"_s).userType(), int(QMetaType::UChar));
    QCOMPARE(hints.value(u"x-nimbo-alarm-cookie"_s).userType(), int(QMetaType::UInt));
    QCOMPARE(hints.take(u"urgency"_s), QVariant::fromValue(uchar{0}));
    QCOMPARE(hints.take(u"category"_s), QVariant(u"x-nimbo-call-reminder"_s));
    QCOMPARE(hints.take(u"x-nimbo-alarm-cookie"_s), QVariant(7U));
    for (const QString &action : {u"default"_s, u"app"_s}) {
        auto call = qdbus_cast<QVariantMap>(hints.take(u"x-nimbo-remote-action-"_s + action));
        const auto arguments = qdbus_cast<QVariantList>(call.take(u"arguments"_s));
        QCOMPARE(arguments, QVariantList({QStringList(u"callHistory"_s)}));
        QCOMPARE(call,
                 QVariantMap({{u"service"_s, u"com.nokia.telephony.callhistory"_s},
                              {u"path"_s, u"/org/maemo/m"_s},
                              {u"iface"_s, u"com.nokia.MApplicationIf"_s},
                              {u"method"_s, u"launch"_s}}));
    }
    QCOMPARE(hints, QVariantMap());
    service.reply(notify, {9U});
    QVERIFY(m_ui->logs(u"qml: when %1"_s.arg(due)));
    QVERIFY(m_ui->logs(u"qml: exists true"_s));

    // The next reminder replaces both.
    m_ui->evaluate(u"create('%1', %2)"_s.arg(number).arg(due + 60));
    alarm = daemon.next(u"replace_event"_s);
    QCOMPARE(alarm.signature(), u"(uxa{ss})u"_s);
    QCOMPARE(alarm.arguments().at(1), QVariant(7U));
    daemon.reply(alarm, {8U});
    notify = service.next(u"Notify"_s);
    QCOMPARE(notify.arguments().at(1), QVariant(9U));
    service.reply(notify, {9U});
    QVERIFY(m_ui->logs(u"qml: when %1"_s.arg(due + 60)));
    QVERIFY(m_ui->logs(u"qml: exists true"_s));

    m_ui->evaluate(u"reminder.remove()"_s);
    const QDBusMessage close = service.next(u"CloseNotification"_s);
    QCOMPARE(close.signature(), u"u"_s);
    QCOMPARE(close.arguments(), QVariantList{9U});
    const QDBusMessage cancel = daemon.next(u"cancel"_s);
    QCOMPARE(cancel.signature(), u"u"_s);
    QCOMPARE(cancel.arguments(), QVariantList{8U});
    QVERIFY(m_ui->logs(u"qml: exists false"_s));
}

void TestReminderServices::answerOthersWhileTheTimeDaemonHangs()
{
    ScriptedService daemon(m_ui->systemBus().address(), timed, timedPath); // It answers no call.
    QVERIFY(startUi());
    m_ui->evaluate(u"create('%1', %2)"_s.arg(number).arg(due));
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(m_ui->evaluate(u"1 + 1"_s), QJsonValue(2));
    QVERIFY(timer.elapsed() < 2000);
    QCOMPARE(daemon.next(u"query"_s).type(), QDBusMessage::MethodCallMessage);
    QCOMPARE(daemon.next(u"add_event"_s).type(), QDBusMessage::MethodCallMessage);
    m_ui->stop(); // The end of the daemon would answer both calls with an error.
}

void TestReminderServices::goOnWhileTheNotificationServiceHangs()
{
    QVERIFY(startService(timeDaemon));
    ScriptedService service(m_ui->sessionBus().address(), notifications, notificationsPath);
    QVERIFY(startUi());
    QCOMPARE(service.next(u"GetNotificationsByCategory"_s).type(), QDBusMessage::MethodCallMessage);
    m_ui->evaluate(
        u"create('%1', %2); create('555', %2); create('%1', %3)"_s.arg(number).arg(due).arg(due
                                                                                            + 60));
    const QDBusMessage first = service.next(u"Notify"_s);
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 100; ++i)
        QCOMPARE(m_ui->evaluate(u"%1 + 1"_s.arg(i)), QJsonValue(i + 1));
    m_ui->evaluate(u"later('a timer')"_s);
    QVERIFY(m_ui->logs(u"qml: a timer"_s));
    QVERIFY2(timer.elapsed() < 4000, qPrintable(QString::number(timer.elapsed())));

    // They are published one at a time. The number with two reminders is shown once, for the second
    // one.
    QCOMPARE(service.waiting(), 0);
    service.reply(first, {9U});
    const QDBusMessage second = service.next(u"Notify"_s);
    QCOMPARE(second.arguments().at(1), QVariant(0U));
    service.reply(second, {10U});
    const QDBusMessage third = service.next(u"Notify"_s);
    QCOMPARE(third.arguments().at(1), QVariant(9U));
    service.reply(third, {9U});
    for (const qlonglong when : {due, due + 60}) {
        QVERIFY(m_ui->logs(u"qml: when %1"_s.arg(when)));
        QVERIFY(m_ui->logs(u"qml: exists true"_s));
    }
    m_ui->stop(); // The end of the service would answer the open call with an error.
}

void TestReminderServices::endWhileTheNotificationServiceHangs()
{
    QVERIFY(startService(timeDaemon));
    ScriptedService service(m_ui->sessionBus().address(), notifications, notificationsPath);
    QVERIFY(m_ui->startScreens(QStringLiteral(PARLEY_REMINDER_SCREENS), {u"-devel"_s}));
    m_ui->evaluate(u"create('%1', %2)"_s.arg(number).arg(due));
    QCOMPARE(service.next(u"GetNotificationsByCategory"_s).type(), QDBusMessage::MethodCallMessage);
    QCOMPARE(service.next(u"Notify"_s).type(), QDBusMessage::MethodCallMessage);
    m_ui->evaluate(u"Qt.quit()"_s);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(m_ui->waitForEnd(), 0);
    QVERIFY(timer.elapsed() < 4000);
    QVERIFY(onlyAlarm().isValid());
    m_ui->takeLog(); // Qt logs what its offscreen window cannot do.
}

void TestReminderServices::outliveClosingsOfAnyShape_data()
{
    QTest::addColumn<QString>("signature");

    for (const QString &signature :
         {u""_s, u"u"_s, u"uuu"_s, u"su"_s, u"us"_s, u"ii"_s, u"vv"_s, u"(uu)u"_s, u"u(uu)"_s,
          u"a{sv}u"_s, u"auu"_s, u"uau"_s, u"(uu)"_s})
        QTest::newRow(qPrintable(signature)) << signature;
}

void TestReminderServices::outliveClosingsOfAnyShape()
{
    QFETCH(QString, signature);

    QVERIFY(startService(timeDaemon));
    ScriptedService service(m_ui->sessionBus().address(), notifications, notificationsPath);
    QVERIFY(startUi());
    QCOMPARE(service.next(u"GetNotificationsByCategory"_s).type(), QDBusMessage::MethodCallMessage);
    m_ui->evaluate(u"create('%1', %2)"_s.arg(number).arg(due));
    service.reply(service.next(u"Notify"_s), {9U});
    QVERIFY(m_ui->logs(u"qml: when %1"_s.arg(due)));
    QVERIFY(m_ui->logs(u"qml: exists true"_s));

    service.emitSignal(notifications, u"NotificationClosed"_s, valuesOf(signature));
    m_ui->evaluate(u"0"_s);
    // The process still knows that the notification is shown.
    m_ui->evaluate(u"reminder.remove()"_s);
    QCOMPARE(service.next(u"CloseNotification"_s).arguments(), QVariantList{9U});
    QVERIFY(m_ui->logs(u"qml: exists false"_s));
    m_ui->stop(); // The end of the service would answer the open call with an error.
}

/// The bus allows a connection to wait for 128 answers at a time, as stock ones do.
void TestReminderServices::comeAndGoByTheHundred()
{
    QVERIFY(startService(timeDaemon) && startService(notificationService));
    QVERIFY(startUi());
    QVERIFY(m_ui->evaluate(u"createMany(300, %1)"_s.arg(due)).toBool());
    QTRY_COMPARE_WITH_TIMEOUT(m_ui->evaluate(u"existing()"_s), QJsonValue(300), 60000);
    QCOMPARE(alarms().size(), 300);
    QCOMPARE(notificationsShown(), 300);
    QVERIFY(m_ui->evaluate(u"removeMany()"_s).toBool());
    QTRY_COMPARE(alarms().size(), 0);
    QTRY_COMPARE(notificationsShown(), 0);
    QCOMPARE(m_ui->evaluate(u"existing()"_s), QJsonValue(0));
}

void TestReminderServices::goWhenTheAlarmFires()
{
    QVERIFY(startService(timeDaemon) && startService(notificationService));
    QVERIFY(startUi());
    QVERIFY(create());
    QCOMPARE(notificationsShown(), 1);
    const QDBusMessage fired = ask(*m_system, timed, timedPath, u"com.nimbo.simulator.TimeDaemon"_s,
                                   u"Fire"_s, {onlyAlarm()});
    QCOMPARE(fired.type(), QDBusMessage::ReplyMessage);
    QVERIFY(m_ui->logs(u"qml: exists false"_s));
    QTRY_COMPARE(notificationsShown(), 0);
}

/// The services are stopped. They answer the calls when they go on.
void TestReminderServices::waitForServicesThatHang()
{
    QVERIFY(startService(timeDaemon) && startService(notificationService));
    QVERIFY(startUi());
    const auto &daemon = m_services.at(timeDaemon);
    QVERIFY(daemon->processId() > 0);
    const auto process = static_cast<pid_t>(daemon->processId());
    QCOMPARE(::kill(process, SIGSTOP), 0);
    m_ui->evaluate(u"create('%1', %2)"_s.arg(number).arg(due));
    QCOMPARE(m_ui->evaluate(u"reminder.exists"_s), QJsonValue(false));
    QCOMPARE(::kill(process, SIGCONT), 0);
    QVERIFY(m_ui->logs(u"qml: when %1"_s.arg(due)));
    QVERIFY(m_ui->logs(u"qml: exists true"_s));
    QCOMPARE(notificationsShown(), 1);
}

void TestReminderServices::stayWhenTheNotificationIsDismissed()
{
    QVERIFY(startService(timeDaemon) && startService(notificationService));
    QVERIFY(startUi());
    QVERIFY(create());
    const QVariant cookie = onlyAlarm();
    QVERIFY(cookie.isValid());
    ask(m_ui->session(), notifications, notificationsPath, notifications, u"CloseNotification"_s,
        {1U});
    QCOMPARE(m_ui->evaluate(u"reminder.exists"_s), QJsonValue(true));
    QCOMPARE(onlyAlarm(), cookie);

    QVERIFY(create(number, due + 60)); // This makes a new notification and replaces the alarm.
    QCOMPARE(notificationsShown(), 1);
    QVERIFY(onlyAlarm().isValid());
    QVERIFY(onlyAlarm() != cookie);
}

void TestReminderServices::goWhenTheyAreRemoved()
{
    QVERIFY(startService(timeDaemon) && startService(notificationService));
    QVERIFY(startUi());
    QVERIFY(create());
    m_ui->evaluate(u"reminder.remove()"_s);
    QVERIFY(m_ui->logs(u"qml: exists false"_s));
    QTRY_VERIFY(!onlyAlarm().isValid());
    QTRY_COMPARE(notificationsShown(), 0);
}

void TestReminderServices::surviveARestartOfTheUi()
{
    QVERIFY(startService(timeDaemon) && startService(notificationService));
    QVERIFY(startUi());
    QVERIFY(create());
    m_ui->stop();
    QVERIFY(startUi());
    QVERIFY(m_ui->logs(u"qml: when %1"_s.arg(due)));
    QVERIFY(m_ui->logs(u"qml: exists true"_s));
    QCOMPARE(notificationsShown(), 1);
    m_ui->evaluate(u"reminder.remove()"_s);
    QVERIFY(m_ui->logs(u"qml: exists false"_s));
    QTRY_COMPARE(notificationsShown(), 0);
}

void TestReminderServices::keepTheirTimeWhereTheClockChanges_data()
{
    QTest::addColumn<QString>("zone");
    QTest::addColumn<QString>("time");

    const QString berlin = u"CET-1CEST,M3.5.0,M10.5.0/3"_s;
    const QString lordHowe = u"<+1030>-10:30<+11>-11,M10.1.0,M4.1.0"_s;
    QTest::newRow("before a missing hour") << berlin << u"2035-03-25T01:59:59+01:00"_s;
    QTest::newRow("behind a missing hour") << berlin << u"2035-03-25T03:00:00+02:00"_s;
    QTest::newRow("the first 02:30") << berlin << u"2035-10-28T02:30:00+02:00"_s;
    QTest::newRow("the second 02:30") << berlin << u"2035-10-28T02:30:00+01:00"_s;
    QTest::newRow("the first 01:45") << lordHowe << u"2035-04-01T01:45:00+11:00"_s;
    QTest::newRow("the second 01:45") << lordHowe << u"2035-04-01T01:45:00+10:30"_s;
}

/// On the way to the alarm and back.
void TestReminderServices::keepTheirTimeWhereTheClockChanges()
{
    QFETCH(QString, zone);
    QFETCH(QString, time);

    const qint64 seconds = QDateTime::fromString(time, Qt::ISODate).toSecsSinceEpoch();
    m_ui->setEnvironment(u"TZ"_s, zone);
    QVERIFY(startService(timeDaemon) && startService(notificationService));
    QVERIFY(startUi());
    QVERIFY(create(number, seconds));
    const QDBusMessage reply =
        ask(*m_system, timed, timedPath, timed, u"get_attributes_by_cookies"_s,
            {QVariant::fromValue(QList<uint>{onlyAlarm().toUInt()})});
    const auto alarms = qdbus_cast<AttributesByCookie>(reply.arguments().value(0));
    QCOMPARE(alarms.size(), 1);
    QCOMPARE(alarms.first().value(u"triggerTime"_s), QString::number(seconds));
    m_ui->stop();
    QVERIFY(startUi());
    QVERIFY(m_ui->logs(u"qml: when %1"_s.arg(seconds)));
    QVERIFY(m_ui->logs(u"qml: exists true"_s));
}

void TestReminderServices::closeLeftovers()
{
    QVERIFY(startService(timeDaemon) && startService(notificationService));
    QVERIFY(startUi());
    QVERIFY(create());
    m_ui->stop();
    ask(*m_system, timed, timedPath, timed, u"cancel"_s, {onlyAlarm()});
    QCOMPARE(notificationsShown(), 1);
    QVERIFY(startUi());
    QTRY_COMPARE(notificationsShown(), 0);
    QCOMPARE(m_ui->evaluate(u"reminder.exists"_s), QJsonValue(false));
}

void TestReminderServices::tolerateMissingServices()
{
    QVERIFY(startUi());
    QVERIFY(logsError(
        u"Unable to query reminder alarms QDBusError(\"org.freedesktop.DBus.Error.ServiceUnknown\""_s));
    m_ui->evaluate(u"create('%1', %2)"_s.arg(number).arg(due));
    QVERIFY(m_ui->logs(u"Failed to create alarm"_s));

    QVERIFY(startService(timeDaemon));
    m_ui->stop();
    QVERIFY(startUi());
    QVERIFY(logsError(
        u"Unable to query reminder notifications QDBusError(\"org.freedesktop.DBus.Error.ServiceUnknown\""_s));
}

void TestReminderServices::tolerateNoSystemBus()
{
    m_ui->systemBus().stop();
    QVERIFY(startUi());
    const QString disconnected =
        u"QDBusError(\"org.freedesktop.DBus.Error.Disconnected\", \"Not connected to D-Bus server\")"_s;
    QVERIFY(m_ui->logs(u"Unable to query reminder alarms "_s + disconnected));
    m_ui->evaluate(u"create('%1', %2)"_s.arg(number).arg(due));
    QVERIFY(m_ui->logs(u"Failed to create alarm"_s));
}

void TestReminderServices::tolerateADaemonThatDiesInACall()
{
    auto daemon = std::make_unique<ScriptedService>(m_ui->systemBus().address(), timed, timedPath);
    QVERIFY(startUi());
    m_ui->evaluate(u"create('%1', %2)"_s.arg(number).arg(due));
    QCOMPARE(daemon->next(u"query"_s).type(), QDBusMessage::MethodCallMessage);
    QCOMPARE(daemon->next(u"add_event"_s).type(), QDBusMessage::MethodCallMessage);
    daemon.reset();
    QVERIFY(logsError(
        u"Unable to query reminder alarms QDBusError(\"org.freedesktop.DBus.Error.NoReply\""_s));
    QVERIFY(m_ui->logs(u"Failed to create alarm"_s));
    QCOMPARE(m_ui->evaluate(u"reminder.exists"_s), QJsonValue(false));
}

void TestReminderServices::returnWithTheDaemon()
{
    QVERIFY(startService(timeDaemon) && startService(notificationService));
    QVERIFY(startUi());
    QVERIFY(create());
    endService(timeDaemon, SIGKILL);
    m_ui->evaluate(u"create('%1', %2)"_s.arg(number).arg(due + 60));
    QVERIFY(m_ui->logs(u"Failed to create alarm"_s));
    QCOMPARE(m_ui->evaluate(u"reminder.exists"_s), QJsonValue(true)); // The known state is kept.

    QVERIFY(startService(timeDaemon));
    QVERIFY(create(number, due + 120));
    QVERIFY(onlyAlarm().isValid());
    QCOMPARE(notificationsShown(), 1);
}

void TestReminderServices::surviveQmlHandlers_data()
{
    QTest::addColumn<QString>("deed");

    QTest::newRow("nothing") << QString();
    QTest::newRow("remove this") << u"reminder.remove()"_s;
    QTest::newRow("remove another") << u"reminders[2].remove()"_s;
    QTest::newRow("clear the number") << u"reminder.phoneNumber = ''"_s;
    QTest::newRow("set another number") << u"reminder.phoneNumber = '5550199'"_s;
    QTest::newRow("clear the store") << u"reminder._reminders = null"_s;
    QTest::newRow("destroy this") << u"reminder.destroy()"_s;
    QTest::newRow("destroy all") << u"for (var i = 0; i < 3; ++i) reminders[i].destroy()"_s;
    QTest::newRow("destroy the store") << u"base.destroy()"_s;
    QTest::newRow("destroy everything, and collect it")
        << u"end(); reminders = []; base = null; gc()"_s;
    QTest::newRow("create another") << u"reminders.push(watcher.createObject(root))"_s;
    QTest::newRow("create a reminder") << u"create()"_s;
}

void TestReminderServices::surviveQmlHandlers()
{
    QFETCH(QString, deed);

    QVERIFY(startService(timeDaemon) && startService(notificationService));
    QVERIFY(m_ui->startScreens(QStringLiteral(PARLEY_REMINDER_HANDLERS), {u"-prestart"_s}));
    m_ui->evaluate(u"begin(\"%1\")"_s.arg(deed));
    m_ui->evaluate(u"create()"_s);
    QVERIFY(m_ui->logs(u"qml: reported"_s));
    // Process the events that the deed has left. Then the alarms go.
    QVERIFY(m_ui->evaluate(u"reports"_s).toInt() > 0);
    m_ui->evaluate(u"try { reminders[0].remove() } catch (gone) {}"_s);
    QVERIFY(m_ui->evaluate(u"end()"_s).isDouble());
    QCOMPARE(m_ui->evaluate(u"1 + 1"_s), QJsonValue(2));
    for (const QString &line : m_ui->takeLog())
        QCOMPARE(line, u"qml: reported"_s);
}

QTEST_GUILESS_MAIN(TestReminderServices)

#include "tst_reminderservices.moc"
