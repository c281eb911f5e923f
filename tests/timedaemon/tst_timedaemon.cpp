// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "alarm.h"
#include "literals.h"
#include "serviceundertest.h"
#include "useralarms.h"

#include <QDBusArgument>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>
#include <QXmlStreamReader>

#include <csignal>
#include <limits>
#include <memory>
#include <utility>

#include <unistd.h>

using Triggers = TickersByCookie;

namespace {

constexpr qlonglong farAhead = 99999999999;

/// Where the daemon keeps the alarms of this user, in the folder for its state.
QString stateFile()
{
    return u"alarms/%1.json"_s.arg(getuid());
}

/// Returns the members of an interface in introspection data, sorted, each with the types of its
/// arguments.
QStringList membersOf(const QByteArray &introspection, const QString &interface)
{
    QStringList members;
    bool isInside = false;
    QXmlStreamReader xml(introspection);
    while (!xml.atEnd()) {
        if (!xml.readNextStartElement())
            continue;
        const auto attribute = [&xml](const char *name) {
            return xml.attributes().value(QLatin1String(name)).toString();
        };
        if (xml.name() == u"interface"_s)
            isInside = attribute("name") == interface;
        else if (isInside && (xml.name() == u"method"_s || xml.name() == u"signal"_s))
            members.append(xml.name() + u' ' + attribute("name"));
        else if (isInside && xml.name() == u"arg"_s)
            members.last() += u' ' + attribute("direction") + u':' + attribute("type");
    }
    members.sort();
    return xml.hasError() ? QStringList(xml.errorString()) : members;
}

/// The signal of the daemon.
Triggers triggersOf(const QDBusMessage &message)
{
    return message.signature() == u"a{ux}"_s ? qdbus_cast<Triggers>(message.arguments().at(0))
                                             : Triggers{{0, 0}};
}

} // namespace

class TestTimeDaemon : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void offersItsInterfaces();
    void offersWhatItsDescriptionsSay_data();
    void offersWhatItsDescriptionsSay();
    void servesAnotherClient();
    void tellsWhatIsStillToFire();
    void tellsNothingThatAnAnswerHasOvertaken();
    void replacesAnAlarm();
    void findsAlarmsByAttributes();
    void givesAttributes();
    void firesAtItsTime();
    void firesWhatIsPastDueAtOnce_data();
    void firesWhatIsPastDueAtOnce();
    void keepsWhatIsFarAhead();
    void firesEarlyOnDemand();
    void outlivesItsProcess_data();
    void outlivesItsProcess();
    void neverGivesACookieTwice();
    void firesAtStartWhatCameDueMeanwhile();
    void putsABrokenFileAside_data();
    void putsABrokenFileAside();
    void keepsEveryBrokenFile();
    void refusesWhatCannotBeKept();
    void refusesOtherArguments();
    void refusesHugeTexts();

private:
    QDBusMessage timed(const QString &method, const QVariantList &arguments) const;
    uint add(qlonglong ticker, const AlarmAttributes &attributes = {}) const;
    AlarmsByCookie alarms() const;

    std::unique_ptr<ServiceUnderTest> m_daemon;
    QStringList m_heard; ///< Replies, and the number of alarms in each signal, in their order.

private Q_SLOTS:
    void hear(const QDBusMessage &message)
    {
        m_heard.append(u"told of %1"_s.arg(triggersOf(message).size()));
    }
};

void TestTimeDaemon::initTestCase()
{
    registerAlarmTypes();
}

void TestTimeDaemon::init()
{
    m_daemon = std::make_unique<ServiceUnderTest>(ServiceUnderTest::Place{
        u"time-daemon"_s,
        ServiceUnderTest::Bus::System,
        u"com.nimbo.timed"_s,
        u"/com/nimbo/timed"_s,
        {u"com.nimbo.timed.alarm_triggers_changed"_s, u"com.nimbo.simulator.TimeDaemon.Fired"_s}});
    QVERIFY(m_daemon->start());
}

/// The service still runs and has logged nothing unexpected.
void TestTimeDaemon::cleanup()
{
    QVERIFY(m_daemon->isRunning());
    QCOMPARE(timed(u"cancel"_s, {4000000000U}).type(), QDBusMessage::ReplyMessage);
    QCOMPARE(m_daemon->takeLog(), QStringList());
    m_daemon.reset();
}

QDBusMessage TestTimeDaemon::timed(const QString &method, const QVariantList &arguments) const
{
    return m_daemon->call(u"com.nimbo.timed"_s, method, arguments);
}

/// Adds an alarm. Returns its cookie, or 0 if the call fails.
uint TestTimeDaemon::add(qlonglong ticker, const AlarmAttributes &attributes) const
{
    const QDBusMessage reply =
        timed(u"add_event"_s, {QVariant::fromValue(Alarm{3, ticker, attributes})});
    return reply.signature() == u"u"_s ? reply.arguments().at(0).toUInt() : 0;
}

AlarmsByCookie TestTimeDaemon::alarms() const
{
    const QDBusMessage reply = m_daemon->call(u"com.nimbo.simulator.TimeDaemon"_s, u"List"_s);
    return qdbus_cast<AlarmsByCookie>(reply.arguments().value(0));
}

void TestTimeDaemon::offersItsInterfaces()
{
    const QStringList lines = m_daemon->busctl(u"introspect"_s, {u"com.nimbo.timed"_s});
    const QStringList expected{
        u"NAME TYPE SIGNATURE RESULT/VALUE FLAGS"_s,
        u".add_event method (uxa{ss}) u -"_s,
        u".cancel method u b -"_s,
        u".get_attributes_by_cookies method au a{ua{ss}} -"_s,
        u".query method a{sv} av -"_s,
        u".replace_event method (uxa{ss})u u -"_s,
        u".alarm_triggers_changed signal a{ux} - -"_s,
    };
    QCOMPARE(lines, expected);
}

void TestTimeDaemon::offersWhatItsDescriptionsSay_data()
{
    QTest::addColumn<QString>("interface");

    for (const char *interface : {"com.nimbo.timed", "com.nimbo.parley.DueAlarms"})
        QTest::newRow(interface) << QString::fromLatin1(interface);
}

void TestTimeDaemon::offersWhatItsDescriptionsSay()
{
    QFETCH(QString, interface);

    QFile file(QStringLiteral(PARLEY_INTERFACES) + u'/' + interface + u".xml"_s);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QStringList described = membersOf(file.readAll(), interface);
    QVERIFY(!described.isEmpty());
    const QDBusMessage reply =
        m_daemon->call(u"org.freedesktop.DBus.Introspectable"_s, u"Introspect"_s);
    QCOMPARE(membersOf(reply.arguments().value(0).toString().toUtf8(), interface), described);
}

void TestTimeDaemon::servesAnotherClient()
{
    const QString interface = u"com.nimbo.timed"_s;
    QCOMPARE(m_daemon->busctl(u"call"_s,
                              {interface, u"add_event"_s, u"(uxa{ss})"_s, u"3"_s, u"99999999999"_s,
                               u"1"_s, u"TITLE"_s, u"Ada"_s}),
             QStringList(u"u 1"_s));
    QCOMPARE(
        m_daemon->busctl(u"call"_s,
                         {interface, u"query"_s, u"a{sv}"_s, u"1"_s, u"TITLE"_s, u"s"_s, u"Ada"_s}),
        QStringList(u"av 1 u 1"_s));
    QCOMPARE(m_daemon->busctl(
                 u"call"_s,
                 {interface, u"get_attributes_by_cookies"_s, u"au"_s, u"2"_s, u"1"_s, u"7"_s}),
             QStringList(u"a{ua{ss}} 1 1 1 \"TITLE\" \"Ada\""_s));
    QCOMPARE(m_daemon->busctl(u"call"_s, {interface, u"cancel"_s, u"u"_s, u"1"_s}),
             QStringList(u"b true"_s));
    QCOMPARE(m_daemon->busctl(u"call"_s, {interface, u"cancel"_s, u"u"_s, u"1"_s}),
             QStringList(u"b false"_s));
}

void TestTimeDaemon::tellsWhatIsStillToFire()
{
    const QString changed = u"alarm_triggers_changed"_s;
    QCOMPARE(add(farAhead), 1U);
    QCOMPARE(triggersOf(m_daemon->nextSignal(changed)), Triggers({{1, farAhead}}));
    QCOMPARE(add(farAhead - 1), 2U);
    QCOMPARE(triggersOf(m_daemon->nextSignal(changed)),
             Triggers({{1, farAhead}, {2, farAhead - 1}}));

    QVERIFY(timed(u"cancel"_s, {1U}).arguments().at(0).toBool());
    QCOMPARE(triggersOf(m_daemon->nextSignal(changed)), Triggers({{2, farAhead - 1}}));
    QVERIFY(!timed(u"cancel"_s, {1U}).arguments().at(0).toBool());
    QVERIFY(!timed(u"cancel"_s, {0U}).arguments().at(0).toBool());
    QVERIFY(!m_daemon->pendingSignals().contains(changed));
}

void TestTimeDaemon::tellsNothingThatAnAnswerHasOvertaken()
{
    constexpr int count = 50;
    m_heard.clear();
    QVERIFY(m_daemon->bus().connect(u"com.nimbo.timed"_s, u"/com/nimbo/timed"_s,
                                    u"com.nimbo.timed"_s, u"alarm_triggers_changed"_s, this,
                                    SLOT(hear(QDBusMessage))));
    for (int i = 0; i < count; ++i) {
        QDBusMessage call = QDBusMessage::createMethodCall(
            u"com.nimbo.timed"_s, u"/com/nimbo/timed"_s, u"com.nimbo.timed"_s, u"add_event"_s);
        call.setArguments({QVariant::fromValue(Alarm{3, farAhead, {}})});
        auto *watcher = new QDBusPendingCallWatcher(m_daemon->bus().asyncCall(call), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
            watcher->deleteLater();
            m_heard.append(u"answered"_s);
        });
    }
    QTRY_COMPARE(m_heard.size(), 2 * count);
    int answers = 0;
    for (const QString &line : std::as_const(m_heard)) {
        if (line == u"answered"_s)
            ++answers;
        else
            QVERIFY2(line.mid(8).toInt() >= answers, qUtf8Printable(m_heard.join(u'\n')));
    }
    m_daemon->bus().disconnect(u"com.nimbo.timed"_s, u"/com/nimbo/timed"_s, u"com.nimbo.timed"_s,
                               u"alarm_triggers_changed"_s, this, SLOT(hear(QDBusMessage)));
}

void TestTimeDaemon::replacesAnAlarm()
{
    const QString changed = u"alarm_triggers_changed"_s;
    const QVariant alarm = QVariant::fromValue(Alarm{3, farAhead, {}});
    QCOMPARE(add(farAhead - 1), 1U);
    m_daemon->nextSignal(changed);

    const QDBusMessage reply = timed(u"replace_event"_s, {alarm, 1U});
    QCOMPARE(reply.signature(), u"u"_s);
    QCOMPARE(reply.arguments().at(0).toUInt(), 2U);
    QCOMPARE(triggersOf(m_daemon->nextSignal(changed)), Triggers({{2, farAhead}}));

    for (const uint unknown : {1U, 0U, 77U})
        timed(u"replace_event"_s, {alarm, unknown});
    for (int i = 0; i < 2; ++i)
        m_daemon->nextSignal(changed);
    QCOMPARE(triggersOf(m_daemon->nextSignal(changed)),
             Triggers({{2, farAhead}, {3, farAhead}, {4, farAhead}, {5, farAhead}}));
    QVERIFY(!m_daemon->pendingSignals().contains(changed));
}

void TestTimeDaemon::findsAlarmsByAttributes()
{
    add(farAhead, {{u"APPLICATION"_s, u"a"_s}, {u"type"_s, u"reminder"_s}});
    add(farAhead, {{u"APPLICATION"_s, u"a"_s}});
    add(farAhead, {{u"APPLICATION"_s, u"b"_s}, {u"type"_s, u"5"_s}});
    add(farAhead);
    const auto found = [this](const QVariantMap &criteria) {
        const QDBusMessage reply = timed(u"query"_s, {criteria});
        return reply.signature() == u"av"_s ? qdbus_cast<QVariantList>(reply.arguments().at(0))
                                            : QVariantList{-1};
    };
    QCOMPARE(found({}), QVariantList({1U, 2U, 3U, 4U}));
    QCOMPARE(found({{u"APPLICATION"_s, u"a"_s}}), QVariantList({1U, 2U}));
    QCOMPARE(found({{u"APPLICATION"_s, u"a"_s}, {u"type"_s, u"reminder"_s}}), QVariantList({1U}));
    QCOMPARE(found({{u"type"_s, u"5"_s}}), QVariantList({3U}));
    QCOMPARE(found({{u"type"_s, QString()}}), QVariantList());
    QCOMPARE(found({{u"type"_s, QStringList(u"reminder"_s)}}), QVariantList());
    QCOMPARE(found({{u"type"_s, QVariantMap{{u"type"_s, u"reminder"_s}}}}), QVariantList());
    QCOMPARE(found({{u"other"_s, u"a"_s}}), QVariantList());
}

void TestTimeDaemon::givesAttributes()
{
    const AlarmAttributes attributes{{u"TITLE"_s, u"Ада \"\n\U0001F600"_s}, {QString(), QString()}};
    add(farAhead, attributes);
    add(farAhead);
    const auto given = [this](const QList<uint> &cookies) {
        const QDBusMessage reply =
            timed(u"get_attributes_by_cookies"_s, {QVariant::fromValue(cookies)});
        return reply.signature() == u"a{ua{ss}}"_s
            ? qdbus_cast<AttributesByCookie>(reply.arguments().at(0))
            : AttributesByCookie{{0, {}}};
    };
    QCOMPARE(given({}), AttributesByCookie());
    QCOMPARE(given({2, 9, 1, 1}), AttributesByCookie({{1, attributes}, {2, {}}}));
}

void TestTimeDaemon::firesAtItsTime()
{
    const qint64 due = QDateTime::currentSecsSinceEpoch() + 1;
    QCOMPARE(add(farAhead), 1U);
    QCOMPARE(add(due), 2U);
    QCOMPARE(m_daemon->nextSignal(u"Fired"_s).arguments(), QVariantList{2U});
    QVERIFY(QDateTime::currentSecsSinceEpoch() >= due);
    for (int i = 0; i < 2; ++i)
        m_daemon->nextSignal(u"alarm_triggers_changed"_s);
    QCOMPARE(triggersOf(m_daemon->nextSignal(u"alarm_triggers_changed"_s)),
             Triggers({{1, farAhead}}));
}

void TestTimeDaemon::firesWhatIsPastDueAtOnce_data()
{
    QTest::addColumn<qlonglong>("ticker");

    QTest::newRow("just now") << QDateTime::currentSecsSinceEpoch();
    QTest::newRow("epoch") << qlonglong{0};
    QTest::newRow("before it") << qlonglong{-1};
    QTest::newRow("long before it") << std::numeric_limits<qlonglong>::min();
}

void TestTimeDaemon::firesWhatIsPastDueAtOnce()
{
    QFETCH(qlonglong, ticker);

    QCOMPARE(add(ticker), 1U);
    QCOMPARE(triggersOf(m_daemon->nextSignal(u"alarm_triggers_changed"_s)),
             Triggers({{1, ticker}}));
    QCOMPARE(triggersOf(m_daemon->nextSignal(u"alarm_triggers_changed"_s)), Triggers());
    QCOMPARE(alarms(), AlarmsByCookie());
}

void TestTimeDaemon::keepsWhatIsFarAhead()
{
    const qlonglong largest = std::numeric_limits<qlonglong>::max();
    QCOMPARE(add(largest), 1U);
    QCOMPARE(add(largest / 1000), 2U);
    QCOMPARE(add(0), 3U);
    QCOMPARE(m_daemon->nextSignal(u"Fired"_s).arguments(), QVariantList{3U});
    QCOMPARE(alarms().keys(), QList<uint>({1U, 2U}));
    QVERIFY(m_daemon->end(SIGKILL));
    QVERIFY(m_daemon->start());
    QCOMPARE(alarms().value(1).ticker, largest);
}

void TestTimeDaemon::firesEarlyOnDemand()
{
    add(farAhead);
    const QString control = u"com.nimbo.simulator.TimeDaemon"_s;
    QCOMPARE(m_daemon->call(control, u"Fire"_s, {1U}).type(), QDBusMessage::ReplyMessage);
    m_daemon->nextSignal(u"alarm_triggers_changed"_s);
    QCOMPARE(triggersOf(m_daemon->nextSignal(u"alarm_triggers_changed"_s)), Triggers());
    QCOMPARE(m_daemon->call(control, u"Fire"_s, {1U}).errorMessage(), u"there is no alarm 1"_s);
}

void TestTimeDaemon::outlivesItsProcess_data()
{
    QTest::addColumn<int>("signal");

    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGKILL") << SIGKILL;
}

void TestTimeDaemon::outlivesItsProcess()
{
    QFETCH(int, signal);

    add(farAhead, {{u"TITLE"_s, u"Ада \"\n\U0001F600"_s}});
    add(farAhead + 1);
    const AlarmsByCookie before = alarms();
    QCOMPARE(before.size(), 2);
    QVERIFY(m_daemon->end(signal));
    QVERIFY(m_daemon->start());
    QCOMPARE(alarms(), before);
}

void TestTimeDaemon::neverGivesACookieTwice()
{
    QCOMPARE(add(farAhead), 1U);
    QCOMPARE(add(farAhead), 2U);
    timed(u"cancel"_s, {2U});
    QCOMPARE(add(farAhead), 3U);
    timed(u"cancel"_s, {3U});
    QVERIFY(m_daemon->end(SIGKILL));
    QVERIFY(m_daemon->start());
    QCOMPARE(add(farAhead), 4U);
}

void TestTimeDaemon::firesAtStartWhatCameDueMeanwhile()
{
    QVERIFY(m_daemon->end(SIGTERM));
    QVERIFY(m_daemon->writeState(stateFile(),
                                 R"({"lastCookie": 7, "alarms": [
        {"cookie": 3, "flags": 3, "ticker": "5", "attributes": {}},
        {"cookie": 5, "flags": 3, "ticker": "99999999999", "attributes": {}},
        {"cookie": 6, "flags": 3, "ticker": "1500000000", "attributes": {}}], "due": []})"));
    QVERIFY(m_daemon->start());
    QCOMPARE(m_daemon->nextSignal(u"Fired"_s).arguments(), QVariantList{3U});
    QCOMPARE(m_daemon->nextSignal(u"Fired"_s).arguments(), QVariantList{6U});
    m_daemon->nextSignal(u"alarm_triggers_changed"_s);
    QCOMPARE(triggersOf(m_daemon->nextSignal(u"alarm_triggers_changed"_s)),
             Triggers({{5, farAhead}}));
    QCOMPARE(add(farAhead), 8U);
}

void TestTimeDaemon::putsABrokenFileAside_data()
{
    QTest::addColumn<QByteArray>("content");

    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no JSON") << QByteArray("\x00\xff{", 3);
    QTest::newRow("cut off") << QByteArray(R"({"lastCookie": 7, "alarms": [{"cookie")");
    QTest::newRow("a list") << QByteArray("[]");
    QTest::newRow("no alarms") << QByteArray(R"({"lastCookie": 7, "due": []})");
    QTest::newRow("no due alarms") << QByteArray(R"({"lastCookie": 7, "alarms": []})");
    QTest::newRow("no last cookie") << QByteArray(R"({"alarms": [], "due": []})");
    QTest::newRow("last cookie too large")
        << QByteArray(R"({"lastCookie": 4294967296, "alarms": [], "due": []})");
    QTest::newRow("a cookie of two alarms") << QByteArray(R"({"lastCookie": 7,
            "alarms": [{"cookie": 1, "flags": 3, "ticker": "5", "attributes": {}}],
            "due": [{"cookie": 1, "flags": 3, "ticker": "5", "attributes": {}}]})");
    const QByteArray alarm = R"({"lastCookie": 7, "alarms": [%], "due": []})";
    for (const char *broken :
         {"5", "{}", R"({"cookie": 0, "flags": 3, "ticker": "5", "attributes": {}})",
          R"({"cookie": 1.5, "flags": 3, "ticker": "5", "attributes": {}})",
          R"({"cookie": 1, "flags": -3, "ticker": "5", "attributes": {}})",
          R"({"cookie": 1, "flags": 3, "ticker": "soon", "attributes": {}})",
          R"({"cookie": 1, "flags": 3, "ticker": "5"})",
          R"({"cookie": 1, "flags": 3, "ticker": "5", "attributes": {"TITLE": 5}})",
          R"({"cookie": 1, "flags": 3, "ticker": "5", "attributes": {}}, {"cookie": 1})"})
        QTest::newRow(broken) << QByteArray(alarm).replace('%', broken);
}

void TestTimeDaemon::putsABrokenFileAside()
{
    QFETCH(QByteArray, content);

    QVERIFY(m_daemon->end(SIGTERM));
    QVERIFY(m_daemon->writeState(stateFile(), content));
    QVERIFY(m_daemon->start());
    QVERIFY(m_daemon->logs(u"The alarms cannot be read from "_s));
    QCOMPARE(alarms(), AlarmsByCookie());
    QFile aside(m_daemon->stateFolder() + u'/' + stateFile() + u".broken"_s);
    QVERIFY(aside.open(QIODevice::ReadOnly));
    QCOMPARE(aside.readAll(), content);
    QCOMPARE(add(farAhead), 1U);
}

void TestTimeDaemon::keepsEveryBrokenFile()
{
    for (int i = 0; i < 3; ++i) {
        QVERIFY(m_daemon->end(SIGTERM));
        QVERIFY(m_daemon->writeState(stateFile(), QByteArray::number(i)));
        QVERIFY(m_daemon->start());
        QVERIFY(m_daemon->logs(u"The alarms cannot be read from "_s));
    }
    const QString name = QFileInfo(stateFile()).fileName();
    QCOMPARE(
        QDir(QFileInfo(m_daemon->stateFolder() + u'/' + stateFile()).path()).entryList(QDir::Files),
        QStringList({name + u".broken"_s, name + u".broken-2"_s, name + u".broken-3"_s}));
}

void TestTimeDaemon::refusesWhatCannotBeKept()
{
    add(farAhead);
    const QString folder = m_daemon->stateFolder() + u"/alarms"_s;
    QVERIFY(QDir().rename(folder, folder + u"-away"_s));
    QFile inTheWay(folder);
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    const QVariant alarm = QVariant::fromValue(Alarm{3, farAhead, {}});
    for (const QDBusMessage &reply :
         {timed(u"add_event"_s, {alarm}), timed(u"replace_event"_s, {alarm, 1U}),
          timed(u"cancel"_s, {1U})}) {
        QCOMPARE(reply.errorName(), u"org.freedesktop.DBus.Error.IOError"_s);
        QVERIFY2(reply.errorMessage().startsWith(u"the alarms cannot be kept: "_s),
                 qUtf8Printable(reply.errorMessage()));
    }
    QCOMPARE(alarms().keys(), QList<uint>{1U});

    QVERIFY(inTheWay.remove());
    QVERIFY(QDir().rename(folder + u"-away"_s, folder));
    QCOMPARE(add(farAhead), 2U);
}

/// Each method is called with arguments of every wrong type, and has an error for each.
void TestTimeDaemon::refusesOtherArguments()
{
    const QString control = u"com.nimbo.simulator.TimeDaemon"_s;
    const QString due = u"com.nimbo.parley.DueAlarms"_s;
    const QVariant alarm = QVariant::fromValue(Alarm{3, farAhead, {}});
    const QVariant cookies = QVariant::fromValue(QList<uint>{1});
    const QVector<QVariantList> every{{},
                                      {1U},
                                      {1},
                                      {-1LL},
                                      {true},
                                      {0.5},
                                      {QString()},
                                      {QStringList()},
                                      {QByteArray("x")},
                                      {QVariantMap()},
                                      {QVariantList{1U}},
                                      {cookies},
                                      {alarm},
                                      {alarm, 1U},
                                      {alarm, 1},
                                      {1U, alarm},
                                      {QVariant::fromValue(QDBusVariant(1U))},
                                      {QVariant::fromValue(AlarmAttributes())}};
    add(farAhead);
    const AlarmsByCookie before = alarms();
    const struct
    {
        QString interface;
        QString method;
        QVariantList right;
    } methods[]{{u"com.nimbo.timed"_s, u"add_event"_s, {alarm}},
                {u"com.nimbo.timed"_s, u"replace_event"_s, {alarm, 1U}},
                {u"com.nimbo.timed"_s, u"cancel"_s, {1U}},
                {u"com.nimbo.timed"_s, u"query"_s, {QVariantMap()}},
                {u"com.nimbo.timed"_s, u"get_attributes_by_cookies"_s, {cookies}},
                {due, u"List"_s, {}},
                {due, u"Get"_s, {1U}},
                {due, u"Dismiss"_s, {1U}},
                {control, u"List"_s, {}},
                {control, u"Fire"_s, {1U}}};
    for (const auto &[interface, method, right] : methods) {
        const auto types = [](const QVariantList &values) {
            QStringList names;
            for (const QVariant &value : values)
                names.append(QString::fromLatin1(value.typeName()));
            return names;
        };
        for (const QVariantList &wrong : every) {
            if (types(wrong) == types(right))
                continue;
            const QDBusMessage reply = m_daemon->call(interface, method, wrong);
            QVERIFY2(reply.type() == QDBusMessage::ErrorMessage
                         && reply.errorName() == u"org.freedesktop.DBus.Error.UnknownMethod"_s,
                     qPrintable(method + u' ' + types(wrong).join(u", "_s) + u": "_s
                                + reply.errorName()));
        }
    }
    QCOMPARE(alarms(), before);
}

void TestTimeDaemon::refusesHugeTexts()
{
    for (const int size : {UserAlarms::maxAlarmSize + 1, 30'000'000}) {
        const AlarmAttributes attributes{{QString(), QString(size, u'x')}};
        const QDBusMessage reply =
            timed(u"add_event"_s, {QVariant::fromValue(Alarm{3, farAhead, attributes})});
        QCOMPARE(reply.errorName(), u"org.freedesktop.DBus.Error.LimitsExceeded"_s);
    }
    const QVariantMap criteria{{u"TITLE"_s, QString(30'000'000, u'x')}};
    const QDBusMessage reply = timed(u"query"_s, {criteria});
    QVERIFY(qdbus_cast<QVariantList>(reply.arguments().value(0)).isEmpty());
    QCOMPARE(alarms(), AlarmsByCookie());
}

QTEST_GUILESS_MAIN(TestTimeDaemon)

#include "tst_timedaemon.moc"
