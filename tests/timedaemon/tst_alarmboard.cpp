// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "alarmboard.h"
#include "alarmscene.h"
#include "literals.h"
#include "rawconnection.h"

#include <QTest>

#include <chrono>
#include <memory>

namespace {

const QString noAnswer = u"org.freedesktop.DBus.Error.NoReply"_s;
const QString invalid = u"org.freedesktop.DBus.Error.InvalidArgs"_s;

/// A number of its own for each alarm.
QString numberOf(uint cookie)
{
    return QString::number(5550000 + cookie);
}

/// Whether a line says that an alarm was not read for want of an answer. It may be any alarm.
bool isUnread(const QString &line)
{
    return line.startsWith(u"warning: The due alarm "_s)
        && line.contains(u" cannot be read: "_s + noAnswer);
}

QList<uint> cookiesUpTo(uint last)
{
    QList<uint> cookies;
    for (uint cookie = 1; cookie <= last; ++cookie)
        cookies << cookie;
    return cookies;
}

} // namespace

/// What the time daemon says, and what is shown of it.
class TestAlarmBoard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void showsWhatIsDue();
    void followsChanges();
    void passesOverWhatHasGone();
    void closesWhatIsShownTooLate();
    void asksOnceForManyChanges();
    void waitsForTheDaemon();
    void keepsWhatIsShownWhenTheDaemonStartsAgain();
    void asksAnewWhenTheDaemonEndsInTheMiddle();
    void ignoresTheAnswersOfAFormerDaemon();
    void waitsForASlowDaemon();
    void shows20Of10000();
    void surviveNonsense_data();
    void surviveNonsense();
    void showsADoubleCookieOnce();
    void passesOverTheUnreadable();
    void asksAgainAfterAnOlderFailure();

private:
    void startBoard();
    void showAll(const QList<uint> &cookies);

    AlarmScene m_scene;
    std::unique_ptr<AlarmBoard> m_board;
};

void TestAlarmBoard::initTestCase()
{
    QVERIFY(m_scene.start());
}

void TestAlarmBoard::init()
{
    m_scene.begin();
}

void TestAlarmBoard::cleanup()
{
    const QStringList unexpected = m_scene.end();
    m_board.reset();
    QCOMPARE(unexpected.join(u'\n'), QString());
}

void TestAlarmBoard::startBoard()
{
    ShownAlarm::Delays delays;
    delays.again = std::chrono::hours(1);
    m_board = std::make_unique<AlarmBoard>(QDBusConnection::sessionBus(),
                                           QDBusConnection::systemBus(), delays);
    m_board->start();
}

/// Answers until all are shown. The id of each notification is its cookie and 100.
void TestAlarmBoard::showAll(const QList<uint> &cookies)
{
    for (const uint cookie : cookies)
        m_scene.get(cookie, AlarmScene::alarm(numberOf(cookie)));
    for (const uint cookie : cookies)
        m_scene.show(cookie + 100, numberOf(cookie));
}

void TestAlarmBoard::showsWhatIsDue()
{
    startBoard();
    m_scene.answerCapabilities();
    m_scene.list({3, 1});
    showAll({3, 1});
}

void TestAlarmBoard::followsChanges()
{
    startBoard();
    m_scene.answerCapabilities();
    m_scene.list({});
    m_scene.settle();
    m_scene.change();
    m_scene.list({5});
    showAll({5});
    m_scene.change();
    m_scene.list({5, 6});
    showAll({6}); // The other one is not asked for again.
    m_scene.change();
    m_scene.list({6});
    m_scene.takeClose(105);
    m_scene.change();
    m_scene.list({});
    m_scene.takeClose(106);
}

/// Between the list and the request for an alarm, somebody may dismiss it.
void TestAlarmBoard::passesOverWhatHasGone()
{
    startBoard();
    m_scene.answerCapabilities();
    m_scene.list({1, 2, 3});
    m_scene.daemon().fail(m_scene.takeGet(1), invalid, u"gone"_s);
    const QDBusMessage second = m_scene.takeGet(2);
    const QDBusMessage third = m_scene.takeGet(3);
    m_scene.change();
    m_scene.list({3});
    m_scene.settle();
    const auto alarm = QVariant::fromValue(AlarmScene::alarm());
    m_scene.daemon().reply(second, {alarm});
    m_scene.daemon().reply(third, {alarm});
    m_scene.show(103);
}

void TestAlarmBoard::closesWhatIsShownTooLate()
{
    startBoard();
    m_scene.answerCapabilities();
    m_scene.list({1});
    m_scene.get(1, AlarmScene::alarm());
    const QDBusMessage notify = m_scene.server().next(u"Notify"_s);
    m_scene.change();
    m_scene.list({});
    m_scene.settle();
    m_scene.server().reply(notify, {7U});
    m_scene.takeClose(7);
}

void TestAlarmBoard::asksOnceForManyChanges()
{
    startBoard();
    m_scene.answerCapabilities();
    m_scene.settle(); // It has subscribed and asked.
    for (int i = 0; i < 100; ++i)
        m_scene.change();
    m_scene.settle();
    QCOMPARE(m_scene.daemon().waiting(), 1);
    m_scene.list({});
    m_scene.list({1}); // It may have become due after the first request.
    showAll({1});
}

void TestAlarmBoard::waitsForTheDaemon()
{
    m_scene.stopDaemon();
    startBoard();
    m_scene.answerCapabilities();
    m_scene.settle();
    const QStringList lines = m_scene.takeLog();
    QCOMPARE(lines.size(), 1);
    QVERIFY2(lines.first().startsWith(u"warning: The due alarms cannot be listed: "
                                      u"org.freedesktop.DBus.Error.ServiceUnknown: "_s),
             qPrintable(lines.first()));
    m_scene.startDaemon();
    m_scene.list({1});
    showAll({1});
}

void TestAlarmBoard::keepsWhatIsShownWhenTheDaemonStartsAgain()
{
    startBoard();
    m_scene.answerCapabilities();
    m_scene.list({1, 2});
    showAll({1, 2});
    m_scene.stopDaemon();
    m_scene.settle();
    QCOMPARE(m_scene.server().waiting(), 0);
    m_scene.startDaemon();
    m_scene.list({2, 3});
    m_scene.takeClose(101);
    showAll({3});
}

void TestAlarmBoard::asksAnewWhenTheDaemonEndsInTheMiddle()
{
    startBoard();
    m_scene.answerCapabilities();
    m_scene.list({1, 2});
    m_scene.takeGet(1);
    m_scene.takeGet(2);
    m_scene.stopDaemon();
    m_scene.settle();
    const QStringList lines = m_scene.takeLog();
    QCOMPARE(lines.size(), 1);
    QVERIFY2(isUnread(lines.first()), qPrintable(lines.first()));
    m_scene.startDaemon();
    m_scene.list({1, 2});
    showAll({1, 2});
}

/// The former daemon has given up the name, but still runs.
void TestAlarmBoard::ignoresTheAnswersOfAFormerDaemon()
{
    m_scene.stopDaemon();
    RawConnection former(m_scene.systemBus().address());
    QVERIFY(former.own("com.nimbo.timed"));
    RawMessage answer;
    former.setHandler([&answer](DBusMessage *message) {
        if (dbus_message_get_type(message) == DBUS_MESSAGE_TYPE_METHOD_CALL)
            answer =
                RawConnection::makeError(dbus_message_get_sender(message),
                                         dbus_message_get_serial(message), "com.example.Error");
    });
    startBoard();
    m_scene.answerCapabilities();
    QTRY_VERIFY((former.pump(), answer));
    QVERIFY(former.release("com.nimbo.timed"));
    m_scene.startDaemon();
    m_scene.list({1});
    former.send(answer.get());
    former.pump();
    showAll({1});
}

/// This takes as long as a call may take.
void TestAlarmBoard::waitsForASlowDaemon()
{
    startBoard();
    m_scene.answerCapabilities();
    m_scene.list({1});
    const QDBusMessage get = m_scene.takeGet(1);
    m_scene.change();
    const QDBusMessage list = m_scene.daemon().next();
    QCOMPARE(list.member(), u"List"_s);
    m_scene.change();
    m_scene.settle();
    QCOMPARE(m_scene.daemon().waiting(), 0); // It is not asked again before it has answered.
    m_scene.daemon().reply(get, {QVariant::fromValue(AlarmScene::alarm())});
    m_scene.show(101);
    m_scene.daemon().reply(list, {QVariant::fromValue(QList<uint>{1})});
    m_scene.list({1, 2});
    showAll({2});
}

void TestAlarmBoard::shows20Of10000()
{
    startBoard();
    m_scene.answerCapabilities();
    m_scene.list(cookiesUpTo(10000));
    m_scene.settle();
    QCOMPARE(m_scene.daemon().waiting(), 20);
    showAll(cookiesUpTo(20));
    m_scene.settle();
    QCOMPARE(m_scene.daemon().waiting(), 0);
    QCOMPARE(m_scene.server().waiting(), 0);

    // When one goes, the next takes its place.
    m_scene.change();
    m_scene.list(cookiesUpTo(10000).mid(2));
    m_scene.takeClose(101);
    m_scene.takeClose(102);
    showAll({21, 22});
}

void TestAlarmBoard::surviveNonsense_data()
{
    QTest::addColumn<QVariantList>("answer");
    QTest::addColumn<QString>("signature");
    QTest::newRow("nothing") << QVariantList{} << QString();
    QTest::newRow("text") << QVariantList{u"text"_s} << u"s"_s;
    QTest::newRow("numbers of another type")
        << QVariantList{QVariant::fromValue(QList<int>{1})} << u"ai"_s;
    QTest::newRow("more than expected")
        << QVariantList{QVariant::fromValue(QList<uint>{1}), 1U} << u"auu"_s;
}

void TestAlarmBoard::surviveNonsense()
{
    QFETCH(QVariantList, answer);
    QFETCH(QString, signature);
    const QString asExpected = u"The answer (%1) is not as expected."_s.arg(signature);

    startBoard();
    m_scene.answerCapabilities();
    m_scene.daemon().reply(m_scene.daemon().next(u"List"_s), answer);
    m_scene.settle();
    QCOMPARE(m_scene.takeLog(),
             QStringList(u"warning: The due alarms cannot be listed: "_s + asExpected));

    m_scene.change();
    m_scene.list({1, 2});
    m_scene.daemon().reply(m_scene.takeGet(1), answer);
    m_scene.get(2, AlarmScene::alarm());
    m_scene.show(102);
    QCOMPARE(m_scene.takeLog(),
             QStringList(u"warning: The due alarm 1 cannot be read: "_s + asExpected));

    m_scene.change();
    m_scene.list({1, 2});
    m_scene.get(1, AlarmScene::alarm());
    m_scene.show(101);
}

void TestAlarmBoard::showsADoubleCookieOnce()
{
    startBoard();
    m_scene.answerCapabilities();
    m_scene.list({1, 1, 2, 1});
    showAll({1, 2});
}

/// What cannot be read keeps no place from others, and fills no log.
void TestAlarmBoard::passesOverTheUnreadable()
{
    startBoard();
    m_scene.answerCapabilities();
    m_scene.list(cookiesUpTo(30));
    for (const uint cookie : cookiesUpTo(25))
        m_scene.daemon().fail(m_scene.takeGet(cookie), u"com.example.Error"_s, u"no"_s);
    showAll(cookiesUpTo(30).mid(25));
    const QString line = u"warning: The due alarm 1 cannot be read: com.example.Error: no"_s;
    QCOMPARE(m_scene.takeLog(), QStringList(line));

    m_scene.change();
    m_scene.list({1, 2, 26, 27, 28, 29, 30});
    m_scene.daemon().fail(m_scene.takeGet(1), u"com.example.Error"_s, u"no"_s);
    showAll({2});
    QCOMPARE(m_scene.takeLog(), QStringList(line));
}

/// The failure says nothing of what was listed since.
void TestAlarmBoard::asksAgainAfterAnOlderFailure()
{
    startBoard();
    m_scene.answerCapabilities();
    m_scene.list({1});
    const QDBusMessage get = m_scene.takeGet(1);
    m_scene.change();
    m_scene.list({1});
    m_scene.settle();
    m_scene.daemon().fail(get, u"com.example.Error"_s, u"no"_s);
    showAll({1});
    QCOMPARE(m_scene.takeLog(),
             QStringList(u"warning: The due alarm 1 cannot be read: com.example.Error: no"_s));
}

QTEST_GUILESS_MAIN(TestAlarmBoard)

#include "tst_alarmboard.moc"
