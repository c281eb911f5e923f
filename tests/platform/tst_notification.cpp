// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "literals.h"
#include "messagelog.h"
#include "privatebus.h"
#include "rawconnection.h"
#include "scriptedservice.h"

#include <notification.h>

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusPendingCall>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <memory>

/// Notifications, with a service that is scripted message by message.
class TestNotification : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void isSentAsSet();
    void keepsItsIdWithoutAnId_data();
    void keepsItsIdWithoutAnId();
    void servesEventsMeanwhile();
    void believesItsServiceAlone();
    void mayEndMeanwhile();
    void waitsNoLongerThanFiveSeconds();
    void isReadBack();

private:
    QTemporaryDir m_folder;
    PrivateBus m_bus;
    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<ScriptedService> m_service;
};

void TestNotification::initTestCase()
{
    QVERIFY(m_bus.start(m_folder.path(), u"session"_s));
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address().toUtf8());
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().toUtf8());
    QVERIFY(QDBusConnection::sessionBus().isConnected());
    qDBusRegisterMetaType<NotificationData>();
}

void TestNotification::init()
{
    m_log.reset();
    m_log = std::make_unique<MessageLog>();
    m_service = std::make_unique<ScriptedService>(
        m_bus.address(), u"org.freedesktop.Notifications"_s, u"/org/freedesktop/Notifications"_s);
}

void TestNotification::cleanup()
{
    m_service.reset();
    QCOMPARE(m_log->take().join(u'\n'), QString());
}

void TestNotification::isSentAsSet()
{
    Notification notification;
    notification.setAppName(u"app"_s);
    notification.setCategory(u"category"_s);
    notification.setSummary(u"summary"_s);
    notification.setBody(u"body"_s);
    notification.setUrgency(Notification::Low);
    notification.setReplacesId(5);
    notification.setHintValue(u"number"_s, 7U);
    notification.setRemoteActions(
        {QVariantMap{{u"name"_s, u"default"_s},
                     {u"displayName"_s, u"Open"_s},
                     {u"service"_s, u"com.example"_s},
                     {u"path"_s, u"/path"_s},
                     {u"iface"_s, u"com.example.Interface"_s},
                     {u"method"_s, u"open"_s},
                     {u"arguments"_s, QVariantList{QStringList{u"a"_s}, 1}}},
         QVariantMap{{u"name"_s, u"app"_s}}});
    const std::unique_ptr<QThread> publisher(
        QThread::create([&notification] { notification.publish(); }));
    publisher->start();

    const QDBusMessage message = m_service->next(u"Notify"_s);
    QCOMPARE(message.signature(), u"susssasa{sv}i"_s);
    const QVariantList arguments = message.arguments();
    QCOMPARE(arguments.mid(0, 6),
             QVariantList({u"app"_s, 5U, QString(), u"summary"_s, u"body"_s,
                           QStringList{u"default"_s, u"Open"_s, u"app"_s, QString()}}));
    QCOMPARE(arguments.at(7), QVariant(-1));
    auto hints = qdbus_cast<QVariantMap>(arguments.at(6));
    QCOMPARE(hints.take(u"urgency"_s), QVariant::fromValue(uchar{0}));
    QCOMPARE(hints.take(u"category"_s), QVariant(u"category"_s));
    QCOMPARE(hints.take(u"number"_s), QVariant(7U));
    const auto remoteAction = hints.take(u"x-nimbo-remote-action-default"_s).value<QDBusArgument>();
    QCOMPARE(remoteAction.currentSignature(), u"a{sv}"_s);
    auto call = qdbus_cast<QVariantMap>(remoteAction);
    QCOMPARE(call.take(u"arguments"_s).value<QDBusArgument>().currentSignature(), u"av"_s);
    QCOMPARE(call,
             QVariantMap({{u"service"_s, u"com.example"_s},
                          {u"path"_s, u"/path"_s},
                          {u"iface"_s, u"com.example.Interface"_s},
                          {u"method"_s, u"open"_s}}));
    QCOMPARE(hints.keys(), QStringList(u"x-nimbo-remote-action-app"_s));

    m_service->reply(message, {9U});
    QVERIFY(publisher->wait());
    QCOMPARE(notification.replacesId(), 9U);
}

void TestNotification::keepsItsIdWithoutAnId_data()
{
    QTest::addColumn<QVariantList>("answer");

    QTest::newRow("an error") << QVariantList{QVariant()};
    QTest::newRow("nothing") << QVariantList();
    QTest::newRow("a text") << QVariantList{u"9"_s};
    QTest::newRow("two numbers") << QVariantList{9U, 9U};
    QTest::newRow("a list") << QVariantList{QVariant(QVariantList{9U})};
}

void TestNotification::keepsItsIdWithoutAnId()
{
    QFETCH(QVariantList, answer);

    Notification notification;
    notification.setReplacesId(5);
    const std::unique_ptr<QThread> publisher(
        QThread::create([&notification] { notification.publish(); }));
    publisher->start();
    const QDBusMessage message = m_service->next(u"Notify"_s);
    if (answer.size() == 1 && !answer.constFirst().isValid())
        m_service->fail(message, u"com.example.Error"_s, u"no"_s);
    else
        m_service->reply(message, answer);
    QVERIFY(publisher->wait());
    QCOMPARE(notification.replacesId(), 5U);
}

void TestNotification::servesEventsMeanwhile()
{
    Notification notification;
    connect(m_service.get(), &ScriptedService::called, this,
            [this] { m_service->reply(m_service->next(u"Notify"_s), {9U}); });
    notification.publish();
    QCOMPARE(notification.replacesId(), 9U);
    m_service->disconnect(this);
}

/// A stranger cannot give a notification the id of another one.
void TestNotification::believesItsServiceAlone()
{
    m_service.reset();
    RawConnection service(m_bus.address());
    QVERIFY(service.own("org.freedesktop.Notifications"));
    RawConnection stranger(m_bus.address());
    service.setHandler([&](DBusMessage *call) {
        const RawMessage forged =
            RawConnection::makeReply(dbus_message_get_sender(call), dbus_message_get_serial(call));
        const quint32 id = 8;
        dbus_message_append_args(forged.get(), DBUS_TYPE_UINT32, &id, DBUS_TYPE_INVALID);
        stranger.send(forged.get());
        stranger.pump();
    });
    Notification notification;
    notification.setReplacesId(5);
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&service] { service.pump(); });
    timer.start(0);
    notification.publish();
    QCOMPARE(notification.replacesId(), 5U);
}

void TestNotification::mayEndMeanwhile()
{
    auto notification = std::make_unique<Notification>();
    connect(m_service.get(), &ScriptedService::called, this, [&] {
        notification.reset();
        m_service->reply(m_service->next(u"Notify"_s), {9U});
    });
    notification->publish();
    QVERIFY(!notification);
    m_service->disconnect(this);
}

void TestNotification::waitsNoLongerThanFiveSeconds()
{
    Notification notification;
    notification.setReplacesId(5);
    QElapsedTimer timer;
    timer.start();
    notification.publish(); // No process takes the call.
    QVERIFY(timer.elapsed() >= 4400);
    QVERIFY(timer.elapsed() < 5500);
    QCOMPARE(notification.replacesId(), 5U);
    QCOMPARE(m_service->next(u"Notify"_s).arguments().at(1), QVariant(5U));
}

void TestNotification::isReadBack()
{
    NotificationData data;
    data.appName = u"app"_s;
    data.id = 7;
    data.appIcon = u"icon"_s;
    data.summary = u"summary"_s;
    data.body = u"body"_s;
    data.actions = QStringList{u"a"_s, u"A"_s};
    data.hints = {{u"hint"_s, 3U}};
    data.expireTimeout = 1000;

    QDBusMessage message = QDBusMessage::createMethodCall(u"org.freedesktop.Notifications"_s,
                                                          u"/org/freedesktop/Notifications"_s,
                                                          u"com.example"_s, u"Echo"_s);
    message.setArguments({QVariant::fromValue(data)});
    QDBusConnection::sessionBus().asyncCall(message);
    const QDBusMessage sent = m_service->next(u"Echo"_s);
    QCOMPARE(sent.signature(), u"(susssasa{sv}i)"_s);
    const auto read = qdbus_cast<NotificationData>(sent.arguments().constFirst());
    QCOMPARE(read.appName, data.appName);
    QCOMPARE(read.id, data.id);
    QCOMPARE(read.appIcon, data.appIcon);
    QCOMPARE(read.summary, data.summary);
    QCOMPARE(read.body, data.body);
    QCOMPARE(read.actions, data.actions);
    QCOMPARE(read.hints, data.hints);
    QCOMPARE(read.expireTimeout, data.expireTimeout);
}

QTEST_GUILESS_MAIN(TestNotification)

#include "tst_notification.moc"
