// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "calls.h"
#include "callstest.h"
#include "fakeofono.h"
#include "literals.h"
#include "rawofono.h"
#include "waitfor.h"
#include "watchercount.h"

#include <QDBusVariant>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>
#include <cstring>
#include <ctime>
#include <memory>

namespace {

using namespace std::chrono_literals;

const QString first = u"/ril_0"_s;
const QString one = u"/ril_0/voicecall01"_s;
const QString two = u"/ril_0/voicecall02"_s;

/// Returns the paths of so many modems, in their order.
QStringList manyModems(int count)
{
    QStringList paths;
    for (int i = 0; i < count; ++i)
        paths.append(u"/modem_%1"_s.arg(i, 4, 10, QLatin1Char('0')));
    return paths;
}

/// Returns the signal CallAdded with a call that has no properties.
RawMessage callAdded(const QByteArray &destination, const char *path)
{
    RawMessage message =
        RawConnection::makeSignal(destination, "/ril_0", "org.ofono.VoiceCallManager", "CallAdded");
    DBusMessageIter arguments;
    DBusMessageIter properties;
    dbus_message_iter_init_append(message.get(), &arguments);
    dbus_message_iter_append_basic(&arguments, DBUS_TYPE_OBJECT_PATH, &path);
    dbus_message_iter_open_container(&arguments, DBUS_TYPE_ARRAY, "{sv}", &properties);
    dbus_message_iter_close_container(&arguments, &properties);
    return message;
}

RawMessage pathSignal(const QByteArray &destination, const char *interface, const char *member,
                      const char *path)
{
    RawMessage message = RawConnection::makeSignal(
        destination, std::strcmp(member, "ModemRemoved") == 0 ? "/" : "/ril_0", interface, member);
    dbus_message_append_args(message.get(), DBUS_TYPE_OBJECT_PATH, &path, DBUS_TYPE_INVALID);
    return message;
}

} // namespace

/// The calls among processes that lie, hang and die, and handlers that do what they like.
class TestCallsAttacks : public CallsTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void cleanup() override;

    void believesOnlyTheOwnersSignals();
    void believesOnlyTheOwnersAnswers();
    void waitsForNoAnswerAboutAModemThatIsGone();
    void knowsAStackThatHangsFromTheStart();
    void knowsAStackThatHangsWhileItDials();
    void dropsAnswersThatComeTooLate();
    void toleratesModemsOfAnotherShape_data();
    void toleratesModemsOfAnotherShape();
    void toleratesCallsOfAnotherShape();
    void toleratesErrors();
    void knowsWhatItMayNotDo();
    void toleratesPropertiesOfAnotherType_data();
    void toleratesPropertiesOfAnotherType();
    void toleratesSignalsOfAnotherShape();
    void showsTextsSafely();
    void limitsModems();
    void hasAThousandModems();
    void growsWithTheModems();
    void limitsCalls();
    void limitsCommands_data();
    void limitsCommands();
    void survivesItsEndInAHandler_data();
    void survivesItsEndInAHandler();
    void keepsItsOrderWhenAHandlerRunsAnEventLoop();
    void leavesNothingOfFinishedCalls();

private:
    Q_INVOKABLE void endCalls() { m_calls.reset(); }
    void startWith(const QList<FakeObject> &calls);
    QVariant role(int row, const QByteArray &name) const;

    std::unique_ptr<FakeOfono> m_ofono;
    std::unique_ptr<Calls> m_calls;
};

void TestCallsAttacks::init()
{
    CallsTest::init();
    m_calls = std::make_unique<Calls>();
}

void TestCallsAttacks::cleanup()
{
    m_calls.reset();
    m_ofono.reset();
    CallsTest::cleanup();
}

void TestCallsAttacks::startWith(const QList<FakeObject> &calls)
{
    m_ofono = std::make_unique<FakeOfono>(m_bus.address(), QStringList(first));
    m_ofono->setCalls(first, calls);
    m_calls->componentComplete();
    QTRY_COMPARE(m_calls->status(), Telephony::Ready);
    QCOMPARE(m_calls->count(), calls.size());
}

QVariant TestCallsAttacks::role(int row, const QByteArray &name) const
{
    return CallsTest::role(*m_calls, row, name);
}

void TestCallsAttacks::believesOnlyTheOwnersSignals()
{
    startWith({{QDBusObjectPath(one), FakeOfono::call(u"active"_s)}});
    m_calls->dial(u"111"_s);
    const QByteArray us = m_ofono->next(u"Dial"_s).service().toLatin1();
    QVERIFY(us.startsWith(':'));
    const QSignalSpy ended(m_calls.get(), &CallModel::ended);
    RawConnection stranger(m_bus.address());
    for (const QByteArray &destination : {QByteArray(), us}) {
        stranger.send(callAdded(destination, "/ril_0/voicecall66").get());
        stranger.send(pathSignal(destination, "org.ofono.VoiceCallManager", "CallRemoved",
                                 "/ril_0/voicecall01")
                          .get());
        stranger.send(pathSignal(destination, "org.ofono.Manager", "ModemRemoved", "/ril_0").get());
    }
    // After this answer the bus has handed on what was sent before.
    QVERIFY(stranger.call(RawConnection::makeCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                                  "org.freedesktop.DBus", "GetId")
                              .get(),
                          30000));
    m_ofono->addCall(two, FakeOfono::call(u"waiting"_s));
    QTRY_COMPARE(m_calls->count(), 2);
    QCOMPARE(role(1, "callState").toString(), u"waiting"_s);
    QCOMPARE(ended.count(), 0);
}

void TestCallsAttacks::believesOnlyTheOwnersAnswers()
{
    RawOfono ofono(m_bus.address(), false);
    RawConnection stranger(m_bus.address());
    QSignalSpy failures(m_calls.get(), &Calls::failed);
    const auto forge = [&](const RawOfono::Call &call) {
        const RawMessage answer = RawOfono::answerTo(call);
        stranger.send(answer.get());
        stranger.pump();
    };
    m_calls->componentComplete();
    for (const char *question : {"GetModems", "GetProperties", "GetCalls"}) {
        const RawOfono::Call call = ofono.next(question);
        QVERIFY(call.serial != 0);
        forge(call);
        const RawOfono::Call again = ofono.next(question);
        QVERIFY(again.serial != 0 && again.serial != call.serial);
        QVERIFY(m_calls->status() != Telephony::Ready);
        ofono.connection().send(RawOfono::answerTo(again).get());
    }
    QTRY_COMPARE(m_calls->status(), Telephony::Ready);
    m_calls->dial(u"111"_s);
    const RawOfono::Call dial = ofono.next("Dial");
    QVERIFY(dial.serial != 0);
    forge(dial);
    QVERIFY(failures.wait());
    QCOMPARE(failures.at(0).at(3).toInt(), int(Telephony::NoAnswer));
}

/// A stranger's answer to a question that nobody asks any more is an answer.
void TestCallsAttacks::waitsForNoAnswerAboutAModemThatIsGone()
{
    RawOfono ofono(m_bus.address(), false);
    RawConnection stranger(m_bus.address());
    m_calls->componentComplete();
    ofono.connection().send(RawOfono::answerTo(ofono.next("GetModems")).get());
    const RawOfono::Call properties = ofono.next("GetProperties");
    const RawOfono::Call calls = ofono.next("GetCalls");
    QVERIFY(properties.serial != 0 && calls.serial != 0);
    QTRY_COMPARE(m_calls->modems(), QStringList(first));
    ofono.connection().send(
        pathSignal(properties.sender, "org.ofono.Manager", "ModemRemoved", "/ril_0").get());
    QTRY_COMPARE(m_calls->modems(), QStringList());
    QCOMPARE(m_calls->status(), Telephony::Starting);
    for (const RawOfono::Call &call : {properties, calls})
        stranger.send(RawOfono::answerTo(call).get());
    stranger.pump();
    QTRY_COMPARE(m_calls->status(), Telephony::Ready);
}

void TestCallsAttacks::knowsAStackThatHangsFromTheStart()
{
    RawOfono ofono(m_bus.address(), true);
    ofono.hang();
    m_calls->setPatience({50ms, 10s, 10s});
    QSignalSpy failures(m_calls.get(), &Calls::failed);
    m_calls->componentComplete();
    m_calls->dial(u"111"_s);
    QTRY_COMPARE(m_calls->status(), Telephony::Hung);
    QVERIFY(!failures.isEmpty() || failures.wait());
    QCOMPARE(failures.at(0).at(3).toInt(), int(Telephony::NoAnswer));
    ofono.goOn();
    QTRY_COMPARE(m_calls->status(), Telephony::Ready);
    QCOMPARE(m_calls->modems(), QStringList(first));
}

void TestCallsAttacks::knowsAStackThatHangsWhileItDials()
{
    RawOfono ofono(m_bus.address(), true);
    m_calls->setPatience({50ms, 1s, 1s});
    QSignalSpy failures(m_calls.get(), &Calls::failed);
    m_calls->componentComplete();
    QTRY_COMPARE(m_calls->status(), Telephony::Ready);
    m_calls->dial(u"111"_s);
    QVERIFY(ofono.next("Dial").serial != 0);
    ofono.hang();
    QTRY_COMPARE(m_calls->status(), Telephony::Hung);
    QCOMPARE(failures.count(), 0);
    QVERIFY(failures.wait());
    QCOMPARE(failures.at(0).at(3).toInt(), int(Telephony::NoAnswer));
    ofono.goOn();
    QTRY_COMPARE(m_calls->status(), Telephony::Ready);
}

/// A modem that goes and comes again is another one.
void TestCallsAttacks::dropsAnswersThatComeTooLate()
{
    m_ofono = std::make_unique<FakeOfono>(m_bus.address());
    m_calls->componentComplete();
    QTRY_COMPARE(m_calls->status(), Telephony::Ready);
    m_ofono->answerNothing();
    const auto nextCalls = [this] {
        QDBusMessage call = m_ofono->next();
        while (call.type() == QDBusMessage::MethodCallMessage && call.member() != u"GetCalls"_s)
            call = m_ofono->next();
        return call;
    };
    const auto answer = [this](const QDBusMessage &call, const QString &number) {
        const QList<FakeObject> calls{{QDBusObjectPath(one), FakeOfono::call(u"active"_s, number)}};
        m_ofono->reply(call, {QVariant::fromValue(calls)});
    };
    m_ofono->addModem(first, FakeOfono::modem());
    const QDBusMessage question = nextCalls();
    m_ofono->removeModem(first);
    m_ofono->addModem(first, FakeOfono::modem());
    const QDBusMessage again = nextCalls();
    // Calls that come before the answer are in the answer.
    m_ofono->addCall(two, FakeOfono::call(u"held"_s));
    answer(question, u"1"_s);
    answer(again, u"2"_s);
    QTRY_COMPARE(m_calls->count(), 1);
    QCOMPARE(role(0, "number").toString(), u"2"_s);
}

void TestCallsAttacks::toleratesModemsOfAnotherShape_data()
{
    QTest::addColumn<QVariantList>("values");
    QTest::addColumn<QString>("signature");

    QTest::newRow("nothing") << QVariantList() << QString();
    QTest::newRow("a text") << QVariantList{u"text"_s} << u"s"_s;
    QTest::newRow("a map") << QVariantList{QVariantMap{{u"a"_s, 1}}} << u"a{sv}"_s;
    QTest::newRow("too much") << QVariantList{QVariant::fromValue(QList<FakeObject>()), 1}
                              << u"a(oa{sv})i"_s;
}

void TestCallsAttacks::toleratesModemsOfAnotherShape()
{
    QFETCH(QVariantList, values);
    QFETCH(QString, signature);

    m_ofono = std::make_unique<FakeOfono>(m_bus.address());
    m_ofono->answerNothing();
    m_calls->componentComplete();
    m_ofono->reply(m_ofono->next(u"GetModems"_s), values);
    QTRY_COMPARE(m_calls->status(), Telephony::NoService);
    QCOMPARE(
        m_log->take(),
        QStringList(u"warning: oFono has answered \"GetModems\" with \"%1\""_s.arg(signature)));
}

void TestCallsAttacks::toleratesCallsOfAnotherShape()
{
    m_ofono = std::make_unique<FakeOfono>(m_bus.address());
    m_calls->componentComplete();
    QTRY_COMPARE(m_calls->status(), Telephony::Ready);
    m_ofono->answerNothing();
    m_ofono->addModem(
        first,
        {{u"Online"_s, true}, {u"Interfaces"_s, QStringList(u"org.ofono.VoiceCallManager"_s)}});
    m_ofono->reply(m_ofono->next(u"GetProperties"_s), {1});
    m_ofono->reply(m_ofono->next(u"GetCalls"_s), {QStringList(one)});
    m_ofono->addCall(two, FakeOfono::call(u"held"_s));
    QTRY_COMPARE(m_calls->count(), 1);
    QCOMPARE(m_log->take(),
             QStringList({u"warning: oFono has answered \"GetProperties\" with \"i\""_s,
                          u"warning: oFono has answered \"GetCalls\" with \"as\""_s}));
}

void TestCallsAttacks::toleratesErrors()
{
    m_ofono = std::make_unique<FakeOfono>(m_bus.address());
    m_ofono->answerNothing();
    m_calls->componentComplete();
    m_ofono->fail(m_ofono->next(u"GetModems"_s), u"org.freedesktop.DBus.Error.AccessDenied"_s,
                  u"no"_s);
    QTRY_COMPARE(m_calls->status(), Telephony::NoService);
    QCOMPARE(m_log->take(),
             QStringList(u"warning: Could not ask oFono for \"GetModems\" "
                         "QDBusError(\"org.freedesktop.DBus.Error.AccessDenied\", \"no\")"_s));
}

/// A policy of the bus may allow to ask for the modems and refuse the rest.
void TestCallsAttacks::knowsWhatItMayNotDo()
{
    const QString denied = u"org.freedesktop.DBus.Error.AccessDenied"_s;
    m_ofono = std::make_unique<FakeOfono>(m_bus.address());
    QSignalSpy failures(m_calls.get(), &Calls::failed);
    m_calls->componentComplete();
    QTRY_COMPARE(m_calls->status(), Telephony::Ready);
    m_ofono->answerNothing();
    m_ofono->addModem(first, FakeOfono::modem());
    for (const QString &question : {u"GetProperties"_s, u"GetCalls"_s, u"GetProperties"_s})
        m_ofono->fail(m_ofono->next(question), denied, u"no"_s);
    m_ofono->settle();
    QCOMPARE(m_calls->status(), Telephony::Ready);
    QCOMPARE(m_calls->modems(), QStringList(first));
    QCOMPARE(m_calls->emergencyNumbers(), QStringList());
    QCOMPARE(m_calls->count(), 0);
    m_calls->dial(u"111"_s);
    m_ofono->fail(m_ofono->next(u"Dial"_s), denied, u"no"_s);
    QVERIFY(failures.wait());
    QCOMPARE(failures.at(0).at(3).toInt(), int(Telephony::AccessDenied));
    QCOMPARE(m_log->take().size(), 3);
}

void TestCallsAttacks::toleratesPropertiesOfAnotherType_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariant>("value");

    for (const QString &name : {u"State"_s, u"LineIdentification"_s, u"Name"_s, u"StartTime"_s,
                                u"Multiparty"_s, u"RemoteHeld"_s, u"Emergency"_s, u""_s}) {
        const auto row = [&](const char *type, const QVariant &value) {
            QTest::addRow("%s as %s", qUtf8Printable(name), type) << name << value;
        };
        row("a number", 1);
        row("texts", QStringList(u"active"_s));
        row("a map", QVariantMap{{u"State"_s, u"active"_s}});
        row("a path", QVariant::fromValue(QDBusObjectPath(one)));
        row("a variant", QVariant::fromValue(QDBusVariant(u"active"_s)));
        row("objects",
            QVariant::fromValue(
                QList<FakeObject>{{QDBusObjectPath(one), FakeOfono::call(u"held"_s)}}));
    }
    QTest::newRow("an unknown state") << u"State"_s << QVariant(u"frozen"_s);
    QTest::newRow("an empty state") << u"State"_s << QVariant(QString());
}

void TestCallsAttacks::toleratesPropertiesOfAnotherType()
{
    QFETCH(QString, name);
    QFETCH(QVariant, value);

    QVariantMap odd = FakeOfono::call(u"held"_s);
    odd.insert(name, value);
    startWith({{QDBusObjectPath(one), FakeOfono::call(u"active"_s)}, {QDBusObjectPath(two), odd}});
    const int first = role(0, "callId").toInt();
    const QVariantMap before = m_calls->call(first);
    m_ofono->changeCall(one, name, value);
    m_ofono->changeCall(two, u"Name"_s, u"marker"_s);
    QTRY_COMPARE(role(1, "name").toString(), u"marker"_s);
    QCOMPARE(m_calls->call(first), before);
}

void TestCallsAttacks::toleratesSignalsOfAnotherShape()
{
    startWith({{QDBusObjectPath(one), FakeOfono::call(u"active"_s)}});
    const QString manager = u"org.ofono.VoiceCallManager"_s;
    const QString call = u"org.ofono.VoiceCall"_s;
    m_ofono->emitSignal(u"org.ofono.Manager"_s, u"ModemRemoved"_s, {first}, u"/"_s);
    m_ofono->emitSignal(u"org.ofono.Manager"_s, u"ModemAdded"_s, {1, 2}, u"/"_s);
    m_ofono->emitSignal(u"org.ofono.Modem"_s, u"PropertyChanged"_s, {u"Online"_s, false}, first);
    m_ofono->emitSignal(manager, u"CallAdded"_s, {}, first);
    m_ofono->emitSignal(manager, u"CallAdded"_s, {two, QVariantMap()}, first);
    m_ofono->emitSignal(manager, u"CallRemoved"_s, {one}, first);
    m_ofono->emitSignal(manager, u"CallRemoved"_s, {QVariant::fromValue(QDBusObjectPath(one)), 1},
                        first);
    m_ofono->emitSignal(call, u"PropertyChanged"_s, {u"State"_s, u"held"_s}, one);
    m_ofono->emitSignal(call, u"DisconnectReason"_s, {7}, one);
    m_ofono->emitSignal(u"org.ofono.SupplementaryServices"_s, u"RequestReceived"_s, {7}, first);
    m_ofono->change(first, manager, u"EmergencyNumbers"_s, 7);
    // A call of another modem, and one of a modem that there is not.
    m_ofono->emitSignal(manager, u"CallRemoved"_s, {QVariant::fromValue(QDBusObjectPath(one))},
                        u"/ril_7"_s);
    m_ofono->addCall(u"/ril_7/voicecall01"_s, FakeOfono::call(u"active"_s));
    m_ofono->addCall(one, FakeOfono::call(u"held"_s)); // It is there already.
    m_ofono->addCall(two, FakeOfono::call(u"waiting"_s));
    QTRY_COMPARE(m_calls->count(), 2);
    QCOMPARE(role(0, "callState").toString(), u"active"_s);
    QCOMPARE(role(1, "callState").toString(), u"waiting"_s);
    QCOMPARE(m_calls->modems(), QStringList(first));
    QCOMPARE(m_calls->emergencyNumbers(), QStringList());
}

void TestCallsAttacks::showsTextsSafely()
{
    QVariantMap properties = FakeOfono::call(u"incoming"_s, QString(10000, u'1'));
    properties.insert(u"Name"_s, u"\u202eknaB\nruoY"_s);
    startWith({{QDBusObjectPath(one), properties}});
    QCOMPARE(role(0, "number").toString(), QString(200, u'1'));
    QCOMPARE(role(0, "name").toString(), u"knaB ruoY"_s);
}

void TestCallsAttacks::limitsModems()
{
    const QStringList paths = manyModems(1100);
    m_ofono = std::make_unique<FakeOfono>(m_bus.address(), paths);
    m_ofono->setCalls(
        paths.at(999),
        {{QDBusObjectPath(paths.at(999) + u"/voicecall01"_s), FakeOfono::call(u"active"_s)}});
    m_calls->componentComplete();
    QTRY_COMPARE_WITH_TIMEOUT(m_calls->status(), Telephony::Ready, 60000);
    QCOMPARE(m_calls->modems(), paths.mid(0, 1000));
    QCOMPARE(m_calls->count(), 1);
}

/// Each modem is asked for its calls, its emergency numbers and its dialogue, and for nothing else
/// as long as nothing happens to it.
void TestCallsAttacks::hasAThousandModems()
{
    const QStringList paths = manyModems(1000);
    m_ofono = std::make_unique<FakeOfono>(m_bus.address(), paths);
    const auto callOf = [](const QString &modem) { return QString(modem + u"/voicecall01"_s); };
    for (int i = 0; i < 1000; i += 100)
        m_ofono->setCalls(paths.at(i),
                          {{QDBusObjectPath(callOf(paths.at(i))), FakeOfono::call(u"active"_s)}});
    const WatcherCount watchers;
    const QSignalSpy numbers(m_calls.get(), &Calls::emergencyNumbersChanged);
    const QSignalSpy ended(m_calls.get(), &CallModel::ended);
    m_calls->componentComplete();
    QTRY_COMPARE_WITH_TIMEOUT(m_calls->status(), Telephony::Ready, 60000);
    QCOMPARE(m_calls->modems(), paths);
    QCOMPARE(m_calls->emergencyNumbers(), QStringList({u"112"_s, u"911"_s}));
    QCOMPARE(numbers.count(), 1);
    QCOMPARE(m_calls->count(), 10);
    QCOMPARE(role(9, "modem").toString(), paths.at(900));
    QCOMPARE(m_ofono->answered(), 1 + 3 * 1000);

    // A call of the last modem, from its beginning to its end.
    const QSignalSpy modems(m_calls.get(), &Calls::modemsChanged);
    m_ofono->addCall(callOf(paths.at(999)), FakeOfono::call(u"incoming"_s));
    QTRY_COMPARE(m_calls->count(), 11);
    QCOMPARE(m_calls->call(m_calls->ringing()).value(u"modem"_s).toString(), paths.at(999));
    m_calls->answer(m_calls->ringing());
    const QDBusMessage answer = m_ofono->next(u"Answer"_s);
    QCOMPARE(answer.path(), callOf(paths.at(999)));
    m_ofono->reply(answer, {});
    m_ofono->endCall(callOf(paths.at(999)), u"remote"_s);
    QTRY_COMPARE(ended.count(), 1);
    m_calls->hangUpAll();
    for (int i = 0; i < 1000; i += 100) {
        const QDBusMessage hangUp = m_ofono->next(u"HangupAll"_s);
        QCOMPARE(hangUp.path(), paths.at(i));
        m_ofono->reply(hangUp, {});
    }
    m_ofono->settle();
    QCOMPARE(modems.count(), 0);
    QCOMPARE(m_ofono->answered(), 1 + 3 * 1000);

    for (const QString &path : paths)
        m_ofono->removeModem(path);
    QTRY_COMPARE(m_calls->modems(), QStringList());
    QCOMPARE(m_calls->count(), 0);
    QCOMPARE(ended.count(), 11);
    QCOMPARE(m_calls->emergencyNumbers(), QStringList());
    QCOMPARE(m_calls->status(), Telephony::Ready);
    m_ofono->settle();
    QCOMPARE(m_ofono->answered(), 1 + 3 * 1000);
    QTRY_COMPARE(watchers.value(), 0);
}

/// The work for a start is in proportion to the number of modems. If each modem were compared with
/// all others, eight times as many would take 64 times as long.
void TestCallsAttacks::growsWithTheModems()
{
    const auto work = [this](int count) {
        m_calls = std::make_unique<Calls>();
        m_ofono = std::make_unique<FakeOfono>(m_bus.address(), manyModems(count));
        const std::clock_t start = std::clock();
        m_calls->componentComplete();
        if (!waitFor([this] { return m_calls->status() == Telephony::Ready; }, 60000))
            return 0.0;
        m_ofono.reset();
        if (!waitFor([this] { return m_calls->modems().isEmpty(); }, 60000))
            return 0.0;
        return static_cast<double>(std::clock() - start);
    };
    QVERIFY(work(10) > 0); // What is done once is done.
    double few = 0;
    double many = 0;
    // The least of several times is the one that nothing else has added to.
    for (int i = 0; i < 3; ++i) {
        const double fewNow = work(125);
        const double manyNow = work(1000);
        QVERIFY(fewNow > 0 && manyNow > 0);
        few = i == 0 ? fewNow : std::min(few, fewNow);
        many = i == 0 ? manyNow : std::min(many, manyNow);
    }
    QVERIFY2(many < 12 * few, qPrintable(QString::number(many / few)));
}

void TestCallsAttacks::limitsCalls()
{
    QList<FakeObject> calls;
    for (int i = 0; i < 1100; ++i)
        calls.append({QDBusObjectPath(u"/ril_0/voicecall%1"_s.arg(i)), FakeOfono::call(u"held"_s)});
    m_ofono = std::make_unique<FakeOfono>(m_bus.address(), QStringList(first));
    m_ofono->setCalls(first, calls);
    m_calls->componentComplete();
    QTRY_COMPARE(m_calls->count(), 1000);
    m_ofono->addCall(u"/ril_0/one_more"_s, FakeOfono::call(u"held"_s));
    m_ofono->removeCall(u"/ril_0/voicecall0"_s);
    QTRY_COMPARE(m_calls->count(), 999);
}

void TestCallsAttacks::limitsCommands_data()
{
    QTest::addColumn<QByteArray>("action");

    for (const char *action : {"dial", "swap", "answer"})
        QTest::newRow(action) << QByteArray(action);
}

void TestCallsAttacks::limitsCommands()
{
    QFETCH(QByteArray, action);

    startWith({{QDBusObjectPath(one), FakeOfono::call(u"active"_s)}});
    QSignalSpy failures(m_calls.get(), &Calls::failed);
    for (int i = 0; i < 100; ++i) {
        if (action == "dial")
            m_calls->dial(u"111"_s);
        else if (action == "swap")
            m_calls->swap();
        else
            m_calls->answer(m_calls->ongoing());
    }
    QTRY_COMPARE(failures.count(), 36);
    QCOMPARE(failures.at(0).at(0).toString(), QString::fromLatin1(action));
    QCOMPARE(failures.at(0).at(3).toInt(), int(Telephony::InProgress));
    QTRY_COMPARE(m_ofono->waiting(), 64);
    m_ofono->forget();
    for (const QString &number : {u"111"_s, u"*100#"_s}) {
        m_calls->dial(number);
        QVERIFY(failures.wait());
        QCOMPARE(failures.constLast().at(2).toString(), number);
        QCOMPARE(failures.constLast().at(3).toInt(), int(Telephony::InProgress));
    }
    m_calls->dial(u"112"_s);
    QCOMPARE(m_ofono->next(u"Dial"_s).arguments().at(0).toString(), u"112"_s);
    m_calls->hangUp(m_calls->ongoing());
    QCOMPARE(m_ofono->next(u"Hangup"_s).path(), one);
    m_calls->hangUpAll();
    QCOMPARE(m_ofono->next(u"HangupAll"_s).path(), first);
    QCOMPARE(m_ofono->waiting(), 0);
}

void TestCallsAttacks::survivesItsEndInAHandler_data()
{
    QTest::addColumn<QByteArray>("signal");

    for (const char *name :
         {"statusChanged()", "modemsChanged()", "emergencyNumbersChanged()", "countChanged()",
          "ringingChanged()", "ongoingChanged()", "ended(QVariantMap)",
          "rowsInserted(QModelIndex,int,int)", "rowsRemoved(QModelIndex,int,int)",
          "dataChanged(QModelIndex,QModelIndex,QVector<int>)",
          "failed(QString,int,QString,int,QString)"})
        QTest::newRow(name) << QByteArray(name);
}

/// Ends the object when it emits the signal for the first time.
void TestCallsAttacks::survivesItsEndInAHandler()
{
    QFETCH(QByteArray, signal);

    m_ofono = std::make_unique<FakeOfono>(m_bus.address(), QStringList(first));
    m_ofono->setCalls(first,
                      {{QDBusObjectPath(one), FakeOfono::call(u"active"_s)},
                       {QDBusObjectPath(two), FakeOfono::call(u"waiting"_s)}});
    const QMetaObject *const type = m_calls->metaObject();
    const int index = type->indexOfSignal(signal.constData());
    QVERIFY(index >= 0);
    connect(m_calls.get(), type->method(index), this,
            metaObject()->method(metaObject()->indexOfMethod("endCalls()")));
    m_calls->componentComplete();
    m_calls->dial(u"nonsense"_s);
    QTRY_VERIFY(!m_calls || m_calls->count() == 2);
    m_ofono->changeCall(one, u"Name"_s, u"Grace"_s);
    m_ofono->endCall(two, u"remote"_s);
    QTRY_VERIFY(!m_calls);
}

void TestCallsAttacks::keepsItsOrderWhenAHandlerRunsAnEventLoop()
{
    startWith({});
    QStringList events;
    int depth = 0;
    const auto loop = [&] {
        ++depth;
        if (depth == 1) {
            // Everything that the stack says meanwhile arrives in this loop.
            m_ofono->settle();
            m_ofono->settle();
        }
        --depth;
    };
    connect(m_calls.get(), &CallModel::rowsAboutToBeInserted, this, [&] {
        events.append(u"about to insert"_s);
        loop();
    });
    connect(m_calls.get(), &CallModel::rowsInserted, this, [&] {
        events.append(u"inserted"_s);
        loop();
    });
    connect(m_calls.get(), &CallModel::rowsRemoved, this, [&] {
        events.append(u"removed"_s);
        loop();
    });
    m_ofono->addCall(one, FakeOfono::call(u"active"_s));
    m_ofono->addCall(two, FakeOfono::call(u"waiting"_s));
    m_ofono->removeCall(one);
    m_ofono->removeCall(two);
    QTRY_COMPARE(events.size(), 6);
    QCOMPARE(events,
             QStringList({u"about to insert"_s, u"inserted"_s, u"about to insert"_s, u"inserted"_s,
                          u"removed"_s, u"removed"_s}));
    QCOMPARE(m_calls->count(), 0);
}

void TestCallsAttacks::leavesNothingOfFinishedCalls()
{
    startWith({});
    const WatcherCount watchers;
    for (int i = 0; i < 200; ++i) {
        m_calls->dial(u"111"_s);
        m_ofono->reply(m_ofono->next(u"Dial"_s), {QVariant::fromValue(QDBusObjectPath(one))});
    }
    m_ofono->settle();
    QTRY_COMPARE(watchers.value(), 0);
}

QTEST_GUILESS_MAIN(TestCallsAttacks)

#include "tst_callsattacks.moc"
