// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "literals.h"
#include "notificationlist.h"
#include "serviceundertest.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusMetaType>
#include <QDBusVirtualObject>
#include <QTest>

#include <memory>

namespace {

const QString interface = u"org.freedesktop.Notifications"_s;
const QString control = u"com.nimbo.simulator.NotificationService"_s;

/// Replies to all calls and keeps them.
class Target : public QDBusVirtualObject
{
public:
    QString introspect(const QString &) const override { return {}; }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        calls.append(message);
        return connection.send(message.createReply());
    }

    QVector<QDBusMessage> calls;
};

} // namespace

class TestNotificationService : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void offersItsInterfaces();
    void servesAnotherClient();
    void saysWhatItCanDo();
    void givesNewIds();
    void replacesWhatIsShown();
    void closesOnRequest();
    void refusesToCloseWhatIsNotShown();
    void expires();
    void doesNotExpire();
    void expiresAsReplaced();
    void findsByCategory();
    void keepsHintsAsTheyCame();
    void dismisses();
    void runsARemoteAction();
    void invokesAnActionWithoutARemoteCall();
    void leavesAResidentNotificationOpen();
    void refusesToClickWhatIsNotThere();
    void survivesABrokenRemoteAction_data();
    void survivesABrokenRemoteAction();

private:
    QDBusMessage call(const QString &method, const QVariantList &arguments = {}) const;
    uint show(uint replaced, const QStringList &actions = {}, const QVariantMap &hints = {},
              int expireTimeout = -1) const;
    NotificationList shown() const;
    QList<uint> ids() const;

    std::unique_ptr<ServiceUnderTest> m_service;
};

void TestNotificationService::initTestCase()
{
    qDBusRegisterMetaType<NotificationData>();
    qDBusRegisterMetaType<NotificationList>();
}

void TestNotificationService::init()
{
    m_service = std::make_unique<ServiceUnderTest>(
        ServiceUnderTest::Place{u"notification-service"_s,
                                ServiceUnderTest::Bus::Session,
                                u"org.freedesktop.Notifications"_s,
                                u"/org/freedesktop/Notifications"_s,
                                {interface + u".NotificationClosed"_s,
                                 interface + u".ActionInvoked"_s, control + u".Shown"_s}});
    QVERIFY(m_service->start());
}

/// The service still runs and has logged nothing unexpected.
void TestNotificationService::cleanup()
{
    QVERIFY(m_service->isRunning());
    QCOMPARE(call(u"GetCapabilities"_s).type(), QDBusMessage::ReplyMessage);
    QCOMPARE(m_service->takeLog(), QStringList());
    m_service.reset();
}

QDBusMessage TestNotificationService::call(const QString &method,
                                           const QVariantList &arguments) const
{
    return m_service->call(interface, method, arguments);
}

/// Shows a notification. Returns its id, or 0 if the call fails.
uint TestNotificationService::show(uint replaced, const QStringList &actions,
                                   const QVariantMap &hints, int expireTimeout) const
{
    const QDBusMessage reply = call(
        u"Notify"_s,
        {u"app"_s, replaced, u"icon"_s, u"summary"_s, u"body"_s, actions, hints, expireTimeout});
    return reply.signature() == u"u"_s ? reply.arguments().at(0).toUInt() : 0;
}

NotificationList TestNotificationService::shown() const
{
    const QDBusMessage reply = m_service->call(control, u"List"_s);
    return qdbus_cast<NotificationList>(reply.arguments().value(0));
}

QList<uint> TestNotificationService::ids() const
{
    QList<uint> all;
    const NotificationList list = shown();
    for (const NotificationData &data : list)
        all.append(data.id);
    return all;
}

void TestNotificationService::offersItsInterfaces()
{
    const QStringList lines = m_service->busctl(u"introspect"_s, {interface});
    const QStringList expected{
        u"NAME TYPE SIGNATURE RESULT/VALUE FLAGS"_s,
        u".CloseNotification method u - -"_s,
        u".GetCapabilities method - as -"_s,
        u".GetNotificationsByCategory method s a(susssasa{sv}i) -"_s,
        u".GetServerInformation method - ssss -"_s,
        u".Notify method susssasa{sv}i u -"_s,
        u".ActionInvoked signal us - -"_s,
        u".NotificationClosed signal uu - -"_s,
    };
    QCOMPARE(lines, expected);
}

void TestNotificationService::servesAnotherClient()
{
    QCOMPARE(m_service->busctl(u"call"_s,
                               {interface, u"Notify"_s, u"susssasa{sv}i"_s, u"app"_s, u"0"_s,
                                u"icon"_s, u"sum"_s, u"body"_s, u"2"_s, u"default"_s, u"Open"_s,
                                u"1"_s, u"category"_s, u"s"_s, u"cat"_s, u"--"_s, u"-1"_s}),
             QStringList(u"u 1"_s));
    QCOMPARE(m_service->busctl(u"call"_s,
                               {interface, u"GetNotificationsByCategory"_s, u"s"_s, u"cat"_s}),
             QStringList(
                 u"a(susssasa{sv}i) 1 \"app\" 1 \"icon\" \"sum\" \"body\" 2 \"default\" \"Open\" 1 "
                 "\"category\" s \"cat\" -1"_s));
}

void TestNotificationService::saysWhatItCanDo()
{
    const QDBusMessage capabilities = call(u"GetCapabilities"_s);
    QCOMPARE(capabilities.signature(), u"as"_s);
    QCOMPARE(capabilities.arguments().at(0).toStringList(),
             QStringList({u"actions"_s, u"body"_s, u"persistence"_s}));
    const QDBusMessage information = call(u"GetServerInformation"_s);
    QCOMPARE(information.signature(), u"ssss"_s);
    QCOMPARE(information.arguments().at(3).toString(), u"1.2"_s);
}

void TestNotificationService::givesNewIds()
{
    QCOMPARE(show(0), 1U);
    QCOMPARE(show(0), 2U);
    call(u"CloseNotification"_s, {2U});
    QCOMPARE(show(0), 3U);
    QCOMPARE(show(2), 4U);
    QCOMPARE(show(77), 5U);
    QCOMPARE(ids(), QList<uint>({1, 3, 4, 5}));
}

void TestNotificationService::replacesWhatIsShown()
{
    show(0, {u"default"_s, QString()}, {{u"category"_s, u"cat"_s}});
    QCOMPARE(m_service->nextSignal(u"Shown"_s).arguments(),
             QVariantList({1U, u"summary"_s, u"body"_s}));
    const QDBusMessage reply =
        call(u"Notify"_s,
             {u"other"_s, 1U, QString(), u"new"_s, u"text"_s, QStringList(), QVariantMap(), 0});
    QCOMPARE(reply.arguments().at(0).toUInt(), 1U);
    QCOMPARE(m_service->nextSignal(u"Shown"_s).arguments(),
             QVariantList({1U, u"new"_s, u"text"_s}));
    const NotificationList list = shown();
    QCOMPARE(list.size(), 1);
    const NotificationData &data = list.constFirst();
    QCOMPARE(data.appName, u"other"_s);
    QCOMPARE(data.appIcon, QString());
    QCOMPARE(data.actions, QStringList());
    QCOMPARE(data.hints, QVariantMap());
    QCOMPARE(data.expireTimeout, 0);
}

void TestNotificationService::closesOnRequest()
{
    show(0);
    show(0);
    QCOMPARE(call(u"CloseNotification"_s, {1U}).signature(), QString());
    QCOMPARE(m_service->nextSignal(u"NotificationClosed"_s).arguments(), QVariantList({1U, 3U}));
    QCOMPARE(ids(), QList<uint>{2});
}

void TestNotificationService::refusesToCloseWhatIsNotShown()
{
    show(0);
    call(u"CloseNotification"_s, {1U});
    m_service->nextSignal(u"NotificationClosed"_s);
    for (const uint id : {0U, 1U, 2U}) {
        const QDBusMessage reply = call(u"CloseNotification"_s, {id});
        QCOMPARE(reply.type(), QDBusMessage::ErrorMessage);
        QCOMPARE(reply.errorMessage(), QString());
    }
    QVERIFY(!m_service->pendingSignals().contains(u"NotificationClosed"_s));
}

void TestNotificationService::expires()
{
    show(0, {}, {}, 1);
    QCOMPARE(m_service->nextSignal(u"NotificationClosed"_s).arguments(), QVariantList({1U, 1U}));
    QCOMPARE(ids(), QList<uint>());
}

void TestNotificationService::doesNotExpire()
{
    show(0, {}, {}, 0);
    show(0, {}, {}, -1);
    show(0, {}, {}, -5);
    show(0, {}, {}, 1);
    QCOMPARE(m_service->nextSignal(u"NotificationClosed"_s).arguments(), QVariantList({4U, 1U}));
    QCOMPARE(ids(), QList<uint>({1, 2, 3}));
}

void TestNotificationService::expiresAsReplaced()
{
    show(0, {}, {}, 1000);
    show(1, {}, {}, 0);
    show(0, {}, {}, 0);
    show(2, {}, {}, 1200);
    QCOMPARE(m_service->nextSignal(u"NotificationClosed"_s).arguments(), QVariantList({2U, 1U}));
    QCOMPARE(ids(), QList<uint>{1});
}

void TestNotificationService::findsByCategory()
{
    show(0, {}, {{u"category"_s, u"a"_s}});
    show(0, {}, {{u"category"_s, u"b"_s}});
    show(0, {}, {{u"category"_s, u"a"_s}});
    show(0);
    show(0, {}, {{u"category"_s, 5}});
    const auto found = [this](const QString &category) {
        const QDBusMessage reply = call(u"GetNotificationsByCategory"_s, {category});
        QList<uint> all;
        if (reply.signature() != u"a(susssasa{sv}i)"_s)
            return QList<uint>{0};
        const auto list = qdbus_cast<NotificationList>(reply.arguments().at(0));
        for (const NotificationData &data : list)
            all.append(data.id);
        return all;
    };
    QCOMPARE(found(u"a"_s), QList<uint>({1, 3}));
    QCOMPARE(found(u"b"_s), QList<uint>{2});
    QCOMPARE(found(u"c"_s), QList<uint>());
    QCOMPARE(found(QString()), QList<uint>());
    QCOMPARE(found(u"5"_s), QList<uint>());
}

void TestNotificationService::keepsHintsAsTheyCame()
{
    const QVariantMap remote{{u"method"_s, u"launch"_s},
                             {u"arguments"_s, QVariantList{QStringList(u"callHistory"_s), 7U}}};
    show(0, {},
         {{u"category"_s, u"a"_s},
          {u"urgency"_s, QVariant::fromValue<uchar>(0)},
          {u"x-nimbo-alarm-cookie"_s, 4000000000U},
          {u"x-nimbo-remote-action-default"_s, remote}});
    const QStringList lines =
        m_service->busctl(u"call"_s, {interface, u"GetNotificationsByCategory"_s, u"s"_s, u"a"_s});
    QCOMPARE(lines.size(), 1);
    for (const QString &hint :
         {u"\"urgency\" y 0"_s, u"\"x-nimbo-alarm-cookie\" u 4000000000"_s,
          u"\"x-nimbo-remote-action-default\" a{sv} 2 \"arguments\" av 2 as 1 \"callHistory\" u 7 "
          "\"method\" s \"launch\""_s})
        QVERIFY2(lines.constFirst().contains(hint), qUtf8Printable(lines.constFirst()));
}

void TestNotificationService::dismisses()
{
    show(0);
    QCOMPARE(m_service->call(control, u"Dismiss"_s, {1U}).type(), QDBusMessage::ReplyMessage);
    QCOMPARE(m_service->nextSignal(u"NotificationClosed"_s).arguments(), QVariantList({1U, 2U}));
    QCOMPARE(m_service->call(control, u"Dismiss"_s, {1U}).errorMessage(),
             u"there is no notification 1"_s);
    QVERIFY(!m_service->pendingSignals().contains(u"NotificationClosed"_s));
}

void TestNotificationService::runsARemoteAction()
{
    Target target;
    QVERIFY(m_service->bus().registerVirtualObject(u"/target"_s, &target));
    const QVariantMap remote{
        {u"service"_s, m_service->bus().baseService()},
        {u"path"_s, u"/target"_s},
        {u"iface"_s, u"org.example.Target"_s},
        {u"method"_s, u"run"_s},
        {u"arguments"_s,
         QVariantList{QStringList({u"a"_s, u"b"_s}), 7U, QVariantMap{{u"key"_s, 5}}, u"text"_s}}};
    show(0, {u"default"_s, u"Open"_s, u"app"_s, u"App"_s},
         {{u"x-nimbo-remote-action-app"_s, remote}});
    // A second list has the same content.
    QCOMPARE(ids(), QList<uint>{1});
    QCOMPARE(m_service->call(control, u"Click"_s, {1U, u"app"_s}).type(),
             QDBusMessage::ReplyMessage);
    QCOMPARE(m_service->nextSignal(u"ActionInvoked"_s).arguments(), QVariantList({1U, u"app"_s}));
    QCOMPARE(m_service->nextSignal(u"NotificationClosed"_s).arguments(), QVariantList({1U, 2U}));
    QTRY_COMPARE(target.calls.size(), 1);
    const QDBusMessage &made = target.calls.constFirst();
    QCOMPARE(made.interface(), u"org.example.Target"_s);
    QCOMPARE(made.member(), u"run"_s);
    QCOMPARE(made.signature(), u"asua{sv}s"_s);
    QCOMPARE(made.arguments().at(0).toStringList(), QStringList({u"a"_s, u"b"_s}));
    QCOMPARE(qdbus_cast<QVariantMap>(made.arguments().at(2)), QVariantMap({{u"key"_s, 5}}));
    m_service->bus().unregisterObject(u"/target"_s);
}

void TestNotificationService::invokesAnActionWithoutARemoteCall()
{
    show(0, {u"default"_s, u"Open"_s});
    QCOMPARE(m_service->call(control, u"Click"_s, {1U, u"default"_s}).type(),
             QDBusMessage::ReplyMessage);
    QCOMPARE(m_service->nextSignal(u"ActionInvoked"_s).arguments(),
             QVariantList({1U, u"default"_s}));
    QCOMPARE(m_service->nextSignal(u"NotificationClosed"_s).arguments(), QVariantList({1U, 2U}));
}

void TestNotificationService::leavesAResidentNotificationOpen()
{
    show(0, {u"call"_s, u"Call"_s}, {{u"resident"_s, true}});
    QCOMPARE(m_service->call(control, u"Click"_s, {1U, u"call"_s}).type(),
             QDBusMessage::ReplyMessage);
    QCOMPARE(m_service->nextSignal(u"ActionInvoked"_s).arguments(), QVariantList({1U, u"call"_s}));
    QCOMPARE(ids(), QList<uint>{1});
    QVERIFY(m_service->pendingSignals().filter(u"NotificationClosed"_s).isEmpty());
}

void TestNotificationService::refusesToClickWhatIsNotThere()
{
    show(0, {u"default"_s, u"Open"_s, u"odd"_s});
    const auto refusal = [this](uint id, const QString &action) {
        return m_service->call(control, u"Click"_s, {id, action}).errorMessage();
    };
    QCOMPARE(refusal(2, u"default"_s), u"there is no notification 2"_s);
    QCOMPARE(refusal(0, QString()), u"there is no notification 0"_s);
    QCOMPARE(refusal(1, u"Open"_s), u"notification 1 has no action \"Open\""_s);
    QCOMPARE(refusal(1, QString()), u"notification 1 has no action \"\""_s);
    QCOMPARE(ids(), QList<uint>{1});
}

void TestNotificationService::survivesABrokenRemoteAction_data()
{
    QTest::addColumn<QVariant>("hint");

    QTest::newRow("a text") << QVariant(u"launch"_s);
    QTest::newRow("a number") << QVariant(5);
    QTest::newRow("a list") << QVariant(QVariantList{1, 2});
    QTest::newRow("empty") << QVariant(QVariantMap());
    const QVariantMap call{{u"service"_s, u"org.example.Nobody"_s},
                           {u"path"_s, u"/target"_s},
                           {u"iface"_s, u"org.example.Target"_s},
                           {u"method"_s, u"run"_s}};
    QTest::newRow("nobody there") << QVariant(call);
    for (const QString &key : {u"service"_s, u"path"_s, u"iface"_s, u"method"_s}) {
        QVariantMap broken = call;
        broken.insert(key, u"no such //name!"_s);
        QTest::newRow(qUtf8Printable(u"bad "_s + key)) << QVariant(broken);
    }
    QVariantMap broken = call;
    broken.insert(u"arguments"_s, QVariantMap{{u"a"_s, 1}});
    QTest::newRow("arguments of another type") << QVariant(broken);
}

void TestNotificationService::survivesABrokenRemoteAction()
{
    QFETCH(QVariant, hint);

    show(0, {u"default"_s, QString()}, {{u"x-nimbo-remote-action-default"_s, hint}});
    m_service->call(control, u"Click"_s, {1U, u"default"_s});
    QCOMPARE(m_service->nextSignal(u"NotificationClosed"_s).arguments(), QVariantList({1U, 2U}));
    QVERIFY(m_service->logs(u"The action \"default\" of notification 1 failed: "_s));
    m_service->takeLog(); // QtDBus warns of some of them.
}

QTEST_GUILESS_MAIN(TestNotificationService)

#include "tst_notificationservice.moc"
