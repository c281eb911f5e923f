// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "callmeanwhile.h"
#include "literals.h"
#include "privatebus.h"
#include "systemclock.h"
#include "timedaemon.h"
#include "timedaemoncontrol.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDateTime>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <limits>
#include <memory>
#include <optional>

namespace {

constexpr int patience = 30000;

/// A clock that shows what the test sets. Like the system's, it forgets a request when it is set.
class SteppedClock : public WallClock
{
    Q_OBJECT

public:
    qint64 now() const override { return m_now; }
    void wakeAt(qint64 seconds) override { m_request = seconds; }
    void letSleep() override { m_request.reset(); }

    std::optional<qint64> request() const { return m_request; }

    /// Time passes, or the machine has slept until then.
    void passTo(qint64 seconds)
    {
        m_now = seconds;
        if (m_request && *m_request <= m_now)
            wake();
    }

    /// Somebody sets the clock.
    void set(qint64 seconds)
    {
        m_now = seconds;
        if (m_request)
            wake();
    }

private:
    void wake()
    {
        m_request.reset();
        Q_EMIT woke();
    }

    qint64 m_now = 0;
    std::optional<qint64> m_request;
};

} // namespace

/// When alarms fire, with a clock that does what the test says; and the clock of the machine.
class TestFiring : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void waitsForTheNextAlarmAlone();
    void firesOnceWhenTheTimeHasCome();
    void firesWhenTheClockIsSetForwards();
    void waitsWhenTheClockIsSetBackwards_data();
    void waitsWhenTheClockIsSetBackwards();
    void firesAfterASleep();
    void firesAtStartWhatWasDueMeanwhile();
    void endsNoEarlierThanItsTime();

    void systemClockWakesAtItsTime();
    void systemClockWakesAtOnceForThePast();
    void systemClockHasOneRequest();
    void systemClockTakesAnyTime();

private:
    uint add(qint64 ticker);
    void startDaemon();

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<SteppedClock> m_clock;
    std::unique_ptr<TimeDaemon> m_daemon;
    std::unique_ptr<QSignalSpy> m_fired;
};

void TestFiring::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_bus = std::make_unique<PrivateBus>();
    m_bus->start(m_folder->path(), u"system"_s);
    m_clock = std::make_unique<SteppedClock>();
    m_clock->set(1000);
    startDaemon();
}

void TestFiring::cleanup()
{
    m_daemon.reset();
    QDBusConnection::disconnectFromBus(u"daemon"_s);
    QDBusConnection::disconnectFromBus(u"client"_s);
}

void TestFiring::startDaemon()
{
    m_daemon.reset();
    QDBusConnection::disconnectFromBus(u"daemon"_s);
    m_daemon =
        std::make_unique<TimeDaemon>(m_folder->filePath(u"alarms"_s), *m_clock,
                                     QDBusConnection::connectToBus(m_bus->address(), u"daemon"_s));
    m_fired = std::make_unique<QSignalSpy>(m_daemon.get(), &TimeDaemon::fired);
    QVERIFY(m_daemon->start());
}

/// Adds an alarm as a client does. Returns its cookie, or 0 if the call fails.
uint TestFiring::add(qint64 ticker)
{
    QDBusMessage call = QDBusMessage::createMethodCall(u"com.nimbo.timed"_s, u"/com/nimbo/timed"_s,
                                                       u"com.nimbo.timed"_s, u"add_event"_s);
    call.setArguments({QVariant::fromValue(Alarm{3, ticker, {}})});
    const QDBusMessage reply =
        callMeanwhile(QDBusConnection::connectToBus(m_bus->address(), u"client"_s), call, patience);
    return reply.arguments().value(0).toUInt();
}

void TestFiring::waitsForTheNextAlarmAlone()
{
    QVERIFY(!m_clock->request());
    QCOMPARE(add(3000), 1U);
    QCOMPARE(*m_clock->request(), 3000);
    QCOMPARE(add(2000), 2U);
    QCOMPARE(add(4000), 3U);
    QCOMPARE(*m_clock->request(), 2000);
    m_clock->passTo(2000);
    QCOMPARE(*m_clock->request(), 3000);
    m_clock->passTo(5000);
    QVERIFY(!m_clock->request());
}

void TestFiring::firesOnceWhenTheTimeHasCome()
{
    const uint cookie = add(2000);
    m_clock->passTo(1999);
    QCOMPARE(m_fired->size(), 0);
    for (const qint64 time : {2000, 2000, 2001, 9000})
        m_clock->passTo(time);
    QCOMPARE(m_fired->size(), 1);
    QCOMPARE(m_fired->constFirst().at(1).toUInt(), cookie);
}

void TestFiring::firesWhenTheClockIsSetForwards()
{
    add(2000);
    add(2500);
    add(4000);
    m_clock->set(3000);
    QCOMPARE(m_fired->size(), 2);
    m_clock->set(1000);
    m_clock->set(3999);
    QCOMPARE(m_fired->size(), 2);
    QCOMPARE(*m_clock->request(), 4000);
    m_clock->passTo(4000);
    QCOMPARE(m_fired->size(), 3);
}

void TestFiring::waitsWhenTheClockIsSetBackwards_data()
{
    QTest::addColumn<qint64>("seconds");

    QTest::newRow("a second") << qint64{1};
    QTest::newRow("an hour") << qint64{60} * 60;
    QTest::newRow("a year") << qint64{365} * 24 * 60 * 60;
}

void TestFiring::waitsWhenTheClockIsSetBackwards()
{
    QFETCH(qint64, seconds);

    constexpr qint64 due = 1893585600;
    m_clock->set(due - 200);
    add(due);
    m_clock->passTo(due - 100);
    m_clock->set(due - 100 - seconds);
    QCOMPARE(m_fired->size(), 0);
    QCOMPARE(*m_clock->request(), due);
    m_clock->passTo(due - 1);
    QCOMPARE(m_fired->size(), 0);
    m_clock->passTo(due);
    QCOMPARE(m_fired->size(), 1);
}

void TestFiring::firesAfterASleep()
{
    add(2000);
    add(3000);
    add(900000);
    m_clock->passTo(800000);
    QCOMPARE(m_fired->size(), 2);
    QCOMPARE(*m_clock->request(), 900000);
}

void TestFiring::firesAtStartWhatWasDueMeanwhile()
{
    add(2000);
    add(4000);
    m_daemon.reset();
    m_clock->passTo(3000);
    startDaemon();
    QCOMPARE(*m_clock->request(), 2000);
    m_clock->passTo(3000);
    QCOMPARE(m_fired->size(), 1);
    startDaemon();
    m_clock->passTo(3001);
    QCOMPARE(m_fired->size(), 0);
    QCOMPARE(*m_clock->request(), 4000);
}

/// The clock may wake the daemon without a reason, as it does when it is set by nothing.
void TestFiring::endsNoEarlierThanItsTime()
{
    add(2000);
    for (int i = 0; i < 3; ++i)
        m_clock->set(1500);
    QCOMPARE(m_fired->size(), 0);
    QCOMPARE(*m_clock->request(), 2000);
}

void TestFiring::systemClockWakesAtItsTime()
{
    SystemClock clock;
    QSignalSpy woke(&clock, &WallClock::woke);
    const qint64 due = clock.now() + 1;
    QVERIFY(qAbs(clock.now() - QDateTime::currentSecsSinceEpoch()) <= 1);
    clock.wakeAt(due);
    QTRY_COMPARE(woke.size(), 1);
    QVERIFY(clock.now() >= due);
}

void TestFiring::systemClockWakesAtOnceForThePast()
{
    SystemClock clock;
    QSignalSpy woke(&clock, &WallClock::woke);
    for (const qint64 past :
         {clock.now(), qint64{1}, qint64{0}, qint64{-1}, std::numeric_limits<qint64>::min()}) {
        clock.wakeAt(past);
        QTRY_COMPARE(woke.size(), 1);
        woke.clear();
    }
}

void TestFiring::systemClockHasOneRequest()
{
    SystemClock clock;
    QSignalSpy woke(&clock, &WallClock::woke);
    SystemClock other;
    QSignalSpy otherWoke(&other, &WallClock::woke);
    clock.wakeAt(0);
    clock.wakeAt(clock.now() + 1000);
    other.wakeAt(0);
    QTRY_COMPARE(otherWoke.size(), 1);
    QCOMPARE(woke.size(), 0);
    clock.wakeAt(0);
    clock.letSleep();
    other.wakeAt(0);
    QTRY_COMPARE(otherWoke.size(), 2);
    QCOMPARE(woke.size(), 0);
}

void TestFiring::systemClockTakesAnyTime()
{
    SystemClock clock;
    QSignalSpy woke(&clock, &WallClock::woke);
    SystemClock other;
    QSignalSpy otherWoke(&other, &WallClock::woke);
    for (const qint64 time : {qint64{4294967296}, std::numeric_limits<qint64>::max() / 1000,
                              std::numeric_limits<qint64>::max()}) {
        clock.wakeAt(time);
        other.wakeAt(0);
        QTRY_VERIFY(!otherWoke.isEmpty());
        otherWoke.clear();
    }
    QCOMPARE(woke.size(), 0);
}

QTEST_GUILESS_MAIN(TestFiring)

#include "tst_firing.moc"
