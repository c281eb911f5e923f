// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "alarmboard.h"
#include "alarmscene.h"
#include "literals.h"
#include "rawconnection.h"

#include <QElapsedTimer>
#include <QTest>

#include <chrono>
#include <memory>

namespace {

using namespace std::chrono_literals;

const QString unknown = u"org.freedesktop.DBus.Error.ServiceUnknown"_s;
const QString cannotShow = u"warning: The notification server cannot show an alarm: "_s;
const QByteArray serverName = "org.freedesktop.Notifications";
const QByteArray serverPath = "/org/freedesktop/Notifications";
constexpr uint dismissed = 2;
/// No time passes by itself, except that an action is not waited for.
constexpr ShownAlarm::Delays prompt{1h, 0ms};

} // namespace

/// What becomes of alarms when the notification server comes and goes, and when it is wrong.
class TestNotificationServer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void mayComeLater();
    void mayStartAgain();
    void mayBeReplacedWhileItHangs();
    void mayEndBeforeItAnswers();
    void mayEndAfterItHasClosedAnAlarm();
    void mayEndDuringAnAction();
    void mayHideWhatItCanDo_data();
    void mayHideWhatItCanDo();
    void mayFail_data();
    void mayFail();
    void mayGiveAnIdTwice();
    void mayAnswerTooLate();
    void speaksBeforeItsAnswer_data();
    void speaksBeforeItsAnswer();
    void isNotAnybodyElse_data();
    void isNotAnybodyElse();

private:
    void startBoard(const ShownAlarm::Delays &delays = prompt);
    void listTwo();
    void showTwo(uint firstId);

    AlarmScene m_scene;
    std::unique_ptr<AlarmBoard> m_board;
};

void TestNotificationServer::initTestCase()
{
    QVERIFY(m_scene.start());
}

void TestNotificationServer::init()
{
    m_scene.begin();
}

void TestNotificationServer::cleanup()
{
    const QStringList unexpected = m_scene.end();
    m_board.reset();
    QCOMPARE(unexpected.join(u'\n'), QString());
}

void TestNotificationServer::startBoard(const ShownAlarm::Delays &delays)
{
    m_board = std::make_unique<AlarmBoard>(QDBusConnection::sessionBus(),
                                           QDBusConnection::systemBus(), delays);
    m_board->start();
}

void TestNotificationServer::listTwo()
{
    m_scene.list({1, 2});
    m_scene.get(1, AlarmScene::alarm(u"1"_s));
    m_scene.get(2, AlarmScene::alarm(u"2"_s));
}

void TestNotificationServer::showTwo(uint firstId)
{
    m_scene.show(firstId, u"1"_s);
    m_scene.show(firstId + 1, u"2"_s);
}

/// The error is logged once, and not for each alarm.
void TestNotificationServer::mayComeLater()
{
    m_scene.stopServer();
    startBoard();
    listTwo();
    m_scene.settle();
    for (uint cookie = 3; cookie < 5; ++cookie) {
        m_scene.change();
        m_scene.list({1, 2, cookie});
        m_scene.get(cookie, AlarmScene::alarm(u"3"_s));
        m_scene.settle();
        const QStringList lines = m_scene.takeLog();
        QCOMPARE(lines.size(), 1);
        QVERIFY2(lines.first().startsWith(u"warning: The notification server cannot be started: "_s
                                          + unknown),
                 qPrintable(lines.first()));
        m_scene.startServer();
        m_scene.answerCapabilities();
        showTwo(7);
        m_scene.show(9, u"3"_s);
        m_scene.stopServer();
        m_scene.settle();
    }
}

void TestNotificationServer::mayStartAgain()
{
    startBoard();
    m_scene.answerCapabilities();
    listTwo();
    showTwo(7);
    m_scene.stopServer();
    m_scene.settle();
    m_scene.startServer();
    // These are not our notifications any more, but somebody else's.
    m_scene.closed(7, dismissed);
    m_scene.invoked(8, u"call"_s);
    m_scene.answerCapabilities();
    showTwo(8);
    m_scene.closed(7, dismissed);
    m_scene.settle();
    m_scene.invoked(8, u"call"_s);
    m_scene.takeDial(u"1"_s);
}

/// A request that is not answered is not repeated, since the server may still be about to show it.
void TestNotificationServer::mayBeReplacedWhileItHangs()
{
    startBoard();
    m_scene.answerCapabilities();
    listTwo();
    m_scene.server().next(u"Notify"_s);
    m_scene.server().next(u"Notify"_s);
    m_scene.change();
    m_scene.list({1, 2});
    m_scene.settle();
    QCOMPARE(m_scene.server().waiting(), 0);
    m_scene.stopServer();
    m_scene.startServer();
    m_scene.answerCapabilities();
    showTwo(1);
}

void TestNotificationServer::mayEndBeforeItAnswers()
{
    startBoard();
    m_scene.settle();
    QCOMPARE(m_scene.server().next().member(), u"GetCapabilities"_s);
    listTwo();
    m_scene.settle();
    m_scene.stopServer();
    m_scene.settle();
    m_scene.startServer();
    m_scene.answerCapabilities();
    showTwo(1);
}

void TestNotificationServer::mayEndAfterItHasClosedAnAlarm()
{
    startBoard();
    m_scene.answerCapabilities();
    listTwo();
    showTwo(7);
    m_scene.closed(7, dismissed);
    m_scene.stopServer();
    m_scene.dismiss(1);
    m_scene.startServer();
    m_scene.answerCapabilities();
    m_scene.show(1, u"2"_s);
}

void TestNotificationServer::mayEndDuringAnAction()
{
    startBoard();
    m_scene.answerCapabilities();
    listTwo();
    showTwo(7);
    m_scene.invoked(7, u"call"_s);
    m_scene.invoked(8, u"call"_s);
    const QDBusMessage first = m_scene.takeDial(u"1"_s);
    const QDBusMessage second = m_scene.takeDial(u"2"_s);
    m_scene.stopServer();
    m_scene.settle();
    m_scene.startServer();
    m_scene.answerCapabilities();
    m_scene.settle();
    QCOMPARE(m_scene.server().waiting(), 0);
    m_scene.callUi().reply(first, {true});
    m_scene.callUi().fail(second, u"com.example.Error"_s, u"no"_s);
    m_scene.dismiss(1);
    m_scene.show(1, u"2"_s);
    QCOMPARE(m_scene.takeLog(),
             QStringList(u"warning: The call UI cannot dial: com.example.Error: no"_s));
}

void TestNotificationServer::mayHideWhatItCanDo_data()
{
    QTest::addColumn<bool>("isReply");
    QTest::addColumn<QString>("line");
    QTest::newRow("an error") << false << u"com.example.Error: no"_s;
    QTest::newRow("nonsense") << true << u"The answer (s) is not as expected."_s;
}

void TestNotificationServer::mayHideWhatItCanDo()
{
    QFETCH(bool, isReply);
    QFETCH(QString, line);

    startBoard();
    listTwo();
    const QDBusMessage question = m_scene.server().next(u"GetCapabilities"_s);
    if (isReply)
        m_scene.server().reply(question, {u"body-markup"_s});
    else
        m_scene.server().fail(question, u"com.example.Error"_s, u"no"_s);
    showTwo(7);
    QCOMPARE(m_scene.takeLog(),
             QStringList(u"warning: The notification server does not say what it is capable of: "_s
                         + line));
}

void TestNotificationServer::mayFail_data()
{
    QTest::addColumn<QVariantList>("answer");
    QTest::addColumn<QString>("line");
    QTest::newRow("an error") << QVariantList{} << u"com.example.Error: no"_s;
    QTest::newRow("another type") << QVariantList{7} << u"The answer (i) is not as expected."_s;
    QTest::newRow("a zero") << QVariantList{0U} << u"The answer (u) is not as expected."_s;
}

/// The error is logged once, and the alarms are shown again later.
void TestNotificationServer::mayFail()
{
    QFETCH(QVariantList, answer);
    QFETCH(QString, line);

    constexpr auto later = 200ms;
    startBoard({later, 0ms});
    m_scene.answerCapabilities();
    listTwo();
    for (int i = 0; i < 2; ++i) {
        const QDBusMessage first = m_scene.server().next(u"Notify"_s);
        const QDBusMessage second = m_scene.server().next(u"Notify"_s);
        QElapsedTimer timer;
        timer.start();
        for (const QDBusMessage &call : {first, second}) {
            if (answer.isEmpty())
                m_scene.server().fail(call, u"com.example.Error"_s, u"no"_s);
            else
                m_scene.server().reply(call, answer);
        }
        QTRY_COMPARE(m_scene.server().waiting(), 2);
        QVERIFY(timer.elapsed() >= later.count());
    }
    showTwo(7);
    QCOMPARE(m_scene.takeLog(), QStringList(cannotShow + line));
}

/// The alarms would get each other's answers.
void TestNotificationServer::mayGiveAnIdTwice()
{
    startBoard({1ms, 0ms});
    m_scene.answerCapabilities();
    listTwo();
    m_scene.show(7, u"1"_s);
    m_scene.server().reply(m_scene.server().next(u"Notify"_s), {7U});
    m_scene.show(8, u"2"_s);
    QCOMPARE(m_scene.takeLog(), QStringList(cannotShow + u"The answer (u) is not as expected."_s));
    m_scene.closed(7, dismissed);
    m_scene.answerInformation();
    m_scene.dismiss(1);
}

/// The alarm was dismissed elsewhere, and its server has started again since.
void TestNotificationServer::mayAnswerTooLate()
{
    startBoard();
    m_scene.answerCapabilities();
    listTwo();
    const QDBusMessage first = m_scene.server().next(u"Notify"_s);
    const QDBusMessage second = m_scene.server().next(u"Notify"_s);
    m_scene.change();
    m_scene.list({2});
    m_scene.settle();
    m_scene.server().reply(second, {8U});
    m_scene.server().fail(first, u"com.example.Error"_s, u"no"_s);
    m_scene.settle();
    QCOMPARE(m_scene.takeLog(), QStringList(cannotShow + u"com.example.Error: no"_s));
}

void TestNotificationServer::speaksBeforeItsAnswer_data()
{
    QTest::addColumn<bool>("isAction");
    QTest::newRow("closed") << false;
    QTest::newRow("an action") << true;
}

/// The order of a signal and of the answer that has its id is not certain.
void TestNotificationServer::speaksBeforeItsAnswer()
{
    QFETCH(bool, isAction);

    startBoard();
    m_scene.answerCapabilities();
    listTwo();
    const QDBusMessage first = m_scene.server().next(u"Notify"_s);
    const QDBusMessage second = m_scene.server().next(u"Notify"_s);
    for (uint id = 1000; id < 1200; ++id) // The signals of other programs come, too.
        m_scene.server().emitSignal(QString::fromLatin1(serverName), u"NotificationClosed"_s,
                                    {id, dismissed});
    if (isAction)
        m_scene.invoked(7, u"call"_s);
    else
        m_scene.closed(7, dismissed);
    m_scene.server().reply(second, {8U});
    m_scene.server().reply(first, {7U});
    if (isAction) {
        m_scene.callUi().reply(m_scene.takeDial(u"1"_s), {true});
        m_scene.takeClose(7);
    } else {
        m_scene.answerInformation();
    }
    m_scene.dismiss(1);
}

void TestNotificationServer::isNotAnybodyElse_data()
{
    QTest::addColumn<bool>("isAction");
    QTest::addColumn<bool>("isDirected");
    for (const bool isAction : {false, true}) {
        for (const bool isDirected : {false, true})
            QTest::addRow("%s, %s", isAction ? "an action" : "closed",
                          isDirected ? "to this process" : "to everybody")
                << isAction << isDirected;
    }
}

void TestNotificationServer::isNotAnybodyElse()
{
    QFETCH(bool, isAction);
    QFETCH(bool, isDirected);

    startBoard();
    m_scene.answerCapabilities();
    listTwo();
    showTwo(7);
    RawConnection stranger(m_scene.sessionBus().address());
    const RawMessage signal = RawConnection::makeSignal(
        isDirected ? QDBusConnection::sessionBus().baseService().toLatin1() : QByteArray(),
        serverPath, serverName, isAction ? "ActionInvoked" : "NotificationClosed");
    const quint32 id = 7;
    const quint32 reason = dismissed;
    const char *action = "call";
    if (isAction)
        dbus_message_append_args(signal.get(), DBUS_TYPE_UINT32, &id, DBUS_TYPE_STRING, &action,
                                 DBUS_TYPE_INVALID);
    else
        dbus_message_append_args(signal.get(), DBUS_TYPE_UINT32, &id, DBUS_TYPE_UINT32, &reason,
                                 DBUS_TYPE_INVALID);
    stranger.send(signal.get());
    QVERIFY(stranger.own("com.example.Stranger")); // The signal was sent before that.
    m_scene.settle();
    QCOMPARE(m_scene.callUi().waiting() + m_scene.server().waiting(), 0);
}

QTEST_GUILESS_MAIN(TestNotificationServer)

#include "tst_notificationserver.moc"
