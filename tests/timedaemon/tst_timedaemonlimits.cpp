// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "literals.h"
#include "rawconnection.h"
#include "serviceundertest.h"
#include "timedaemonclient.h"

#include <QFile>
#include <QTest>

#include <csignal>
#include <memory>
#include <vector>

#include <unistd.h>

namespace {

constexpr uint alarmCount = 10'000;
constexpr uint dueCount = alarmCount / 2;
constexpr qlonglong farAhead = 99999999999;
constexpr int patience = 60'000;

/// So long that a title of each alarm makes the largest set of alarms that a user may have. A
/// character has three bytes in a message.
const QString title = QString(406, u'€');

/// The first half of the alarms is due.
QByteArray largestState()
{
    QByteArrayList alarms;
    for (uint cookie = 1; cookie <= alarmCount; ++cookie) {
        alarms.append(R"({"cookie": )" + QByteArray::number(cookie) + R"(, "flags": 1, "ticker": ")"
                      + QByteArray::number(cookie <= dueCount ? 5 : farAhead)
                      + R"(", "attributes": {"TITLE": ")" + title.toUtf8() + R"("}})");
    }
    return R"({"lastCookie": 10000, "due": [], "alarms": [)" + alarms.join(',') + "]}";
}

} // namespace

/// The largest set of alarms on a bus with the limits of a system bus.
class TestTimeDaemonLimits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void servesAllWhileSomeDoNotRead();
};

void TestTimeDaemonLimits::initTestCase()
{
    if (geteuid() != 0)
        QSKIP("Only root can play two users.");
    registerAlarmTypes();
}

/// Ada has the largest set of alarms, many of which become due together, and more processes that
/// do not read than the bus lets the daemon wait for.
void TestTimeDaemonLimits::servesAllWhileSomeDoNotRead()
{
    ServiceUnderTest daemon({u"time-daemon"_s,
                             ServiceUnderTest::Bus::System,
                             timed,
                             timedPath,
                             {},
                             PrivateBus::Limits::Stock});
    TimeDaemonClient ada(daemon.address(), nobody, u"ada"_s);
    TimeDaemonClient bob(daemon.address(), daemonUser, u"bob"_s);
    std::vector<std::unique_ptr<RawConnection>> sleepers;
    asUser(nobody, [&] {
        for (int i = 0; i < 200; ++i)
            sleepers.push_back(std::make_unique<RawConnection>(daemon.address()));
    });
    QVERIFY(sleepers.back()->isOpen());
    QVERIFY(daemon.writeState(u"alarms/%1.json"_s.arg(nobody), largestState()));
    QVERIFY(daemon.start());

    QTRY_VERIFY_WITH_TIMEOUT(ada.due().size() == dueCount, patience);
    // The bus keeps each change for each sleeper, until it keeps so much that it stops the daemon.
    for (uint cookie = alarmCount + 1; cookie <= alarmCount + 40; ++cookie)
        QCOMPARE(ada.add(farAhead), cookie);
    QCOMPARE(bob.add(0), 1U);
    QTRY_COMPARE_WITH_TIMEOUT(bob.due(), QList<uint>{1}, patience);

    QList<uint> cookies;
    for (const QVariant &cookie : ada.query())
        cookies.append(cookie.toUInt());
    cookies = cookies.mid(0, alarmCount - dueCount);
    const AttributesByCookie attributes = ada.attributes(cookies);
    QCOMPARE(attributes.size(), int(alarmCount - dueCount));
    for (const auto &alarm : attributes)
        QCOMPARE(alarm.value(u"TITLE"_s), title);
    QVERIFY(bob.isConnected() && ada.isConnected());
    QCOMPARE(daemon.takeLog(), QStringList());
}

QTEST_GUILESS_MAIN(TestTimeDaemonLimits)

#include "tst_timedaemonlimits.moc"
