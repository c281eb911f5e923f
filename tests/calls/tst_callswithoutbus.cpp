// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "calls.h"
#include "fakeofono.h"
#include "literals.h"
#include "privatebus.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

/// The calls when the bus goes, and without one. libdbus looks for the bus once in a process.
class TestCallsWithoutBus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knowsThatTheBusIsGone();
};

void TestCallsWithoutBus::knowsThatTheBusIsGone()
{
    const QTemporaryDir folder;
    PrivateBus bus;
    QVERIFY(bus.start(folder.path(), u"system"_s));
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", bus.address().toUtf8());
    FakeOfono ofono(bus.address(), {u"/ril_0"_s});
    ofono.setCalls(u"/ril_0"_s,
                   {{QDBusObjectPath(u"/ril_0/voicecall01"_s), FakeOfono::call(u"active"_s)}});
    Calls calls;
    const QSignalSpy ended(&calls, &CallModel::ended);
    calls.componentComplete();
    QTRY_COMPARE(calls.count(), 1);
    QTRY_COMPARE(calls.status(), Telephony::Ready);
    bus.stop();
    QTRY_COMPARE(calls.status(), Telephony::NoBus);
    QCOMPARE(calls.count(), 0);
    QCOMPARE(ended.count(), 1);

    Calls later;
    QSignalSpy failures(&later, &Calls::failed);
    later.componentComplete();
    QCOMPARE(later.status(), Telephony::NoBus);
    later.dial(u"5550100"_s);
    QCOMPARE(failures.count(), 0); // Failures come when the caller can have connected.
    QVERIFY(failures.wait());
    QCOMPARE(failures.at(0).at(3).toInt(), int(Telephony::NoStack));
}

QTEST_GUILESS_MAIN(TestCallsWithoutBus)

#include "tst_callswithoutbus.moc"
