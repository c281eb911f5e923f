// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "fakeplatform.h"
#include "literals.h"
#include "messagelog.h"
#include "simfiltershelper.h"

#include <qofonosimwatcher.h>

#include <QTest>

/// The filters in a process that has no system bus.
class TestSimFiltersWithoutBus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void lockNobodyOut();
};

void TestSimFiltersWithoutBus::initTestCase()
{
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere");
}

void TestSimFiltersWithoutBus::lockNobodyOut()
{
    MessageLog log;
    FakePlatform platform;
    SimFiltersHelper helper(nullptr);
    QCOMPARE(log.take(),
             QStringList(u"debug: SimFiltersHelper::SimFiltersHelper(QObject*) "
                         "Unable to connect to voice call filter interfaces!"_s));
    int timesReady = 0;
    connect(&helper, &SimFiltersHelper::readyChanged, this, [&timesReady] { ++timesReady; });

    for (const QStringList &sims : {QStringList{u"one"_s}, QStringList{u"one"_s, u"two"_s}}) {
        platform.simsValid = true;
        platform.sims = sims;
        Q_EMIT helper.findChild<QOfonoSimWatcher *>()->presentSimListChanged();
        QCOMPARE(helper.activeSimCount(), sims.size());
        QStringList lines;
        QTRY_COMPARE((lines += log.take()).size(), 2);
        QCOMPARE(lines,
                 QStringList({u"debug: (dial) GetAll() failed: "
                              "\"org.freedesktop.DBus.Error.Disconnected\" "
                              "\"Not connected to D-Bus server\""_s,
                              u"debug: (incoming) GetAll() failed: "
                              "\"org.freedesktop.DBus.Error.Disconnected\" "
                              "\"Not connected to D-Bus server\""_s}));
        QVERIFY(helper.anyActiveSimCanDial());
        QVERIFY(helper.anyActiveSimCanReceive());
        QCOMPARE(timesReady, 1);
    }
}

QTEST_GUILESS_MAIN(TestSimFiltersWithoutBus)

#include "tst_simfilterswithoutbus.moc"
