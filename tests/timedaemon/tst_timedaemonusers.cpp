// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "alarm.h"
#include "literals.h"
#include "serviceundertest.h"
#include "timedaemonclient.h"

#include <QDBusConnectionInterface>
#include <QFile>
#include <QTest>

#include <csignal>
#include <memory>

using Triggers = TickersByCookie;

namespace {

constexpr qlonglong farAhead = 99999999999;

QString stateFile(uint user)
{
    return u"alarms/%1.json"_s.arg(user);
}

} // namespace

/// The alarms of two users, who are real users for the bus.
class TestTimeDaemonUsers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void keepsAlarmsApart();
    void keepsDueAlarmsApart();
    void tellsEachUserAlone();
    void tellsUsersAfterARestart();
    void limitsEachUser();
    void keepsAlarmsApartAfterAKill();

private:
    std::unique_ptr<ServiceUnderTest> m_daemon;
    std::unique_ptr<TimeDaemonClient> m_ada;
    std::unique_ptr<TimeDaemonClient> m_bob;
};

void TestTimeDaemonUsers::initTestCase()
{
    if (geteuid() != 0)
        QSKIP("Only root can play two users.");
    registerAlarmTypes();
}

void TestTimeDaemonUsers::init()
{
    m_daemon = std::make_unique<ServiceUnderTest>(ServiceUnderTest::Place{
        u"time-daemon"_s, ServiceUnderTest::Bus::System, timed, timedPath, {}});
    QVERIFY(m_daemon->start());
    m_ada = std::make_unique<TimeDaemonClient>(m_daemon->address(), nobody, u"ada"_s);
    m_bob = std::make_unique<TimeDaemonClient>(m_daemon->address(), daemonUser, u"bob"_s);
    QVERIFY(m_ada->isConnected() && m_bob->isConnected());
    QCOMPARE(m_daemon->bus().interface()->serviceUid(timed).value(), 0U);
}

void TestTimeDaemonUsers::cleanup()
{
    m_ada.reset();
    m_bob.reset();
    if (m_daemon)
        QCOMPARE(m_daemon->takeLog(), QStringList());
    m_daemon.reset();
}

void TestTimeDaemonUsers::keepsAlarmsApart()
{
    QCOMPARE(m_ada->add(farAhead, u"Ada's"_s), 1U);
    QCOMPARE(m_ada->add(farAhead, u"Ada's other"_s), 2U);
    QCOMPARE(m_bob->add(farAhead, u"Bob's"_s), 1U);

    QCOMPARE(m_ada->query(), QVariantList({1U, 2U}));
    QCOMPARE(m_bob->query(), QVariantList({1U}));
    QCOMPARE(m_bob->attributes({1, 2}), AttributesByCookie({{1, {{u"TITLE"_s, u"Bob's"_s}}}}));

    QCOMPARE(m_bob->call(u"cancel"_s, {2U}).arguments(), QVariantList{false});
    const QVariant alarm = QVariant::fromValue(Alarm{3, farAhead, {{u"TITLE"_s, u"new"_s}}});
    QCOMPARE(m_bob->call(u"replace_event"_s, {alarm, 2U}).arguments(), QVariantList{2U});
    QCOMPARE(m_ada->attributes({1, 2}),
             AttributesByCookie(
                 {{1, {{u"TITLE"_s, u"Ada's"_s}}}, {2, {{u"TITLE"_s, u"Ada's other"_s}}}}));
    QCOMPARE(m_ada->call(u"cancel"_s, {1U}).arguments(), QVariantList{true});
    QCOMPARE(m_bob->query(), QVariantList({1U, 2U}));
    // Root is a user like any other.
    QVERIFY(qdbus_cast<QVariantList>(
                m_daemon->call(timed, u"query"_s, {QVariantMap()}).arguments().value(0))
                .isEmpty());
}

void TestTimeDaemonUsers::keepsDueAlarmsApart()
{
    QCOMPARE(m_ada->add(0), 1U);
    QTRY_COMPARE(m_ada->due(), QList<uint>{1});
    QCOMPARE(m_bob->due(), QList<uint>());
    QCOMPARE(m_bob->call(u"Get"_s, {1U}, dueAlarms).errorMessage(), u"there is no due alarm 1"_s);
    QCOMPARE(m_bob->call(u"Dismiss"_s, {1U}, dueAlarms).arguments(), QVariantList{false});
    QCOMPARE(m_bob->dueChanges(), 0);

    QCOMPARE(m_ada->dueChanges(), 1);
    const QDBusMessage got = m_ada->call(u"Get"_s, {1U}, dueAlarms);
    QCOMPARE(got.signature(), u"(uxa{ss})"_s);
    QVERIFY(qdbus_cast<Alarm>(got.arguments().at(0)) == (Alarm{3, 0, {{u"TITLE"_s, QString()}}}));
    QCOMPARE(m_ada->call(u"Dismiss"_s, {1U}, dueAlarms).arguments(), QVariantList{true});
    QTRY_COMPARE(m_ada->dueChanges(), 2);
    QCOMPARE(m_ada->due(), QList<uint>());
}

/// Every connection of the user hears of the change, also one that has never called the daemon; no
/// connection of another user does.
void TestTimeDaemonUsers::tellsEachUserAlone()
{
    const TimeDaemonClient other(m_daemon->address(), nobody, u"ada's other process"_s);
    QVERIFY(other.isConnected());
    QCOMPARE(m_ada->add(farAhead), 1U);
    QCOMPARE(m_bob->add(farAhead + 1), 1U);
    const QVector<Triggers> adas{Triggers{{1, farAhead}}};
    QTRY_COMPARE(m_ada->told(), adas);
    QTRY_COMPARE(other.told(), adas);
    QTRY_COMPARE(m_bob->told(), QVector<Triggers>{Triggers({{1, farAhead + 1}})});

    m_bob->forget();
    QCOMPARE(m_ada->call(u"cancel"_s, {1U}).arguments(), QVariantList{true});
    QTRY_COMPARE(m_ada->told().size(), 2);
    QVERIFY(m_ada->told().last().isEmpty());
    QCOMPARE(m_bob->query().size(), 1); // What was sent to Bob before has come.
    QVERIFY(m_bob->told().isEmpty());
}

/// The client has subscribed to the signals of the daemon that ran before, and has not spoken to
/// the new one.
void TestTimeDaemonUsers::tellsUsersAfterARestart()
{
    QVERIFY(m_daemon->end(SIGTERM));
    for (const uint user : {nobody, daemonUser})
        QVERIFY(m_daemon->writeState(stateFile(user),
                                     R"({"lastCookie": 7, "alarms": [
            {"cookie": 3, "flags": 3, "ticker": "5", "attributes": {}},
            {"cookie": 7, "flags": 3, "ticker": "99999999999", "attributes": {}}], "due": []})"));
    QVERIFY(m_daemon->start());
    for (TimeDaemonClient *client : {m_ada.get(), m_bob.get()}) {
        QTRY_COMPARE(client->told(), QVector<Triggers>{Triggers({{7, farAhead}})});
        QCOMPARE(client->dueChanges(), 1);
        QCOMPARE(client->due(), QList<uint>{3});
    }
}

void TestTimeDaemonUsers::limitsEachUser()
{
    QVERIFY(m_daemon->end(SIGTERM));
    QByteArrayList lines;
    for (int i = 1; i <= 10000; ++i)
        lines.append("{\"cookie\": " + QByteArray::number(i)
                     + R"(, "flags": 1, "ticker": "99999999999", "attributes": {}})");
    QVERIFY(m_daemon->writeState(stateFile(nobody),
                                 R"({"lastCookie": 10000, "due": [], "alarms": [)" + lines.join(',')
                                     + "]}"));
    QVERIFY(m_daemon->start());
    const QVariant alarm = QVariant::fromValue(Alarm{3, farAhead, {}});
    const QDBusMessage refused = m_ada->call(u"add_event"_s, {alarm});
    QCOMPARE(refused.errorName(), u"org.freedesktop.DBus.Error.LimitsExceeded"_s);
    QCOMPARE(refused.errorMessage(), u"a user has at most 10000 alarms"_s);
    QCOMPARE(m_bob->add(farAhead), 1U);
    QCOMPARE(m_ada->query().size(), 10000);
    QList<uint> cookies;
    for (uint i = 1; i <= 10001; ++i)
        cookies.append(i);
    QCOMPARE(m_ada->attributes(cookies.mid(1)).size(), 9999);
    QCOMPARE(
        m_ada->call(u"get_attributes_by_cookies"_s, {QVariant::fromValue(cookies)}).errorMessage(),
        u"a list has at most 10000 cookies"_s);
}

void TestTimeDaemonUsers::keepsAlarmsApartAfterAKill()
{
    QCOMPARE(m_ada->add(farAhead), 1U);
    QCOMPARE(m_ada->add(farAhead), 2U);
    QCOMPARE(m_bob->add(farAhead), 1U);
    QVERIFY(m_daemon->end(SIGKILL));
    QVERIFY(m_daemon->start());
    QCOMPARE(m_ada->query(), QVariantList({1U, 2U}));
    QCOMPARE(m_bob->query(), QVariantList({1U}));
}

QTEST_GUILESS_MAIN(TestTimeDaemonUsers)

#include "tst_timedaemonusers.moc"
