// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "alarm.h"
#include "callmeanwhile.h"
#include "literals.h"
#include "privatebus.h"
#include "serviceundertest.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusPendingCallWatcher>
#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>
#include <optional>

namespace {

constexpr int patience = 30000;
constexpr qlonglong farAhead = 99999999999;

const QString timed = u"com.nimbo.timed"_s;
const QString timedPath = u"/com/nimbo/timed"_s;
const QString control = u"com.nimbo.simulator.TimeDaemon"_s;

QDBusMessage callOf(const QString &method, const QVariantList &arguments = {},
                    const QString &interface = timed)
{
    QDBusMessage call = QDBusMessage::createMethodCall(timed, timedPath, interface, method);
    call.setArguments(arguments);
    return call;
}

/// An operation, and the alarms once it is done.
struct Operation
{
    QDBusMessage call;
    AlarmsByCookie after;
};

/// Returns a random operation on \a alarms. \a nextCookie is the cookie that a new alarm gets.
Operation randomOperation(QRandomGenerator &random, const AlarmsByCookie &alarms, uint nextCookie)
{
    const uint cookie = alarms.isEmpty() ? 1 : alarms.keys().at(random.bounded(alarms.size()));
    const Alarm alarm{
        3, farAhead + random.bounded(1000), {{u"TITLE"_s, QString(random.bounded(5000), u'x')}}};
    AlarmsByCookie after = alarms;
    const int kind = random.bounded(alarms.size() > 30 ? 4 : 6);
    if (kind < 4)
        after.remove(cookie);
    if (kind >= 2)
        after.insert(nextCookie, alarm);
    const QVariant argument = QVariant::fromValue(alarm);
    if (kind < 2)
        return {callOf(u"cancel"_s, {cookie}), after};
    if (kind < 4)
        return {callOf(u"replace_event"_s, {argument, cookie}), after};
    return {callOf(u"add_event"_s, {argument}), after};
}

/// Lets a random part of the time pass that an operation takes.
void passTime(QRandomGenerator &random)
{
    QElapsedTimer timer;
    timer.start();
    const qint64 nanoseconds = random.bounded(4'000'000);
    while (timer.nsecsElapsed() < nanoseconds)
        QCoreApplication::processEvents();
}

} // namespace

/// The time daemon ends in the middle of anything, and its disk is full.
class TestTimeDaemonCrash : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void losesNothingThatItHasAnswered();
    void losesNothingOnAFullDisk();
};

void TestTimeDaemonCrash::initTestCase()
{
    registerAlarmTypes();
}

/// A thousand random operations, every eighth of them with SIGKILL at a random point. After the
/// restart, an operation that was answered is there; any other is there as a whole or not at all.
void TestTimeDaemonCrash::losesNothingThatItHasAnswered()
{
    QRandomGenerator random(13);
    ServiceUnderTest daemon(
        {u"time-daemon"_s, ServiceUnderTest::Bus::System, timed, timedPath, {}});
    QVERIFY(daemon.start());
    AlarmsByCookie alarms;
    uint lastCookie = 0;
    int kills = 0;
    for (int i = 0; i < 1000; ++i) {
        const Operation operation = randomOperation(random, alarms, lastCookie + 1);
        QDBusPendingCallWatcher watcher(daemon.bus().asyncCall(operation.call, patience));
        const bool isKilled = random.bounded(8) == 0;
        if (isKilled) {
            ++kills;
            passTime(random);
            QVERIFY(daemon.end(SIGKILL));
        }
        QTRY_VERIFY_WITH_TIMEOUT(watcher.isFinished(), patience);
        if (!isKilled)
            QVERIFY2(!watcher.isError(), qUtf8Printable(watcher.error().message()));
        if (isKilled)
            QVERIFY(daemon.start());

        const auto kept =
            qdbus_cast<AlarmsByCookie>(daemon.call(control, u"List"_s).arguments().value(0));
        QVERIFY2(kept == operation.after || (watcher.isError() && kept == alarms),
                 qPrintable(u"operation %1"_s.arg(i)));
        alarms = kept;
        if (!kept.isEmpty())
            lastCookie = std::max(lastCookie, kept.lastKey());
    }
    QVERIFY(kills > 90);
    // A write that was cut short leaves a file behind, which the next write uses.
    QVERIFY(daemon.call(timed, u"add_event"_s, {QVariant::fromValue(Alarm{3, farAhead, {}})}).type()
            == QDBusMessage::ReplyMessage);
    QCOMPARE(daemon.takeLog(), QStringList());
    QCOMPARE(QDir(daemon.stateFolder() + u"/alarms"_s).entryList(QDir::Files).size(), 1);
}

/// The daemon starts again in its sandbox whenever it ends, because a file system of the sandbox
/// ends with it.
void TestTimeDaemonCrash::losesNothingOnAFullDisk()
{
    QTemporaryDir folder;
    PrivateBus systemBus;
    QVERIFY(systemBus.start(folder.path(), u"system"_s));
    const QString state = folder.filePath(u"state"_s);
    QVERIFY(QDir().mkpath(state));
    ChildProcess sandbox;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, systemBus.address());
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, systemBus.address());
    sandbox.setProcessEnvironment(environment);
    sandbox.start(u"bwrap"_s,
                  {u"--die-with-parent"_s, u"--dev-bind"_s, u"/"_s, u"/"_s, u"--size"_s,
                   u"262144"_s, u"--tmpfs"_s, state, u"sh"_s, u"-c"_s,
                   u"while :; do \"$@\"; done"_s, u"sh"_s, qEnvironmentVariable("PARLEY_HANDSET"),
                   u"--service"_s, u"time-daemon"_s, u"--state"_s, state});
    const QDBusConnection bus = QDBusConnection::connectToBus(systemBus.address(), folder.path());
    const auto isRunning = [&bus] { return bus.interface()->isServiceRegistered(timed).value(); };
    QTRY_VERIFY_WITH_TIMEOUT(isRunning(), patience);
    const auto list = [&bus] {
        return qdbus_cast<AlarmsByCookie>(
            callMeanwhile(bus, callOf(u"List"_s, {}, control), patience).arguments().value(0));
    };

    QRandomGenerator random(26);
    AlarmsByCookie alarms;
    int refusals = 0;
    int done = 0;
    for (int i = 0; i < 300; ++i) {
        // Mostly it gets fuller.
        const Alarm alarm{3, farAhead, {{u"TITLE"_s, QString(random.bounded(20000), u'x')}}};
        const bool adds = random.bounded(4) > 0 || alarms.isEmpty();
        const uint cookie = adds ? 0 : alarms.firstKey();
        const QDBusMessage reply =
            callMeanwhile(bus,
                          adds ? callOf(u"add_event"_s, {QVariant::fromValue(alarm)})
                               : callOf(u"cancel"_s, {cookie}),
                          patience);
        if (reply.type() == QDBusMessage::ErrorMessage) {
            ++refusals;
            QCOMPARE(reply.errorName(), u"org.freedesktop.DBus.Error.IOError"_s);
            QCOMPARE(reply.errorMessage(), u"the alarms cannot be kept: No space left on device"_s);
        } else {
            ++done;
            if (adds)
                alarms.insert(reply.arguments().at(0).toUInt(), alarm);
            else
                alarms.remove(cookie);
        }
        QCOMPARE(list(), alarms);
        if (i % 50 == 49) {
            const uint process = bus.interface()->servicePid(timed);
            const auto isRestarted = [&bus, process] {
                const uint now = bus.interface()->servicePid(timed);
                return now != 0 && now != process;
            };
            QCOMPARE(::kill(static_cast<pid_t>(process), SIGKILL), 0);
            QTRY_VERIFY_WITH_TIMEOUT(isRestarted(), patience);
            QCOMPARE(list(), alarms);
        }
    }
    QVERIFY2(refusals > 10 && done > 10, qPrintable(u"%1, %2"_s.arg(refusals).arg(done)));
    sandbox.stop();
    QDBusConnection::disconnectFromBus(folder.path());
}

QTEST_GUILESS_MAIN(TestTimeDaemonCrash)

#include "tst_timedaemoncrash.moc"
