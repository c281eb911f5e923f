// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "alarmboard.h"
#include "alarmscene.h"
#include "literals.h"

#include <QDBusArgument>
#include <QDateTime>
#include <QElapsedTimer>
#include <QTest>

#include <chrono>
#include <memory>

namespace {

using namespace std::chrono_literals;

const QString call = u"call"_s;
const QString snooze = u"snooze"_s;
const QString error = u"com.example.Error"_s;
constexpr uint expired = 1;
constexpr uint dismissed = 2;
constexpr uint closed = 3;

/// In tests that do not measure it, no time passes by itself.
constexpr ShownAlarm::Delays patient{1h, 1h};
constexpr ShownAlarm::Delays prompt{1h, 0ms};

} // namespace

/// How one alarm is shown, and what comes of its user's answer.
class TestShownAlarm : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void isShownUntilItIsAnswered();
    void isEscapedWhereThereIsMarkup_data();
    void isEscapedWhereThereIsMarkup();
    void waitsAMinuteByItself();

    void calls();
    void isStillShownIfTheCallFails_data();
    void isStillShownIfTheCallFails();
    void isShownAgainIfTheCallFailsAfterItWasClosed();
    void callsOnlyOnce();
    void ignoresActionsThatItDoesNotHave();
    void isSeenWhenItIsClicked();
    void snoozes();
    void isStillShownIfItCannotBeSnoozed_data();
    void isStillShownIfItCannotBeSnoozed();

    void isDismissed_data();
    void isDismissed();
    void callsAfterItWasClosed_data();
    void callsAfterItWasClosed();
    void waitsForAnActionAfterItWasClosed();
    void isDismissedAgainAfterAnError_data();
    void isDismissedAgainAfterAnError();
    void leavesItsPlaceWhenItIsAnswered();
    void isShownAgainLater_data();
    void isShownAgainLater();
    void callsAfterItHasExpired();
    void isClosedInTheEnd();

private:
    void startBoard(const ShownAlarm::Delays &delays = patient);
    void showOne(const ShownAlarm::Delays &delays = patient);

    AlarmScene m_scene;
    std::unique_ptr<AlarmBoard> m_board;
};

void TestShownAlarm::initTestCase()
{
    QVERIFY(m_scene.start());
}

void TestShownAlarm::init()
{
    m_scene.begin();
}

void TestShownAlarm::cleanup()
{
    const QStringList unexpected = m_scene.end();
    m_board.reset();
    QCOMPARE(unexpected.join(u'\n'), QString());
}

void TestShownAlarm::startBoard(const ShownAlarm::Delays &delays)
{
    m_board = std::make_unique<AlarmBoard>(QDBusConnection::sessionBus(),
                                           QDBusConnection::systemBus(), delays);
    m_board->start();
}

/// Shows the alarm with the cookie 1 as the notification 7.
void TestShownAlarm::showOne(const ShownAlarm::Delays &delays)
{
    startBoard(delays);
    m_scene.answerCapabilities();
    m_scene.list({1});
    m_scene.get(1, AlarmScene::alarm());
    m_scene.show(7);
}

void TestShownAlarm::isShownUntilItIsAnswered()
{
    startBoard();
    m_scene.answerCapabilities();
    m_scene.list({1});
    m_scene.get(1, AlarmScene::alarm());
    const QDBusMessage notify = m_scene.server().next(u"Notify"_s);
    QCOMPARE(notify.signature(), u"susssasa{sv}i"_s);
    const QVariantList arguments = notify.arguments();
    QCOMPARE(arguments.at(0), u"parley-ap-name"_s); // Without a catalogue, a text is its id.
    QCOMPARE(arguments.at(1), 0U);
    QCOMPARE(arguments.at(2), u"appointment-soon"_s);
    QCOMPARE(arguments.at(3), u"5551234"_s);
    QCOMPARE(arguments.at(4), QString());
    QCOMPARE(arguments.at(5).toStringList(),
             (QStringList{call, u"parley-bt-call"_s, snooze, u"parley-bt-in_10_minutes"_s}));
    const auto hints = qdbus_cast<QVariantMap>(arguments.at(6));
    QCOMPARE(hints.value(u"urgency"_s).userType(), static_cast<int>(QMetaType::UChar));
    QCOMPARE(hints,
             (QVariantMap{{u"urgency"_s, QVariant::fromValue<uchar>(2)},
                          {u"category"_s, u"x-nimbo-call-alarm"_s},
                          {u"sound-name"_s, u"alarm-clock-elapsed"_s},
                          {u"resident"_s, true}}));
    QCOMPARE(arguments.at(7), 0);
}

void TestShownAlarm::isEscapedWhereThereIsMarkup_data()
{
    QTest::addColumn<QStringList>("capabilities");
    QTest::addColumn<QString>("body");
    QTest::newRow("markup") << QStringList{u"actions"_s, u"body-markup"_s} << u"&lt;b&gt;1&amp;2"_s;
    QTest::newRow("none") << QStringList{u"body"_s} << u"<b>1&2"_s;
}

void TestShownAlarm::isEscapedWhereThereIsMarkup()
{
    QFETCH(QStringList, capabilities);
    QFETCH(QString, body);

    startBoard();
    m_scene.answerCapabilities(capabilities);
    m_scene.list({1});
    Alarm alarm = AlarmScene::alarm(u"<b>1&2"_s);
    alarm.attributes.insert(u"TITLE"_s, u"Ada & Bob"_s);
    m_scene.get(1, alarm);
    const QVariantList arguments = m_scene.server().next(u"Notify"_s).arguments();
    QCOMPARE(arguments.value(3), u"Ada & Bob"_s); // A summary has no markup.
    QCOMPARE(arguments.value(4), body);
}

void TestShownAlarm::waitsAMinuteByItself()
{
    QVERIFY(ShownAlarm::Delays().again == 1min);
}

void TestShownAlarm::calls()
{
    showOne();
    m_scene.invoked(7, call);
    const QDBusMessage dial = m_scene.takeDial();
    m_scene.settle();
    QCOMPARE(m_scene.daemon().waiting() + m_scene.server().waiting(), 0);
    m_scene.callUi().reply(dial, {true});
    m_scene.takeClose(7);
    m_scene.dismiss(1);
    m_scene.closed(7, closed);
}

void TestShownAlarm::isStillShownIfTheCallFails_data()
{
    QTest::addColumn<bool>("isReply");
    QTest::addColumn<QString>("line");
    QTest::newRow("an error") << false << u"com.example.Error: no"_s;
    QTest::newRow("nonsense") << true << u"The answer (s) is not as expected."_s;
}

void TestShownAlarm::isStillShownIfTheCallFails()
{
    QFETCH(bool, isReply);
    QFETCH(QString, line);

    showOne();
    m_scene.invoked(7, call);
    const QDBusMessage dial = m_scene.takeDial();
    if (isReply)
        m_scene.callUi().reply(dial, {u"text"_s});
    else
        m_scene.callUi().fail(dial, error, u"no"_s);
    m_scene.settle();
    QCOMPARE(m_scene.takeLog(), QStringList(u"warning: The call UI cannot dial: "_s + line));
    m_scene.invoked(7, call);
    m_scene.callUi().reply(m_scene.takeDial(), {true});
    m_scene.takeClose(7);
    m_scene.dismiss(1);
}

void TestShownAlarm::isShownAgainIfTheCallFailsAfterItWasClosed()
{
    showOne(prompt);
    m_scene.invoked(7, call);
    m_scene.closed(7, dismissed);
    m_scene.callUi().fail(m_scene.takeDial(), error, u"no"_s);
    m_scene.show(8);
    QCOMPARE(m_scene.takeLog(),
             QStringList(u"warning: The call UI cannot dial: com.example.Error: no"_s));
    m_scene.invoked(7, call); // This is the notification that was closed.
    m_scene.invoked(8, call);
    m_scene.callUi().reply(m_scene.takeDial(), {true});
    m_scene.takeClose(8);
    m_scene.dismiss(1);
}

void TestShownAlarm::callsOnlyOnce()
{
    showOne();
    m_scene.invoked(7, call);
    m_scene.invoked(7, call);
    m_scene.invoked(7, snooze);
    m_scene.callUi().reply(m_scene.takeDial(), {true});
    m_scene.takeClose(7);
    const QDBusMessage dismiss = m_scene.takeDismiss(1);
    m_scene.invoked(7, call);
    m_scene.daemon().reply(dismiss, {true});
    m_scene.settle();
    m_scene.invoked(7, call);
}

void TestShownAlarm::ignoresActionsThatItDoesNotHave()
{
    startBoard();
    m_scene.answerCapabilities();
    m_scene.list({1});
    m_scene.get(1, {4, QDateTime::currentSecsSinceEpoch() + 60, {}});
    const QDBusMessage notify = m_scene.server().next(u"Notify"_s);
    m_scene.invoked(0, snooze); // It has no number yet.
    m_scene.server().reply(notify, {7U});
    m_scene.settle();
    m_scene.invoked(7, call);
    m_scene.invoked(7, u"other"_s);
    m_scene.invoked(0, snooze);
    m_scene.invoked(8, snooze);
}

/// Some servers hide a notification that is clicked, and say so in no other way.
void TestShownAlarm::isSeenWhenItIsClicked()
{
    startBoard();
    m_scene.answerCapabilities();
    m_scene.list({1});
    m_scene.get(1, AlarmScene::alarm());
    m_scene.show(7);
    m_scene.invoked(7, u"default"_s);
    QCOMPARE(m_scene.server().next(u"CloseNotification"_s).arguments(), QVariantList{7U});
    const QDBusMessage dismiss = m_scene.daemon().next(u"Dismiss"_s);
    QCOMPARE(dismiss.arguments(), QVariantList{1U});
    m_scene.daemon().reply(dismiss, {true});
    m_scene.settle();
}

void TestShownAlarm::snoozes()
{
    startBoard();
    m_scene.answerCapabilities();
    m_scene.list({1});
    Alarm alarm = AlarmScene::alarm();
    alarm.attributes.insert(u"triggerTime"_s, QString::number(alarm.ticker));
    m_scene.get(1, alarm);
    m_scene.show(7);
    const qint64 before = QDateTime::currentSecsSinceEpoch();
    m_scene.invoked(7, snooze);
    const QDBusMessage add = m_scene.daemon().next(u"add_event"_s);
    const qint64 after = QDateTime::currentSecsSinceEpoch();
    QCOMPARE(add.interface(), u"com.nimbo.timed"_s);
    QCOMPARE(add.signature(), u"(uxa{ss})"_s);
    const auto snoozed = qdbus_cast<Alarm>(add.arguments().constFirst());
    QVERIFY(snoozed.ticker >= before + 600 && snoozed.ticker <= after + 600);
    alarm.ticker = snoozed.ticker;
    alarm.attributes.insert(u"triggerTime"_s, QString::number(snoozed.ticker));
    QVERIFY(snoozed == alarm);
    m_scene.settle();
    QCOMPARE(m_scene.daemon().waiting() + m_scene.server().waiting(), 0);
    m_scene.daemon().reply(add, {5U});
    m_scene.takeClose(7);
    m_scene.dismiss(1);
}

void TestShownAlarm::isStillShownIfItCannotBeSnoozed_data()
{
    QTest::addColumn<QVariantList>("answer");
    QTest::addColumn<QString>("line");
    QTest::newRow("an error") << QVariantList{} << u"com.example.Error: no"_s;
    QTest::newRow("no cookie") << QVariantList{0U} << u"The answer (u) is not as expected."_s;
    QTest::newRow("nonsense") << QVariantList{u"1"_s} << u"The answer (s) is not as expected."_s;
}

void TestShownAlarm::isStillShownIfItCannotBeSnoozed()
{
    QFETCH(QVariantList, answer);
    QFETCH(QString, line);

    showOne(prompt);
    for (const uint id : {7U, 8U}) {
        const bool isClosed = id == 8;
        m_scene.invoked(7, snooze);
        if (isClosed)
            m_scene.closed(7, dismissed);
        const QDBusMessage add = m_scene.daemon().next(u"add_event"_s);
        if (answer.isEmpty())
            m_scene.daemon().fail(add, error, u"no"_s);
        else
            m_scene.daemon().reply(add, answer);
        m_scene.settle();
        QCOMPARE(m_scene.takeLog(), QStringList(u"warning: The alarm cannot be added: "_s + line));
        if (isClosed)
            m_scene.show(8);
    }
}

void TestShownAlarm::isDismissed_data()
{
    QTest::addColumn<uint>("reason");
    QTest::newRow("by the user") << dismissed;
    QTest::newRow("by a call") << closed;
}

void TestShownAlarm::isDismissed()
{
    QFETCH(uint, reason);

    showOne(prompt);
    m_scene.closed(7, reason);
    m_scene.answerInformation();
    m_scene.dismiss(1);
    m_scene.settle();
    m_scene.change();
    m_scene.list({});
}

void TestShownAlarm::callsAfterItWasClosed_data()
{
    QTest::addColumn<bool>("succeeds");
    QTest::newRow("with success") << true;
    QTest::newRow("in vain") << false;
}

/// Some servers close a notification before they say that it was for an action. The server is asked
/// whether it has said everything before the alarm is dismissed, and it may be slow.
void TestShownAlarm::callsAfterItWasClosed()
{
    QFETCH(bool, succeeds);

    showOne(prompt);
    m_scene.closed(7, dismissed);
    const QDBusMessage question = m_scene.server().next(u"GetServerInformation"_s);
    m_scene.invoked(7, call);
    m_scene.server().reply(question, {});
    m_scene.settle();
    QCOMPARE(m_scene.daemon().waiting(), 0);
    if (succeeds) {
        m_scene.callUi().reply(m_scene.takeDial(), {true});
        m_scene.dismiss(1);
    } else {
        m_scene.callUi().fail(m_scene.takeDial(), error, u"no"_s);
        m_scene.show(8);
        QCOMPARE(m_scene.takeLog().size(), 1);
    }
}

/// Other servers say so in a later turn of their event loop.
void TestShownAlarm::waitsForAnActionAfterItWasClosed()
{
    showOne();
    m_scene.closed(7, dismissed);
    QCOMPARE(m_scene.daemon().waiting() + m_scene.server().waiting(), 0);
    m_scene.invoked(7, snooze);
    m_scene.daemon().reply(m_scene.daemon().next(u"add_event"_s), {5U});
    m_scene.dismiss(1);
}

void TestShownAlarm::isDismissedAgainAfterAnError_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("an error") << u"com.example.Error: no"_s;
    QTest::newRow("nonsense") << u"The answer () is not as expected."_s;
}

/// The user has seen it and does not see it again.
void TestShownAlarm::isDismissedAgainAfterAnError()
{
    QFETCH(QString, line);

    showOne(prompt);
    m_scene.closed(7, dismissed);
    m_scene.answerInformation();
    const QDBusMessage dismiss = m_scene.takeDismiss(1);
    if (line.startsWith(error))
        m_scene.daemon().fail(dismiss, error, u"no"_s);
    else
        m_scene.daemon().reply(dismiss, {});
    m_scene.settle();
    QCOMPARE(m_scene.takeLog(),
             QStringList(u"warning: The due alarm 1 cannot be dismissed: "_s + line));
    m_scene.change();
    m_scene.list({1});
    const QDBusMessage again = m_scene.takeDismiss(1);
    m_scene.change();
    m_scene.list({1}); // It is being dismissed.
    m_scene.settle();
    m_scene.daemon().reply(again, {false}); // Somebody else was faster.
}

void TestShownAlarm::leavesItsPlaceWhenItIsAnswered()
{
    startBoard();
    m_scene.answerCapabilities();
    QList<uint> cookies;
    for (uint cookie = 1; cookie <= 21; ++cookie)
        cookies << cookie;
    m_scene.list(cookies);
    for (uint cookie = 1; cookie <= 20; ++cookie)
        m_scene.get(cookie, AlarmScene::alarm());
    for (uint cookie = 1; cookie <= 20; ++cookie)
        m_scene.show(cookie + 100);
    m_scene.invoked(103, call);
    m_scene.callUi().reply(m_scene.takeDial(), {true});
    m_scene.takeClose(103);
    m_scene.takeDismiss(3); // It is not answered.
    m_scene.get(21, AlarmScene::alarm());
    m_scene.show(121);
}

void TestShownAlarm::isShownAgainLater_data()
{
    QTest::addColumn<uint>("reason");
    QTest::newRow("expired") << expired;
    QTest::newRow("undefined") << 4U;
    QTest::newRow("unknown") << 99U;
}

void TestShownAlarm::isShownAgainLater()
{
    QFETCH(uint, reason);

    constexpr auto later = 200ms;
    showOne({later, 0ms});
    QElapsedTimer timer;
    timer.start();
    for (uint id = 7; id < 10; ++id) {
        m_scene.closed(id, reason);
        m_scene.show(id + 1);
        QVERIFY(timer.restart() >= later.count());
    }
}

void TestShownAlarm::callsAfterItHasExpired()
{
    showOne();
    m_scene.closed(7, 4);
    m_scene.invoked(7, call);
    m_scene.callUi().reply(m_scene.takeDial(), {true});
    m_scene.dismiss(1);
}

void TestShownAlarm::isClosedInTheEnd()
{
    showOne();
    m_board.reset();
    m_scene.takeClose(7);
}

QTEST_GUILESS_MAIN(TestShownAlarm)

#include "tst_shownalarm.moc"
