// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "calls.h"
#include "callstest.h"
#include "fakeofono.h"
#include "literals.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>
#include <utility>

namespace {

const QString first = u"/ril_0"_s;
const QString second = u"/ril_1"_s;
const QString one = u"/ril_0/voicecall01"_s;
const QString two = u"/ril_0/voicecall02"_s;
const QString other = u"/ril_1/voicecall01"_s;

FakeObject object(const QString &path, const QVariantMap &properties)
{
    return {QDBusObjectPath(path), properties};
}

} // namespace

/// The calls, with an oFono that is scripted message by message.
class TestCalls : public CallsTest
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() override;

    void connectsWhenItIsComplete();
    void knowsThatThereIsNoStack();
    void showsCallsThatWereThere();
    void showsACallFromItsBeginningToItsEnd();
    void tellsWhyACallHasEnded_data();
    void tellsWhyACallHasEnded();
    void knowsTheDirection_data();
    void knowsTheDirection();
    void knowsWithheldNumbers();
    void followsEveryProperty();
    void tellsForHowLongACallIsActive();
    void tellsWhichCallRingsAndWhichIsOngoing();
    void letsBindingsFollowACall();
    void showsFiftyCalls();
    void showsTheCallsOfAllModems();
    void endsTheCallsOfAModemThatGoes();
    void endsTheCallsOfAModemThatLosesItsInterface();
    void survivesTheStack();
    void givesEachCallItsOwnId();

    void dials();
    void dialsThroughAModem();
    void dialsThroughAnOnlineModem();
    void dialsThroughAModemWithASim();
    void dialsWhenTheStackIsKnown();
    void refusesNumbers_data();
    void refusesNumbers();
    void dialsEmergencyNumbersInAnyCase();
    void answers();
    void tellsTheStack_data();
    void tellsTheStack();
    void hangsUpEverywhere();
    void knowsNoSuchCall();
    void sendsTonesOneAfterTheOther();
    void dropsTonesAfterAFailure();
    void dropsTonesWithTheirModem();
    void waitsForTheTones_data();
    void waitsForTheTones();
    void waitsForTheTonesOfItsModemAlone();
    void doesWhatWaitedOnce();
    void endsNoOtherCallAfterTheTones_data();
    void endsNoOtherCallAfterTheTones();
    void limitsWhatWaits();
    void losesWhatWaitsWithItsModem();
    void endsOneCallAfterTheOther();
    void tellsWhatHasFailed_data();
    void tellsWhatHasFailed();
    void failsWithoutAStack();
    void failsWhenTheStackStops();
    void failsWithoutAnAnswer();

    void hasADialogue();
    void repliesOnce();
    void hasADialogueThatFails();
    void hasADialogueThatTheNetworkBegins();
    void findsADialogue();
    void findsADialogueOfAnotherModem_data();
    void findsADialogueOfAnotherModem();
    void staysWithTheModemOfItsDialogue_data();
    void staysWithTheModemOfItsDialogue();
    void readsSettings();
    void cancelsTheDialogue();
    void endsTheDialogueWithItsModem();
    void knowsTheAnswersOfItsDialogue_data();
    void knowsTheAnswersOfItsDialogue();

private:
    void startStack(const QStringList &modems = {first});
    void startCalls();
    /// Starts a stack with the modem and these calls.
    void startWith(const QList<FakeObject> &calls);
    QVariant role(int row, const QByteArray &name) const;
    /// Waits for a failure, and returns it as "action call number error".
    QString failure();

    std::unique_ptr<FakeOfono> m_ofono;
    std::unique_ptr<Calls> m_calls;
    std::unique_ptr<QSignalSpy> m_failures;
    std::unique_ptr<QSignalSpy> m_ended;
};

void TestCalls::cleanup()
{
    if (m_failures)
        QCOMPARE(m_failures->count(), 0);
    m_failures.reset();
    m_ended.reset();
    m_calls.reset();
    if (m_ofono)
        QCOMPARE(m_ofono->waiting(), 0);
    m_ofono.reset();
    CallsTest::cleanup();
}

void TestCalls::startStack(const QStringList &modems)
{
    m_ofono = std::make_unique<FakeOfono>(m_bus.address(), modems);
}

void TestCalls::startCalls()
{
    m_calls = std::make_unique<Calls>();
    m_failures = std::make_unique<QSignalSpy>(m_calls.get(), &Calls::failed);
    m_ended = std::make_unique<QSignalSpy>(m_calls.get(), &CallModel::ended);
    m_calls->componentComplete();
}

void TestCalls::startWith(const QList<FakeObject> &calls)
{
    startStack();
    m_ofono->setCalls(first, calls);
    startCalls();
    QTRY_COMPARE(m_calls->status(), Telephony::Ready);
    QCOMPARE(m_calls->count(), calls.size());
}

QVariant TestCalls::role(int row, const QByteArray &name) const
{
    return CallsTest::role(*m_calls, row, name);
}

QString TestCalls::failure()
{
    return takeFailure(*m_failures, [](const QVariantList &values) {
        return u"%1 %2 %3"_s.arg(values.at(0).toString(), values.at(1).toString(),
                                 values.at(2).toString());
    });
}

void TestCalls::connectsWhenItIsComplete()
{
    startStack();
    m_ofono->answerNothing();
    m_calls = std::make_unique<Calls>();
    m_ofono->settle();
    QCOMPARE(m_ofono->waiting(), 0);
    QCOMPARE(m_calls->status(), Telephony::Starting);
    m_calls->componentComplete();
    QCOMPARE(m_ofono->next().member(), u"GetModems"_s);
}

void TestCalls::knowsThatThereIsNoStack()
{
    startCalls();
    QCOMPARE(m_calls->status(), Telephony::Starting);
    QTRY_COMPARE(m_calls->status(), Telephony::NoService);
    startStack();
    QTRY_COMPARE(m_calls->status(), Telephony::Ready);
    QCOMPARE(m_calls->modems(), QStringList(first));
}

void TestCalls::showsCallsThatWereThere()
{
    QVariantMap properties = FakeOfono::call(u"active"_s, u"+15550100"_s);
    properties.insert(u"StartTime"_s, u"2026-03-29T01:30:00+0100"_s);
    startWith({object(one, properties), object(two, FakeOfono::call(u"waiting"_s, u"222"_s))});
    QCOMPARE(role(0, "number").toString(), u"+15550100"_s);
    QCOMPARE(role(0, "name").toString(), u"Ada"_s);
    QCOMPARE(role(0, "direction").toString(), QString());
    QCOMPARE(role(0, "callState").toString(), u"active"_s);
    QCOMPARE(role(0, "modem").toString(), first);
    QCOMPARE(role(0, "startTime").toDateTime().toSecsSinceEpoch(), 1774744200);
    QCOMPARE(role(1, "direction").toString(), u"incoming"_s);
    QVERIFY(!role(1, "startTime").isValid());
    QVERIFY(role(0, "callId").toInt() != role(1, "callId").toInt());
}

void TestCalls::showsACallFromItsBeginningToItsEnd()
{
    startWith({});
    const QSignalSpy changes(m_calls.get(), &CallModel::dataChanged);
    m_ofono->addCall(one, FakeOfono::call(u"incoming"_s));
    QTRY_COMPARE(m_calls->count(), 1);
    const int id = m_calls->ringing();
    QCOMPARE(role(0, "callId").toInt(), id);
    m_ofono->changeCall(one, u"State"_s, u"active"_s);
    m_ofono->changeCall(one, u"StartTime"_s, u"2026-03-29T01:30:00+0000"_s);
    QTRY_COMPARE(changes.count(), 2);
    QCOMPARE(m_calls->ringing(), 0);
    QCOMPARE(m_calls->ongoing(), id);
    QCOMPARE(m_calls->call(id).value(u"callState"_s).toString(), u"active"_s);
    m_ofono->endCall(one, u"remote"_s);
    QTRY_COMPARE(m_ended->count(), 1);
    const QVariantMap call = m_ended->takeFirst().at(0).toMap();
    QCOMPARE(call.value(u"callId"_s).toInt(), id);
    QCOMPARE(call.value(u"reason"_s).toString(), u"remote"_s);
    QCOMPARE(call.value(u"callState"_s).toString(), u"disconnected"_s);
    QCOMPARE(call.value(u"number"_s).toString(), u"5550100"_s);
    QCOMPARE(call.value(u"direction"_s).toString(), u"incoming"_s);
    QVERIFY(call.value(u"startTime"_s).toDateTime().isValid());
    QCOMPARE(m_calls->count(), 0);
    QCOMPARE(m_calls->call(id), QVariantMap());
}

void TestCalls::tellsWhyACallHasEnded_data()
{
    QTest::addColumn<QString>("sent");
    QTest::addColumn<QString>("reason");

    for (const QString &reason : {u"local"_s, u"remote"_s, u"network"_s})
        QTest::newRow(qUtf8Printable(reason)) << reason << reason;
    QTest::newRow("another") << u"bored"_s << QString();
}

void TestCalls::tellsWhyACallHasEnded()
{
    QFETCH(QString, sent);
    QFETCH(QString, reason);

    startWith({object(one, FakeOfono::call(u"active"_s))});
    m_ofono->endCall(one, sent);
    QTRY_COMPARE(m_ended->count(), 1);
    QCOMPARE(m_ended->takeFirst().at(0).toMap().value(u"reason"_s).toString(), reason);
}

void TestCalls::knowsTheDirection_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("direction");

    QTest::newRow("incoming") << u"incoming"_s << u"incoming"_s;
    QTest::newRow("waiting") << u"waiting"_s << u"incoming"_s;
    QTest::newRow("dialing") << u"dialing"_s << u"outgoing"_s;
    QTest::newRow("alerting") << u"alerting"_s << u"outgoing"_s;
    QTest::newRow("held") << u"held"_s << QString();
}

void TestCalls::knowsTheDirection()
{
    QFETCH(QString, state);
    QFETCH(QString, direction);

    startWith({object(one, FakeOfono::call(state))});
    QCOMPARE(role(0, "direction").toString(), direction);
    m_ofono->changeCall(one, u"State"_s, u"active"_s);
    QTRY_COMPARE(role(0, "callState").toString(), u"active"_s);
    QCOMPARE(role(0, "direction").toString(), direction);
}

void TestCalls::knowsWithheldNumbers()
{
    startWith({object(one, FakeOfono::call(u"incoming"_s, u"withheld"_s))});
    QCOMPARE(role(0, "number").toString(), QString());
    QVERIFY(role(0, "withheld").toBool());
    m_ofono->changeCall(one, u"LineIdentification"_s, u"333"_s);
    QTRY_COMPARE(role(0, "number").toString(), u"333"_s);
    QVERIFY(!role(0, "withheld").toBool());
}

void TestCalls::followsEveryProperty()
{
    startWith({object(one, FakeOfono::call(u"active"_s))});
    const QVector<std::pair<QString, QByteArray>> flags{{u"RemoteHeld"_s, "remoteHeld"},
                                                        {u"Multiparty"_s, "conference"},
                                                        {u"Emergency"_s, "emergency"}};
    for (const auto &[property, name] : flags) {
        QVERIFY(!role(0, name).toBool());
        m_ofono->changeCall(one, property, true);
        QTRY_VERIFY(role(0, name).toBool());
    }
    m_ofono->changeCall(one, u"Name"_s, u"Grace"_s);
    QTRY_COMPARE(role(0, "name").toString(), u"Grace"_s);
    for (const QString &state :
         {u"held"_s, u"dialing"_s, u"alerting"_s, u"incoming"_s, u"waiting"_s, u"disconnected"_s}) {
        m_ofono->changeCall(one, u"State"_s, state);
        QTRY_COMPARE(role(0, "callState").toString(), state);
    }
}

/// A call whose beginning was seen does not depend on the clock. Without that there is only the
/// clock.
void TestCalls::tellsForHowLongACallIsActive()
{
    const auto ago = [](qint64 minutes) {
        return QDateTime::currentDateTimeUtc().addSecs(-60 * minutes).toString(Qt::ISODate);
    };
    const auto minutes = [this](int row) {
        return static_cast<int>(m_calls->duration(role(row, "callId").toInt()) / 60000);
    };
    QVariantMap before = FakeOfono::call(u"active"_s);
    before.insert(u"StartTime"_s, ago(10));
    QVariantMap ahead = FakeOfono::call(u"held"_s);
    ahead.insert(u"StartTime"_s, ago(-10));
    startWith({object(one, before), object(two, FakeOfono::call(u"incoming"_s)),
               object(u"/ril_0/voicecall03"_s, ahead)});
    QCOMPARE(minutes(0), 10);
    QCOMPARE(m_calls->duration(role(1, "callId").toInt()), 0.0);
    QCOMPARE(minutes(2), 0);
    QCOMPARE(m_calls->duration(0), 0.0);

    m_ofono->changeCall(two, u"State"_s, u"active"_s);
    m_ofono->changeCall(two, u"StartTime"_s, ago(60));
    m_ofono->changeCall(one, u"StartTime"_s, ago(60));
    QTRY_VERIFY(role(1, "startTime").isValid());
    QTRY_VERIFY(m_calls->duration(role(1, "callId").toInt()) > 0);
    QCOMPARE(minutes(1), 0);
    m_ofono->changeCall(two, u"State"_s, u"held"_s);
    m_ofono->changeCall(two, u"State"_s, u"active"_s);
    m_ofono->settle();
    const double soFar = m_calls->duration(role(1, "callId").toInt());
    QTRY_VERIFY(m_calls->duration(role(1, "callId").toInt()) > soFar);
    QCOMPARE(minutes(0), 10);
}

void TestCalls::tellsWhichCallRingsAndWhichIsOngoing()
{
    startWith({object(one, FakeOfono::call(u"held"_s))});
    QCOMPARE(m_calls->ringing(), 0);
    QCOMPARE(m_calls->ongoing(), role(0, "callId").toInt());
    m_ofono->addCall(two, FakeOfono::call(u"dialing"_s));
    QTRY_COMPARE(m_calls->count(), 2);
    QCOMPARE(m_calls->ongoing(), role(1, "callId").toInt());
    m_ofono->changeCall(one, u"State"_s, u"active"_s);
    QTRY_COMPARE(m_calls->ongoing(), role(0, "callId").toInt());
    m_ofono->addCall(u"/ril_0/voicecall03"_s, FakeOfono::call(u"waiting"_s));
    QTRY_COMPARE(m_calls->count(), 3);
    QCOMPARE(m_calls->ringing(), role(2, "callId").toInt());
}

void TestCalls::letsBindingsFollowACall()
{
    startWith(
        {object(one, FakeOfono::call(u"active"_s)), object(two, FakeOfono::call(u"waiting"_s))});
    const QSignalSpy ringing(m_calls.get(), &CallModel::ringingChanged);
    const QSignalSpy ongoing(m_calls.get(), &CallModel::ongoingChanged);
    m_ofono->changeCall(two, u"Name"_s, u"Grace"_s);
    QTRY_COMPARE(ringing.count(), 1);
    QCOMPARE(ongoing.count(), 0);
    m_ofono->changeCall(one, u"Name"_s, u"Grace"_s);
    QTRY_COMPARE(ongoing.count(), 1);
    QCOMPARE(ringing.count(), 1);
}

void TestCalls::showsFiftyCalls()
{
    QList<FakeObject> calls;
    for (int i = 0; i < 50; ++i)
        calls.append(
            object(u"/ril_0/voicecall%1"_s.arg(i), FakeOfono::call(u"held"_s, QString::number(i))));
    startWith(calls);
    for (int i = 0; i < 50; ++i)
        QCOMPARE(role(i, "number").toString(), QString::number(i));
    for (const FakeObject &call : std::as_const(calls))
        m_ofono->endCall(call.path.path(), u"remote"_s);
    QTRY_COMPARE(m_ended->count(), 50);
    QCOMPARE(m_calls->count(), 0);
}

void TestCalls::showsTheCallsOfAllModems()
{
    startStack({first});
    m_ofono->setCalls(first, {object(one, FakeOfono::call(u"active"_s))});
    m_ofono->setCalls(second, {object(other, FakeOfono::call(u"held"_s))});
    startCalls();
    QTRY_COMPARE(m_calls->count(), 1);
    m_ofono->addModem(second, FakeOfono::modem(false));
    QTRY_COMPARE(m_calls->count(), 2);
    QCOMPARE(role(1, "modem").toString(), second);
    QCOMPARE(m_calls->modems(), QStringList(first));
    m_ofono->change(second, u"org.ofono.Modem"_s, u"Online"_s, true);
    QTRY_COMPARE(m_calls->modems(), QStringList({first, second}));
    m_ofono->addCall(u"/ril_1/voicecall02"_s, FakeOfono::call(u"waiting"_s));
    QTRY_COMPARE(m_calls->count(), 3);
    QCOMPARE(m_ended->count(), 0);
}

void TestCalls::endsTheCallsOfAModemThatGoes()
{
    startStack({first, second});
    m_ofono->setCalls(
        first,
        {object(one, FakeOfono::call(u"active"_s)), object(two, FakeOfono::call(u"held"_s))});
    m_ofono->setCalls(second, {object(other, FakeOfono::call(u"active"_s))});
    startCalls();
    QTRY_COMPARE(m_calls->count(), 3);
    m_ofono->removeModem(first);
    QTRY_COMPARE(m_ended->count(), 2);
    QCOMPARE(m_calls->count(), 1);
    QCOMPARE(role(0, "modem").toString(), second);
    QCOMPARE(m_ended->at(0).at(0).toMap().value(u"reason"_s).toString(), QString());
}

void TestCalls::endsTheCallsOfAModemThatLosesItsInterface()
{
    startWith({object(one, FakeOfono::call(u"active"_s))});
    m_ofono->change(first, u"org.ofono.Modem"_s, u"Interfaces"_s, QStringList());
    QTRY_COMPARE(m_ended->count(), 1);
    QCOMPARE(m_calls->modems(), QStringList());
    QCOMPARE(m_calls->emergencyNumbers(), QStringList());
    // When it has the interface again, its calls are asked for.
    m_ofono->setCalls(first, {object(two, FakeOfono::call(u"held"_s))});
    m_ofono->change(first, u"org.ofono.Modem"_s, u"Interfaces"_s,
                    FakeOfono::modem().value(u"Interfaces"_s));
    QTRY_COMPARE(m_calls->count(), 1);
    QTRY_COMPARE(m_calls->emergencyNumbers(), QStringList({u"112"_s, u"911"_s}));
}

void TestCalls::survivesTheStack()
{
    startWith({object(one, FakeOfono::call(u"active"_s))});
    const int id = m_calls->ongoing();
    m_ofono.reset();
    QTRY_COMPARE(m_calls->status(), Telephony::NoService);
    QCOMPARE(m_ended->count(), 1);
    QCOMPARE(m_calls->count(), 0);
    QCOMPARE(m_calls->modems(), QStringList());
    startStack({second});
    m_ofono->setCalls(second, {object(other, FakeOfono::call(u"active"_s))});
    QTRY_COMPARE(m_calls->status(), Telephony::Ready);
    QTRY_COMPARE(m_calls->count(), 1);
    QVERIFY(m_calls->ongoing() != id);
    m_ofono->endCall(other, u"remote"_s);
    QTRY_COMPARE(m_calls->count(), 0);
}

/// oFono uses a path again. An action that is meant for the former call must not reach the next.
void TestCalls::givesEachCallItsOwnId()
{
    startWith({object(one, FakeOfono::call(u"incoming"_s))});
    const int id = m_calls->ringing();
    m_ofono->endCall(one, u"remote"_s);
    m_ofono->addCall(one, FakeOfono::call(u"incoming"_s));
    QTRY_VERIFY(m_calls->ringing() != 0 && m_calls->ringing() != id);
    m_calls->answer(id);
    QCOMPARE(failure(), u"answer %1  NoCall"_s.arg(id));
    QCOMPARE(m_ended->count(), 1);
}

void TestCalls::dials()
{
    startWith({});
    m_calls->dial(u"+49 (151) 123-4"_s);
    const QDBusMessage call = m_ofono->next(u"Dial"_s);
    QCOMPARE(call.path(), first);
    QCOMPARE(call.interface(), u"org.ofono.VoiceCallManager"_s);
    QCOMPARE(call.arguments(), QVariantList({u"+491511234"_s, QString()}));
    m_ofono->reply(call, {QVariant::fromValue(QDBusObjectPath(one))});
    m_ofono->addCall(one, FakeOfono::call(u"dialing"_s, u"+491511234"_s));
    QTRY_COMPARE(m_calls->count(), 1);
}

void TestCalls::dialsThroughAModem()
{
    startStack({first, second});
    startCalls();
    QTRY_COMPARE(m_calls->status(), Telephony::Ready);
    m_calls->dial(u"111"_s, second);
    QCOMPARE(m_ofono->next(u"Dial"_s).path(), second);
    m_calls->dial(u"111"_s, u"/none"_s);
    QCOMPARE(failure(), u"dial 0 111 NoModem"_s);
}

void TestCalls::dialsThroughAnOnlineModem()
{
    startStack({second});
    startCalls();
    m_ofono->addModem(first, FakeOfono::modem(false));
    QTRY_COMPARE(m_calls->status(), Telephony::Ready);
    m_calls->dial(u"111"_s);
    QCOMPARE(m_ofono->next(u"Dial"_s).path(), second);
    m_ofono->change(second, u"org.ofono.Modem"_s, u"Online"_s, false);
    QTRY_COMPARE(m_calls->modems(), QStringList());
    m_calls->dial(u"111"_s);
    QCOMPARE(failure(), u"dial 0 111 NoModem"_s);
}

void TestCalls::dialsThroughAModemWithASim()
{
    startStack({first});
    QVariantMap withSim = FakeOfono::modem();
    withSim[u"Interfaces"_s] = withSim.value(u"Interfaces"_s).toStringList()
        + QStringList(u"org.ofono.NetworkRegistration"_s);
    m_ofono->addModem(second, withSim);
    startCalls();
    QTRY_COMPARE(m_calls->modems(), QStringList({first, second}));
    m_calls->dial(u"111"_s);
    QCOMPARE(m_ofono->next(u"Dial"_s).path(), second);
}

/// A request to dial may start the process.
void TestCalls::dialsWhenTheStackIsKnown()
{
    startStack();
    startCalls();
    m_calls->dial(u"111"_s);
    QCOMPARE(m_calls->status(), Telephony::Starting);
    QCOMPARE(m_ofono->next(u"Dial"_s).arguments().at(0).toString(), u"111"_s);
}

void TestCalls::refusesNumbers_data()
{
    QTest::addColumn<QString>("number");
    QTest::addColumn<QString>("reported");

    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("letters") << u"HELP"_s << u"HELP"_s;
    QTest::newRow("long") << QString(10000, u'1') << QString(200, u'1');
    QTest::newRow("a command") << u"1;ATH"_s << u"1;ATH"_s;
}

void TestCalls::refusesNumbers()
{
    QFETCH(QString, number);
    QFETCH(QString, reported);

    startWith({});
    m_calls->dial(number);
    QCOMPARE(failure(), u"dial 0 %1 InvalidFormat"_s.arg(reported));
}

void TestCalls::dialsEmergencyNumbersInAnyCase()
{
    startStack({});
    m_ofono->setEmergencyNumbers({u"112"_s, u"*911#"_s, u"SOS"_s});
    m_ofono->addModem(first, FakeOfono::modem(false));
    startCalls();
    QTRY_COMPARE(m_calls->emergencyNumbers(), QStringList({u"112"_s, u"*911#"_s, u"SOS"_s}));
    for (const QString &number : {u"112"_s, u"*911#"_s, u"SOS"_s}) {
        m_calls->dial(number);
        QDBusMessage call = m_ofono->next(u"Dial"_s);
        QCOMPARE(call.path(), first);
        QCOMPARE(call.arguments().at(0).toString(), number);
        m_calls->dial(number, u"/none"_s);
        call = m_ofono->next(u"Dial"_s);
        QCOMPARE(call.path(), first);
    }
    m_ofono->change(first, u"org.ofono.VoiceCallManager"_s, u"EmergencyNumbers"_s,
                    QStringList(u"000"_s));
    QTRY_COMPARE(m_calls->emergencyNumbers(), QStringList(u"000"_s));
    m_calls->dial(u"112"_s);
    QCOMPARE(failure(), u"dial 0 112 NoModem"_s);
}

void TestCalls::answers()
{
    startWith(
        {object(one, FakeOfono::call(u"incoming"_s)), object(two, FakeOfono::call(u"waiting"_s))});
    m_calls->answer(role(0, "callId").toInt());
    QDBusMessage call = m_ofono->next(u"Answer"_s);
    QCOMPARE(call.path(), one);
    QCOMPARE(call.interface(), u"org.ofono.VoiceCall"_s);
    m_calls->answer(role(1, "callId").toInt());
    call = m_ofono->next(u"HoldAndAnswer"_s);
    QCOMPARE(call.path(), first);
    QCOMPARE(call.interface(), u"org.ofono.VoiceCallManager"_s);
}

void TestCalls::tellsTheStack_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("path");

    QTest::newRow("hold and answer") << u"holdAndAnswer"_s << u"HoldAndAnswer"_s << first;
    QTest::newRow("end and answer") << u"endAndAnswer"_s << u"ReleaseAndAnswer"_s << first;
    QTest::newRow("hang up") << u"hangUp"_s << u"Hangup"_s << one;
    QTest::newRow("swap") << u"swap"_s << u"SwapCalls"_s << first;
    QTest::newRow("join") << u"join"_s << u"CreateMultiparty"_s << first;
    QTest::newRow("split") << u"split"_s << u"PrivateChat"_s << first;
}

void TestCalls::tellsTheStack()
{
    QFETCH(QString, action);
    QFETCH(QString, method);
    QFETCH(QString, path);

    startWith({object(one, FakeOfono::call(u"active"_s))});
    const bool ofACall = action != u"swap"_s && action != u"join"_s;
    const int id = ofACall ? m_calls->ongoing() : 0;
    const auto act = [&] {
        return ofACall ? QMetaObject::invokeMethod(m_calls.get(), action.toLatin1().constData(),
                                                   Q_ARG(int, id))
                       : QMetaObject::invokeMethod(m_calls.get(), action.toLatin1().constData());
    };
    QVERIFY(act());
    QDBusMessage call = m_ofono->next(method);
    QCOMPARE(call.path(), path);
    if (action == u"split"_s)
        QCOMPARE(call.arguments().at(0).value<QDBusObjectPath>().path(), one);
    else
        QCOMPARE(call.arguments(), QVariantList());
    m_ofono->fail(call, u"org.ofono.Error.InProgress"_s, u"busy"_s);
    QCOMPARE(failure(),
             u"%1 %2 %3 InProgress"_s.arg(action).arg(id).arg(ofACall ? u"5550100"_s : QString()));
}

void TestCalls::hangsUpEverywhere()
{
    startStack({first, second});
    m_ofono->setCalls(
        first,
        {object(one, FakeOfono::call(u"active"_s)), object(two, FakeOfono::call(u"held"_s))});
    m_ofono->setCalls(second, {object(other, FakeOfono::call(u"active"_s))});
    startCalls();
    QTRY_COMPARE(m_calls->count(), 3);
    m_calls->hangUpAll();
    QCOMPARE(m_ofono->next(u"HangupAll"_s).path(), first);
    QCOMPARE(m_ofono->next(u"HangupAll"_s).path(), second);
    m_calls->hangUpAll(second);
    QCOMPARE(m_ofono->next(u"HangupAll"_s).path(), second);
    m_calls->hangUpAll(u"/none"_s);
    QCOMPARE(failure(), u"hangUpAll 0  NoCall"_s);
}

void TestCalls::knowsNoSuchCall()
{
    startWith({});
    m_calls->hangUp(7);
    QCOMPARE(failure(), u"hangUp 7  NoCall"_s);
    m_calls->split(0);
    QCOMPARE(failure(), u"split 0  NoCall"_s);
    m_calls->endAndAnswer(-1);
    QCOMPARE(failure(), u"endAndAnswer -1  NoCall"_s);
    m_calls->swap();
    QCOMPARE(failure(), u"swap 0  NoCall"_s);
    m_calls->sendTones(u"1"_s);
    QCOMPARE(failure(), u"sendTones 0  NoCall"_s);
}

/// oFono takes nothing else during a command, so that each has one tone.
void TestCalls::sendsTonesOneAfterTheOther()
{
    startWith({object(one, FakeOfono::call(u"active"_s))});
    m_calls->sendTones(u"12"_s);
    m_calls->sendTones(u"3"_s);
    m_calls->sendTones(u"x"_s);
    QCOMPARE(failure(), u"sendTones 0  InvalidFormat"_s);
    for (const QString &tone : {u"1"_s, u"2"_s, u"3"_s}) {
        const QDBusMessage command = m_ofono->next(u"SendTones"_s);
        QCOMPARE(command.arguments().at(0).toString(), tone);
        m_ofono->settle();
        QCOMPARE(m_ofono->waiting(), 0);
        m_ofono->reply(command, {});
    }
    m_ofono->settle();
    m_calls->sendTones(u"4"_s);
    QTRY_COMPARE(m_ofono->waiting(), 1);
    QCOMPARE(m_ofono->next(u"SendTones"_s).arguments().at(0).toString(), u"4"_s);
}

void TestCalls::dropsTonesAfterAFailure()
{
    startWith({object(one, FakeOfono::call(u"active"_s))});
    m_calls->sendTones(u"1"_s);
    const QDBusMessage tone = m_ofono->next(u"SendTones"_s);
    m_calls->sendTones(u"2"_s);
    m_ofono->fail(tone, u"org.ofono.Error.Failed"_s, {});
    QCOMPARE(failure(), u"sendTones 0  Failed"_s);
    m_calls->sendTones(u"3"_s);
    QCOMPARE(m_ofono->next(u"SendTones"_s).arguments().at(0).toString(), u"3"_s);
}

/// The answer for a modem that has gone does not concern the one that comes in its place.
void TestCalls::dropsTonesWithTheirModem()
{
    startWith({object(one, FakeOfono::call(u"active"_s))});
    m_calls->sendTones(u"1"_s);
    const QDBusMessage before = m_ofono->next(u"SendTones"_s);
    m_calls->sendTones(u"2"_s);
    m_ofono->removeModem(first);
    QCOMPARE(failure(), u"sendTones 0  NoAnswer"_s);
    m_ofono->addModem(first, FakeOfono::modem());
    QTRY_COMPARE(m_calls->count(), 1);
    m_calls->sendTones(u"3"_s);
    const QDBusMessage now = m_ofono->next(u"SendTones"_s);
    QCOMPARE(now.arguments().at(0).toString(), u"3"_s);
    m_ofono->reply(before, {});
    m_ofono->settle();
    m_calls->sendTones(u"4"_s);
    m_ofono->settle();
    QCOMPARE(m_ofono->waiting(), 0);
    m_ofono->reply(now, {});
    QCOMPARE(m_ofono->next(u"SendTones"_s).arguments().at(0).toString(), u"4"_s);
}

void TestCalls::waitsForTheTones_data()
{
    QTest::addColumn<bool>("failed");

    QTest::newRow("sent") << false;
    QTest::newRow("failed") << true;
}

/// oFono refuses everything else meanwhile. Tones that were not sent yet are not sent any more.
void TestCalls::waitsForTheTones()
{
    QFETCH(bool, failed);

    startWith(
        {object(one, FakeOfono::call(u"active"_s)), object(two, FakeOfono::call(u"waiting"_s))});
    m_calls->sendTones(u"12"_s);
    const QDBusMessage tone = m_ofono->next(u"SendTones"_s);
    m_calls->sendTones(u"2"_s);
    m_calls->holdAndAnswer(m_calls->ringing());
    m_calls->hangUpAll();
    m_calls->hangUp(m_calls->ongoing());
    m_calls->dial(u"111"_s);
    // After them nobody may listen.
    m_calls->sendTones(u"3"_s);
    QCOMPARE(failure(), u"sendTones 0  InProgress"_s);
    m_ofono->settle();
    QCOMPARE(m_ofono->waiting(), 0);
    if (failed)
        m_ofono->fail(tone, u"org.ofono.Error.Failed"_s, {});
    else
        m_ofono->reply(tone, {});
    for (const QString &method : {u"HoldAndAnswer"_s, u"HangupAll"_s, u"Hangup"_s, u"Dial"_s})
        m_ofono->reply(m_ofono->next(method), {});
    if (failed)
        QCOMPARE(failure(), u"sendTones 0  Failed"_s);
    m_ofono->settle();
    m_calls->sendTones(u"4"_s);
    QCOMPARE(m_ofono->next(u"SendTones"_s).arguments().at(0).toString(), u"4"_s);
}

void TestCalls::waitsForTheTonesOfItsModemAlone()
{
    startStack({first, second});
    m_ofono->setCalls(first, {object(one, FakeOfono::call(u"active"_s))});
    m_ofono->setCalls(second, {object(other, FakeOfono::call(u"active"_s))});
    startCalls();
    QTRY_COMPARE(m_calls->count(), 2);
    m_calls->sendTones(u"1"_s, first);
    const QDBusMessage tone = m_ofono->next(u"SendTones"_s);
    m_calls->hangUpAll();
    QCOMPARE(m_ofono->next(u"HangupAll"_s).path(), second);
    m_ofono->settle();
    QCOMPARE(m_ofono->waiting(), 0);
    m_ofono->reply(tone, {});
    QCOMPARE(m_ofono->next(u"HangupAll"_s).path(), first);
}

/// Nothing happens at first, so a user may touch the button again.
void TestCalls::doesWhatWaitedOnce()
{
    startWith({object(one, FakeOfono::call(u"active"_s))});
    m_calls->sendTones(u"1"_s);
    const QDBusMessage tone = m_ofono->next(u"SendTones"_s);
    for (int i = 0; i < 3; ++i)
        m_calls->hangUp(m_calls->ongoing());
    m_ofono->reply(tone, {});
    QCOMPARE(m_ofono->next(u"Hangup"_s).path(), one);
    m_calls->hangUp(m_calls->ongoing());
    m_ofono->settle();
    QCOMPARE(m_ofono->waiting(), 0);
}

void TestCalls::endsNoOtherCallAfterTheTones_data()
{
    QTest::addColumn<bool>("failFirst");

    QTest::newRow("the call ends first") << false;
    QTest::newRow("the tones fail first") << true;
}

/// The other side ends the call during the tones, and another call gets its path.
void TestCalls::endsNoOtherCallAfterTheTones()
{
    QFETCH(bool, failFirst);

    startWith(
        {object(one, FakeOfono::call(u"active"_s)), object(two, FakeOfono::call(u"waiting"_s))});
    const int waiting = m_calls->ringing();
    m_calls->sendTones(u"1"_s);
    const QDBusMessage tone = m_ofono->next(u"SendTones"_s);
    m_calls->hangUp(m_calls->ongoing());
    m_calls->holdAndAnswer(waiting);
    if (failFirst)
        m_ofono->fail(tone, u"org.ofono.Error.Failed"_s, {});
    m_ofono->endCall(one, u"remote"_s);
    m_ofono->endCall(two, u"remote"_s);
    m_ofono->addCall(one, FakeOfono::call(u"incoming"_s));
    QTRY_COMPARE(m_ended->count(), 2);
    if (!failFirst)
        m_ofono->fail(tone, u"org.ofono.Error.Failed"_s, {});
    QCOMPARE(failure(), u"sendTones 0  Failed"_s);
    QCOMPARE(failure(), u"holdAndAnswer %1 5550100 NoCall"_s.arg(waiting));
    m_ofono->settle();
    QCOMPARE(m_ofono->waiting(), 0);
}

void TestCalls::limitsWhatWaits()
{
    startWith({object(one, FakeOfono::call(u"active"_s))});
    m_calls->sendTones(u"1"_s);
    const QDBusMessage tone = m_ofono->next(u"SendTones"_s);
    for (int i = 0; i < 65; ++i)
        m_calls->dial(QString::number(5550000 + i));
    QCOMPARE(failure(), u"dial 0 5550064 InProgress"_s);
    m_calls->dial(u"112"_s);
    m_calls->hangUp(m_calls->ongoing());
    m_ofono->settle();
    QCOMPARE(m_ofono->waiting(), 0);
    m_ofono->reply(tone, {});
    QTRY_COMPARE(m_ofono->waiting(), 66);
    m_ofono->forget();
}

void TestCalls::losesWhatWaitsWithItsModem()
{
    startWith({object(one, FakeOfono::call(u"active"_s))});
    const int id = m_calls->ongoing();
    m_calls->sendTones(u"1"_s);
    QCOMPARE(m_ofono->next().member(), u"SendTones"_s);
    m_calls->hangUp(id);
    m_ofono->removeModem(first);
    QCOMPARE(failure(), u"sendTones 0  NoAnswer"_s);
    QCOMPARE(failure(), u"hangUp %1 5550100 NoAnswer"_s.arg(id));
}

/// oFono refuses to end a call while it ends another one, as in a conference that is ended.
void TestCalls::endsOneCallAfterTheOther()
{
    startWith(
        {object(one, FakeOfono::call(u"active"_s)), object(two, FakeOfono::call(u"active"_s))});
    m_calls->hangUp(role(0, "callId").toInt());
    m_calls->hangUp(role(1, "callId").toInt());
    const QDBusMessage call = m_ofono->next(u"Hangup"_s);
    QCOMPARE(call.path(), one);
    m_ofono->settle();
    QCOMPARE(m_ofono->waiting(), 0);
    m_ofono->reply(call, {});
    QCOMPARE(m_ofono->next(u"Hangup"_s).path(), two);
}

void TestCalls::tellsWhatHasFailed_data()
{
    QTest::addColumn<QString>("sent");
    QTest::addColumn<QString>("error");

    const QMetaEnum errors = QMetaEnum::fromType<Telephony::Error>();
    for (int i = 0; i <= Telephony::Terminated; ++i) {
        const QString name = QString::fromLatin1(errors.valueToKey(i));
        QTest::newRow(qUtf8Printable(name)) << QString(u"org.ofono.Error."_s + name) << name;
    }
    const QString bus = u"org.freedesktop.DBus.Error."_s;
    QTest::newRow("another one of oFono's") << u"org.ofono.Error.Bored"_s << u"Failed"_s;
    QTest::newRow("of another service") << u"com.example.Error.InProgress"_s << u"Failed"_s;
    QTest::newRow("no method") << QString(bus + u"UnknownMethod"_s) << u"NotAvailable"_s;
    QTest::newRow("no object") << QString(bus + u"UnknownObject"_s) << u"NotAvailable"_s;
    QTest::newRow("no answer") << QString(bus + u"NoReply"_s) << u"NoAnswer"_s;
    QTest::newRow("no service") << QString(bus + u"ServiceUnknown"_s) << u"NoStack"_s;
    QTest::newRow("forbidden") << QString(bus + u"AccessDenied"_s) << u"AccessDenied"_s;
    QTest::newRow("too much") << QString(bus + u"LimitsExceeded"_s) << u"InProgress"_s;
}

void TestCalls::tellsWhatHasFailed()
{
    QFETCH(QString, sent);
    QFETCH(QString, error);

    startWith({});
    m_calls->dial(u"111"_s);
    m_ofono->fail(m_ofono->next(u"Dial"_s), sent, u"text"_s);
    QCOMPARE(failure(), u"dial 0 111 "_s + error);
}

void TestCalls::failsWithoutAStack()
{
    startCalls();
    QTRY_COMPARE(m_calls->status(), Telephony::NoService);
    m_calls->dial(u"111"_s);
    QCOMPARE(failure(), u"dial 0 111 NoStack"_s);
    m_calls->dial(u"*100#"_s);
    QCOMPARE(failure(), u"dial 0 *100# NoStack"_s);
}

void TestCalls::failsWhenTheStackStops()
{
    startWith({object(one, FakeOfono::call(u"active"_s))});
    m_calls->hangUp(m_calls->ongoing());
    QCOMPARE(m_ofono->next().member(), u"Hangup"_s);
    m_ofono.reset();
    QVERIFY(failure().endsWith(u"NoAnswer"_s));
}

/// A command that takes its time is no sign of a stack that hangs.
void TestCalls::failsWithoutAnAnswer()
{
    using namespace std::chrono_literals;
    startStack();
    m_calls = std::make_unique<Calls>();
    m_calls->setPatience({400ms, 2s, 2s});
    m_failures = std::make_unique<QSignalSpy>(m_calls.get(), &Calls::failed);
    const QSignalSpy statuses(m_calls.get(), &Calls::statusChanged);
    m_calls->componentComplete();
    QTRY_COMPARE(m_calls->status(), Telephony::Ready);
    m_calls->dial(u"111"_s);
    QCOMPARE(m_ofono->next().member(), u"Dial"_s);
    QCOMPARE(failure(), u"dial 0 111 NoAnswer"_s);
    QCOMPARE(statuses.count(), 1);
}

void TestCalls::hasADialogue()
{
    startWith({});
    const QString interface = u"org.ofono.SupplementaryServices"_s;
    const ServiceDialogue *const dialogue = m_calls->dialogue();
    QCOMPARE(dialogue->state(), u"idle"_s);
    m_calls->dial(u"*100#"_s);
    QDBusMessage call = m_ofono->next(u"Initiate"_s);
    QCOMPARE(call.interface(), interface);
    QCOMPARE(call.path(), first);
    QCOMPARE(call.arguments(), QVariantList({u"*100#"_s}));
    QCOMPARE(dialogue->state(), u"active"_s);
    QCOMPARE(dialogue->modem(), first);
    // There is one dialogue at a time.
    m_calls->dial(u"*101#"_s);
    QCOMPARE(failure(), u"dial 0 *101# InProgress"_s);

    m_ofono->change(first, interface, u"State"_s, u"active"_s);
    m_ofono->change(first, interface, u"State"_s, u"user-response"_s);
    m_ofono->reply(call, {u"USSD"_s, QVariant::fromValue(QDBusVariant(u"1 Balance\n2 Top up"_s))});
    QTRY_COMPARE(dialogue->state(), u"user-response"_s);
    QCOMPARE(dialogue->text(), u"1 Balance\n2 Top up"_s);
    m_calls->dialogue()->reply(u"1"_s);
    call = m_ofono->next(u"Respond"_s);
    QCOMPARE(call.arguments(), QVariantList({u"1"_s}));
    QCOMPARE(dialogue->state(), u"active"_s);
    m_ofono->change(first, interface, u"State"_s, u"idle"_s);
    m_ofono->reply(call, {u"5 Euro"_s});
    QTRY_COMPARE(dialogue->state(), u"idle"_s);
    QCOMPARE(dialogue->text(), u"5 Euro"_s);
    m_calls->dialogue()->reply(u"1"_s);
    QCOMPARE(failure(), u"reply 0 1 NotActive"_s);
}

/// A user may touch the button twice.
void TestCalls::repliesOnce()
{
    startStack();
    m_ofono->setDialogueState(u"user-response"_s);
    startCalls();
    QTRY_COMPARE(m_calls->dialogue()->state(), u"user-response"_s);
    m_calls->dialogue()->reply(u"1"_s);
    m_calls->dialogue()->reply(u"2"_s);
    QCOMPARE(m_ofono->next(u"Respond"_s).arguments(), QVariantList({u"1"_s}));
    QCOMPARE(failure(), u"reply 0 2 NotActive"_s);
}

void TestCalls::hasADialogueThatFails()
{
    startWith({});
    m_calls->dial(u"*100#"_s);
    m_ofono->fail(m_ofono->next(u"Initiate"_s), u"org.ofono.Error.NotRecognized"_s, {});
    QCOMPARE(failure(), u"dial 0 *100# NotRecognized"_s);
    QCOMPARE(m_calls->dialogue()->state(), u"idle"_s);
    m_calls->dial(u"*100#"_s, u"/none"_s);
    QCOMPARE(failure(), u"dial 0 *100# NoModem"_s);
}

void TestCalls::hasADialogueThatTheNetworkBegins()
{
    startWith({});
    const QString interface = u"org.ofono.SupplementaryServices"_s;
    m_ofono->emitSignal(interface, u"NotificationReceived"_s, {u"Welcome"_s}, first);
    QTRY_COMPARE(m_calls->dialogue()->text(), u"Welcome"_s);
    QCOMPARE(m_calls->dialogue()->state(), u"idle"_s);
    m_ofono->emitSignal(interface, u"RequestReceived"_s, {u"Your name?"_s}, first);
    m_ofono->change(first, interface, u"State"_s, u"user-response"_s);
    QTRY_COMPARE(m_calls->dialogue()->state(), u"user-response"_s);
    QCOMPARE(m_calls->dialogue()->text(), u"Your name?"_s);
    QCOMPARE(m_calls->dialogue()->modem(), first);
    m_calls->dialogue()->reply(QString(201, u'1'));
    QCOMPARE(failure(), u"reply 0 %1 InvalidFormat"_s.arg(QString(200, u'1')));
}

void TestCalls::findsADialogue()
{
    startStack();
    m_ofono->setDialogueState(u"user-response"_s);
    startCalls();
    QTRY_COMPARE(m_calls->dialogue()->state(), u"user-response"_s);
    m_calls->dialogue()->cancel();
    const QDBusMessage call = m_ofono->next(u"Cancel"_s);
    QCOMPARE(call.path(), first);
    m_ofono->fail(call, u"org.ofono.Error.NotActive"_s, {});
    QCOMPARE(failure(), u"cancel 0  NotActive"_s);
}

void TestCalls::findsADialogueOfAnotherModem_data()
{
    QTest::addColumn<QVariantMap>("properties");
    QTest::addColumn<bool>("refused");

    QTest::newRow("idle") << QVariantMap{{u"State"_s, u"idle"_s}} << false;
    QTest::newRow("without a state") << QVariantMap() << false;
    QTest::newRow("with an unknown state") << QVariantMap{{u"State"_s, u"bored"_s}} << false;
    QTest::newRow("with a state of another type") << QVariantMap{{u"State"_s, 7}} << false;
    QTest::newRow("that refuses") << QVariantMap() << true;
}

/// A modem that has no dialogue, or does not tell, does not hide that of the next one.
void TestCalls::findsADialogueOfAnotherModem()
{
    QFETCH(QVariantMap, properties);
    QFETCH(bool, refused);

    startStack({});
    startCalls();
    QTRY_COMPARE(m_calls->status(), Telephony::Ready);
    m_ofono->answerNothing();
    const QVariantMap modem{{u"Online"_s, true},
                            {u"Interfaces"_s, QStringList(u"org.ofono.SupplementaryServices"_s)}};
    m_ofono->addModem(first, modem);
    m_ofono->addModem(second, modem);
    const QDBusMessage question = m_ofono->next(u"GetProperties"_s);
    QCOMPARE(question.path(), first);
    if (refused)
        m_ofono->fail(question, u"org.freedesktop.DBus.Error.AccessDenied"_s, u"no"_s);
    else
        m_ofono->reply(question, {properties});
    m_ofono->settle();
    QCOMPARE(m_calls->dialogue()->modem(), QString());
    m_ofono->reply(m_ofono->next(u"GetProperties"_s),
                   {QVariantMap{{u"State"_s, u"user-response"_s}}});
    QTRY_COMPARE(m_calls->dialogue()->state(), u"user-response"_s);
    QCOMPARE(m_calls->dialogue()->modem(), second);
    if (refused)
        QCOMPARE(m_log->take().size(), 1);
}

void TestCalls::staysWithTheModemOfItsDialogue_data()
{
    QTest::addColumn<QString>("property");
    QTest::addColumn<QVariant>("value");

    QTest::newRow("another property") << u"Other"_s << QVariant(u"active"_s);
    QTest::newRow("no dialogue") << u"State"_s << QVariant(u"idle"_s);
    QTest::newRow("an unknown state") << u"State"_s << QVariant(u"bored"_s);
    QTest::newRow("a state of another type") << u"State"_s << QVariant(7);
}

/// Only a dialogue of another modem makes that the modem of the dialogue.
void TestCalls::staysWithTheModemOfItsDialogue()
{
    QFETCH(QString, property);
    QFETCH(QVariant, value);

    const QString interface = u"org.ofono.SupplementaryServices"_s;
    startStack({first, second});
    startCalls();
    QTRY_COMPARE(m_calls->status(), Telephony::Ready);
    m_ofono->change(second, interface, property, value);
    m_ofono->settle();
    QCOMPARE(m_calls->dialogue()->modem(), QString());
    m_ofono->change(second, interface, u"State"_s, u"active"_s);
    QTRY_COMPARE(m_calls->dialogue()->modem(), second);
}

void TestCalls::readsSettings()
{
    startWith({});
    m_calls->dial(u"*#61#"_s);
    QDBusArgument setting;
    setting.beginStructure();
    setting << u"interrogation"_s << u"NoReply"_s
            << QVariantMap{{u"VoiceNoReply"_s, u"+12345678"_s},
                           {u"VoiceNoReplyTimeout"_s, 20},
                           {u"Other"_s, QStringList(u"x"_s)}};
    setting.endStructure();
    m_ofono->reply(
        m_ofono->next(u"Initiate"_s),
        {u"CallForwarding"_s, QVariant::fromValue(QDBusVariant(QVariant::fromValue(setting)))});
    QTRY_COMPARE(m_calls->dialogue()->state(), u"idle"_s);
    const QVariantMap values{{u"VoiceNoReply"_s, u"+12345678"_s}, {u"VoiceNoReplyTimeout"_s, 20}};
    QCOMPARE(m_calls->dialogue()->answer(),
             (QVariantMap{{u"kind"_s, u"CallForwarding"_s},
                          {u"operation"_s, u"interrogation"_s},
                          {u"service"_s, u"NoReply"_s},
                          {u"values"_s, values}}));
    QCOMPARE(m_calls->dialogue()->text(), QString());
}

void TestCalls::cancelsTheDialogue()
{
    startWith({});
    m_calls->dialogue()->cancel(); // There is none.
    m_calls->dial(u"*100#"_s);
    const QDBusMessage request = m_ofono->next(u"Initiate"_s);
    m_calls->dialogue()->cancel();
    m_ofono->reply(m_ofono->next(u"Cancel"_s), {});
    m_ofono->fail(request, u"org.ofono.Error.Canceled"_s, {});
    QCOMPARE(failure(), u"dial 0 *100# Canceled"_s);
    QCOMPARE(m_calls->dialogue()->state(), u"idle"_s);
}

void TestCalls::endsTheDialogueWithItsModem()
{
    startWith({});
    m_calls->dial(u"*100#"_s);
    QCOMPARE(m_ofono->next(u"Initiate"_s).path(), first);
    m_ofono->removeModem(first);
    QCOMPARE(failure(), u"dial 0 *100# NoAnswer"_s);
    QCOMPARE(m_calls->dialogue()->state(), u"idle"_s);
    QCOMPARE(m_calls->dialogue()->modem(), QString());
}

void TestCalls::knowsTheAnswersOfItsDialogue_data()
{
    QTest::addColumn<bool>("failed");

    QTest::newRow("a text") << false;
    QTest::newRow("a failure") << true;
}

/// What comes for a dialogue that has ended with its modem does not concern the next one.
void TestCalls::knowsTheAnswersOfItsDialogue()
{
    QFETCH(bool, failed);

    const auto text = [](const QString &value) {
        return QVariantList{u"USSD"_s, QVariant::fromValue(QDBusVariant(value))};
    };
    startStack({first, second});
    startCalls();
    QTRY_COMPARE(m_calls->status(), Telephony::Ready);
    m_calls->dial(u"*100#"_s, first);
    const QDBusMessage before = m_ofono->next(u"Initiate"_s);
    m_ofono->removeModem(first);
    QCOMPARE(failure(), u"dial 0 *100# NoAnswer"_s);
    m_calls->dial(u"*101#"_s);
    const QDBusMessage now = m_ofono->next(u"Initiate"_s);
    QCOMPARE(now.path(), second);
    if (failed)
        m_ofono->fail(before, u"org.ofono.Error.Failed"_s, {});
    else
        m_ofono->reply(before, text(u"old"_s));
    m_ofono->settle();
    QCOMPARE(m_calls->dialogue()->state(), u"active"_s);
    QCOMPARE(m_calls->dialogue()->text(), QString());
    m_ofono->reply(now, text(u"new"_s));
    QTRY_COMPARE(m_calls->dialogue()->text(), u"new"_s);
    QCOMPARE(m_calls->dialogue()->state(), u"idle"_s);
}

QTEST_GUILESS_MAIN(TestCalls)

#include "tst_calls.moc"
