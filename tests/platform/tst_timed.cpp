// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "bussignature.h"
#include "literals.h"
#include "messagelog.h"
#include "privatebus.h"
#include "scriptedservice.h"

#include <timed/exception.h>
#include <timed/interface.h>

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using Maemo::Timed::Event;

namespace {

template <typename Function>
bool isRefused(const Function &function)
{
    try {
        function();
        return false;
    } catch (const Maemo::Timed::Exception &) {
        return true;
    }
}

} // namespace

class TestTimed : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void sendsAnEvent_data();
    void sendsAnEvent();
    void refusesWhatAnEventCannotCarry();
    void tellsOfTriggers();
    void answersWithAnErrorWithoutADaemon();

private:
    QTemporaryDir m_folder;
    PrivateBus m_bus;
    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<ScriptedService> m_daemon;
};

void TestTimed::initTestCase()
{
    QVERIFY(m_bus.start(m_folder.path(), u"system"_s));
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address().toUtf8());
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().toUtf8());
    qDBusRegisterMetaType<Event::Triggers>();
}

void TestTimed::init()
{
    m_log.reset();
    m_log = std::make_unique<MessageLog>();
    m_daemon = std::make_unique<ScriptedService>(m_bus.address(), u"com.nimbo.timed"_s,
                                                 u"/com/nimbo/timed"_s);
}

void TestTimed::cleanup()
{
    m_daemon.reset();
    QCOMPARE(m_log->take().join(u'\n'), QString());
}

void TestTimed::sendsAnEvent_data()
{
    QTest::addColumn<bool>("replaces");
    QTest::addColumn<qlonglong>("ticker");

    QTest::newRow("added") << false << qlonglong{1893585600};
    QTest::newRow("in place of another") << true << qlonglong{1893585600};
    QTest::newRow("at the epoch") << false << qlonglong{0};
    QTest::newRow("late") << false << qlonglong{4294967295};
}

void TestTimed::sendsAnEvent()
{
    QFETCH(bool, replaces);
    QFETCH(qlonglong, ticker);

    Event event;
    event.setReminderFlag();
    event.setAlarmFlag();
    event.setTicker(ticker);
    event.setAttribute(u"b"_s, u"\u4e2d"_s);
    event.setAttribute(u"a"_s, QString());
    Maemo::Timed::Interface timed;
    const QDBusPendingCall call =
        replaces ? timed.replace_event_async(event, 4000000000U) : timed.add_event_async(event);

    const QDBusMessage message = m_daemon->next(replaces ? u"replace_event"_s : u"add_event"_s);
    QCOMPARE(message.path(), u"/com/nimbo/timed"_s);
    QCOMPARE(message.interface(), u"com.nimbo.timed"_s);
    QCOMPARE(message.signature(), replaces ? u"(uxa{ss})u"_s : u"(uxa{ss})"_s);
    uint flags = 0;
    qlonglong sentTicker = -1;
    QMap<QString, QString> attributes;
    const auto argument = message.arguments().constFirst().value<QDBusArgument>();
    argument.beginStructure();
    argument >> flags >> sentTicker >> attributes;
    argument.endStructure();
    QCOMPARE(flags, 3U);
    QCOMPARE(sentTicker, ticker);
    QCOMPARE(attributes, (QMap<QString, QString>{{u"a"_s, QString()}, {u"b"_s, u"\u4e2d"_s}}));
    if (replaces)
        QCOMPARE(message.arguments().at(1), QVariant(4000000000U));

    m_daemon->reply(message, {7U});
    QTRY_VERIFY(call.isFinished());
    QCOMPARE(call.reply().arguments(), QVariantList{7U});
}

void TestTimed::refusesWhatAnEventCannotCarry()
{
    Event event;
    event.setAttribute(u"key"_s, u"value"_s);
    QVERIFY(isRefused([&] { event.setAttribute(QString(), u"value"_s); }));
    QVERIFY(isRefused([&] { event.setAttribute(u"key"_s, QString(QChar(0))); }));
    QVERIFY(isRefused([&] { event.setAttribute(u"k"_s + QChar(0), u"value"_s); }));
    Maemo::Timed::Interface timed;
    QVERIFY(isRefused([&] { timed.add_event_async(event); }));
    QVERIFY(isRefused([&] { timed.replace_event_async(event, 1); }));
    m_daemon->settle();
    QCOMPARE(m_daemon->waiting(), 0);
}

void TestTimed::tellsOfTriggers()
{
    Maemo::Timed::Interface timed;
    Event::Triggers told;
    connect(&timed, &Maemo::Timed::Interface::alarm_triggers_changed, this,
            [&told](const Event::Triggers &triggers) { told = triggers; });
    Event::Triggers triggers;
    triggers.insert(3, 1893585600);
    triggers.insert(4000000000U, -1);
    QCOMPARE(busSignature<Event::Triggers>(), u"a{ux}"_s);
    m_daemon->emitSignal(u"com.nimbo.timed"_s, u"alarm_triggers_changed"_s,
                         {QVariant::fromValue(triggers)});
    QTRY_COMPARE(told.size(), 2);
    QCOMPARE(told.value(3), int64_t{1893585600});
    QCOMPARE(told.value(4000000000U), int64_t{-1});
}

void TestTimed::answersWithAnErrorWithoutADaemon()
{
    m_daemon.reset();
    Maemo::Timed::Interface timed;
    const QDBusPendingCall call = timed.asyncCall(u"query"_s, QVariantMap());
    QTRY_VERIFY(call.isFinished());
    QCOMPARE(call.error().type(), QDBusError::ServiceUnknown);
}

QTEST_GUILESS_MAIN(TestTimed)

#include "tst_timed.moc"
