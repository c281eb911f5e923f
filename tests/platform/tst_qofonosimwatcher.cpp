// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "literals.h"
#include "messagelog.h"
#include "privatebus.h"
#include "scriptedservice.h"
#include "watchercount.h"

#include <qofonosimwatcher.h>

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <utility>

namespace {

struct Modem
{
    QDBusObjectPath path;
    QVariantMap properties;
};

const QString ofono = u"org.ofono"_s;
const QString managerInterface = u"org.ofono.Manager"_s;
const QString modemInterface = u"org.ofono.Modem"_s;
const QString simManagerInterface = u"org.ofono.SimManager"_s;
const QString propertyChanged = u"PropertyChanged"_s;
const QString first = u"/ril_0"_s;
const QString second = u"/ril_1"_s;
const QString one = u"262011111111111"_s;
const QString other = u"262022222222222"_s;

QDBusArgument &operator<<(QDBusArgument &argument, const Modem &modem)
{
    argument.beginStructure();
    argument << modem.path << modem.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, Modem &modem)
{
    argument.beginStructure();
    argument >> modem.path >> modem.properties;
    argument.endStructure();
    return argument;
}

QVariantMap interfaces(bool withSim = true)
{
    QStringList names{u"org.ofono.VoiceCallManager"_s};
    if (withSim)
        names.append(simManagerInterface);
    return {{u"Online"_s, true}, {u"Interfaces"_s, names}};
}

QVariantMap sim(const QString &identity)
{
    return {{u"Present"_s, true}, {u"SubscriberIdentity"_s, identity}};
}

const QVariantMap locked{{u"Present"_s, true}, {u"PinRequired"_s, u"pin"_s}};
const QVariantMap absent{{u"Present"_s, false}};

} // namespace

Q_DECLARE_METATYPE(Modem)
Q_DECLARE_METATYPE(QList<Modem>)

/// The SIM watcher, with an oFono that is scripted message by message.
class TestQOfonoSimWatcher : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void isInvalidWithoutOfono();
    void isValidWithoutAModem();
    void asksForTheSimOfEachModem();
    void waitsForEverySim();
    void isValidWhenTheLastUnknownSimGoes();
    void asksOnlyModemsThatHaveASim();
    void listsSimsInTheOrderOfTheirModems();
    void listsWhatIsRequired();
    void followsPresence();
    void readsTheNextSimAnew();
    void followsTheIdentity();
    void followsTheInterfaces();
    void followsModems();
    void staysValidWhenAModemComes();
    void emitsOnlyWhatChanges();
    void ignoresWhatItDoesNotKnow();
    void dropsAnAnswerOfAModemThatHasGone();
    void dropsAnAnswerOfAServiceThatHasGone();
    void followsTheService();
    void followsTheServiceToAnotherOwner();
    void takesAnErrorForNoSim();
    void toleratesAnswersOfAnotherShape_data();
    void toleratesAnswersOfAnotherShape();
    void toleratesASimOfAnotherShape_data();
    void toleratesASimOfAnotherShape();
    void survivesAHandlerThatEndsIt();
    void dropsAnswersOnceItHasGone();
    void asksAboutSomeSimsAtATime();
    void leavesNothingOfFinishedCalls();

private:
    void start();
    void startWith(const QVector<std::pair<QString, QVariantMap>> &sims);
    void answerModems(const QStringList &paths);
    QDBusMessage askedFor(const QString &path);
    void changeSim(const QString &path, const QString &name, const QVariant &value);
    void changeModem(const QString &path, const QVariantMap &properties);
    void addModem(const QString &path, const QVariantMap &properties);
    /// Waits until everything under way has arrived. Returns the signals emitted since the last
    /// call.
    QStringList settled();
    QStringList identities() const;

    QTemporaryDir m_folder;
    PrivateBus m_bus;
    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<ScriptedService> m_service;
    std::unique_ptr<QOfonoSimWatcher> m_watcher;
    QStringList m_events;
};

void TestQOfonoSimWatcher::initTestCase()
{
    QVERIFY(m_bus.start(m_folder.path(), u"system"_s));
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address().toUtf8());
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().toUtf8());
    qDBusRegisterMetaType<Modem>();
    qDBusRegisterMetaType<QList<Modem>>();
}

void TestQOfonoSimWatcher::init()
{
    m_log.reset();
    m_log = std::make_unique<MessageLog>();
    m_service = std::make_unique<ScriptedService>(m_bus.address(), ofono, u"/"_s);
    m_events.clear();
}

void TestQOfonoSimWatcher::cleanup()
{
    QCOMPARE(settled(), QStringList());
    m_watcher.reset();
    if (m_service)
        QCOMPARE(m_service->waiting(), 0);
    m_service.reset();
    QCOMPARE(m_log->take().join(u'\n'), QString());
}

void TestQOfonoSimWatcher::start()
{
    m_watcher = std::make_unique<QOfonoSimWatcher>();
    m_watcher->setRequireSubscriberIdentity(true);
    connect(m_watcher.get(), &QOfonoSimWatcher::validChanged, this,
            [this] { m_events.append(m_watcher->isValid() ? u"valid"_s : u"invalid"_s); });
    connect(m_watcher.get(), &QOfonoSimWatcher::presentSimListChanged, this,
            [this] { m_events.append(u"sims: "_s + identities().join(u' ')); });
}

/// Adds a modem for each of the SIMs.
void TestQOfonoSimWatcher::startWith(const QVector<std::pair<QString, QVariantMap>> &sims)
{
    start();
    QStringList paths;
    for (const auto &[path, properties] : sims)
        paths.append(path);
    answerModems(paths);
    for (const auto &[path, properties] : sims)
        m_service->reply(askedFor(path), {properties});
    settled();
    QVERIFY(m_watcher->isValid());
}

void TestQOfonoSimWatcher::answerModems(const QStringList &paths)
{
    const QDBusMessage call = m_service->next(u"GetModems"_s);
    QCOMPARE(call.path(), u"/"_s);
    QCOMPARE(call.interface(), managerInterface);
    QList<Modem> modems;
    for (const QString &path : paths)
        modems.append({QDBusObjectPath(path), interfaces()});
    m_service->reply(call, {QVariant::fromValue(modems)});
}

QDBusMessage TestQOfonoSimWatcher::askedFor(const QString &path)
{
    const QDBusMessage call = m_service->next(u"GetProperties"_s);
    if (call.path() != path || call.interface() != simManagerInterface)
        qWarning() << "not the call that was expected:" << call;
    return call;
}

void TestQOfonoSimWatcher::changeSim(const QString &path, const QString &name,
                                     const QVariant &value)
{
    m_service->emitSignal(simManagerInterface, propertyChanged,
                          {name, QVariant::fromValue(QDBusVariant(value))}, path);
}

void TestQOfonoSimWatcher::changeModem(const QString &path, const QVariantMap &properties)
{
    for (auto it = properties.cbegin(); it != properties.cend(); ++it)
        m_service->emitSignal(modemInterface, propertyChanged,
                              {it.key(), QVariant::fromValue(QDBusVariant(*it))}, path);
}

void TestQOfonoSimWatcher::addModem(const QString &path, const QVariantMap &properties)
{
    m_service->emitSignal(managerInterface, u"ModemAdded"_s,
                          {QVariant::fromValue(QDBusObjectPath(path)), properties});
}

QStringList TestQOfonoSimWatcher::settled()
{
    if (m_service)
        m_service->settle();
    return std::exchange(m_events, {});
}

QStringList TestQOfonoSimWatcher::identities() const
{
    QStringList all;
    const auto sims = m_watcher->presentSimList();
    for (const auto &one : sims)
        all.append(one->subscriberIdentity());
    return all.size() == m_watcher->presentSimCount() ? all : QStringList(u"miscounted"_s);
}

void TestQOfonoSimWatcher::isInvalidWithoutOfono()
{
    m_service.reset();
    start();
    QVERIFY(!m_watcher->isValid());
    m_service = std::make_unique<ScriptedService>(m_bus.address(), ofono, u"/"_s);
    answerModems({});
    QCOMPARE(settled(), QStringList(u"valid"_s));
}

void TestQOfonoSimWatcher::isValidWithoutAModem()
{
    start();
    QCOMPARE(settled(), QStringList());
    QVERIFY(!m_watcher->isValid());
    answerModems({});
    QCOMPARE(settled(), QStringList(u"valid"_s));
    QCOMPARE(m_watcher->presentSimCount(), 0);
}

void TestQOfonoSimWatcher::asksForTheSimOfEachModem()
{
    start();
    answerModems({first, second});
    m_service->reply(askedFor(first), {sim(one)});
    m_service->reply(askedFor(second), {sim(other)});
    QStringList events = settled();
    QCOMPARE(events.takeLast(), u"sims: %1 %2"_s.arg(one, other));
    QVERIFY(events.contains(u"valid"_s));
    QCOMPARE(m_watcher->presentSimCount(), 2);
}

void TestQOfonoSimWatcher::waitsForEverySim()
{
    start();
    answerModems({first, second});
    const QDBusMessage call = askedFor(first);
    m_service->reply(askedFor(second), {absent});
    QCOMPARE(settled(), QStringList());
    QVERIFY(!m_watcher->isValid());
    m_service->reply(call, {sim(one)});
    QCOMPARE(settled(), QStringList({u"valid"_s, u"sims: "_s + one}));
}

void TestQOfonoSimWatcher::isValidWhenTheLastUnknownSimGoes()
{
    start();
    answerModems({first, second});
    m_service->reply(askedFor(first), {sim(one)});
    const QDBusMessage call = askedFor(second);
    QCOMPARE(settled(), QStringList(u"sims: "_s + one));
    m_service->emitSignal(managerInterface, u"ModemRemoved"_s,
                          {QVariant::fromValue(QDBusObjectPath(second))});
    QCOMPARE(settled(), QStringList(u"valid"_s));
    m_service->reply(call, {sim(other)});
}

void TestQOfonoSimWatcher::asksOnlyModemsThatHaveASim()
{
    start();
    const QList<Modem> modems{{QDBusObjectPath(first), interfaces(false)},
                              {QDBusObjectPath(second), {}}};
    m_service->reply(m_service->next(u"GetModems"_s), {QVariant::fromValue(modems)});
    QCOMPARE(settled(), QStringList(u"valid"_s));
}

void TestQOfonoSimWatcher::listsSimsInTheOrderOfTheirModems()
{
    startWith({{second, sim(other)}, {first, sim(one)}});
    QCOMPARE(identities(), QStringList({one, other}));
}

void TestQOfonoSimWatcher::listsWhatIsRequired()
{
    startWith({{first, locked}, {second, sim(other)}});
    QCOMPARE(identities(), QStringList(other));
    m_watcher->setRequireSubscriberIdentity(false);
    QCOMPARE(identities(), QStringList({QString(), other}));
    m_watcher->setRequireSubscriberIdentity(true);
    QCOMPARE(settled(), QStringList({u"sims:  "_s + other, u"sims: "_s + other}));
}

void TestQOfonoSimWatcher::followsPresence()
{
    startWith({{first, sim(one)}, {second, sim(other)}});
    changeSim(first, u"Present"_s, false);
    QCOMPARE(settled(), QStringList(u"sims: "_s + other));
    changeSim(second, u"Present"_s, false);
    QCOMPARE(settled(), QStringList(u"sims: "_s));
}

/// The identity of the SIM comes after the SIM, or was there before.
void TestQOfonoSimWatcher::readsTheNextSimAnew()
{
    startWith({{first, sim(one)}});
    changeSim(first, u"Present"_s, false);
    changeSim(first, u"Present"_s, true);
    m_service->reply(askedFor(first), {locked});
    QCOMPARE(settled(), QStringList(u"sims: "_s)); // The list never has the previous SIM.
    changeSim(first, u"SubscriberIdentity"_s, other);
    QCOMPARE(settled(), QStringList(u"sims: "_s + other));

    changeSim(first, u"Present"_s, false);
    changeSim(first, u"Present"_s, true);
    m_service->reply(askedFor(first), {sim(one)});
    QCOMPARE(settled(), QStringList({u"sims: "_s, u"sims: "_s + one}));
    changeSim(first, u"Present"_s, true);
    QCOMPARE(settled(), QStringList());
}

void TestQOfonoSimWatcher::followsTheIdentity()
{
    startWith({{first, locked}});
    QCOMPARE(identities(), QStringList());
    changeSim(first, u"SubscriberIdentity"_s, one);
    QCOMPARE(settled(), QStringList(u"sims: "_s + one));
    changeSim(first, u"SubscriberIdentity"_s, other);
    QCOMPARE(settled(), QStringList(u"sims: "_s + other));
    changeSim(first, u"SubscriberIdentity"_s, QString());
    QCOMPARE(settled(), QStringList(u"sims: "_s));
}

void TestQOfonoSimWatcher::followsTheInterfaces()
{
    startWith({{first, sim(one)}});
    changeModem(first, interfaces(false));
    QCOMPARE(settled(), QStringList(u"sims: "_s));
    changeModem(first, interfaces());
    m_service->reply(askedFor(first), {sim(one)});
    QCOMPARE(settled(), QStringList(u"sims: "_s + one));
    changeModem(first, interfaces());
    changeModem(first, {{u"Online"_s, false}, {u"Features"_s, QStringList()}});
    QCOMPARE(settled(), QStringList());
}

void TestQOfonoSimWatcher::followsModems()
{
    startWith({{second, sim(other)}});
    addModem(first, interfaces());
    m_service->reply(askedFor(first), {sim(one)});
    QCOMPARE(settled(), QStringList(u"sims: %1 %2"_s.arg(one, other)));
    addModem(u"/none"_s, interfaces(false));
    QCOMPARE(settled(), QStringList());
    m_service->emitSignal(managerInterface, u"ModemRemoved"_s,
                          {QVariant::fromValue(QDBusObjectPath(second))});
    QCOMPARE(settled(), QStringList(u"sims: "_s + one));
    changeSim(second, u"SubscriberIdentity"_s, one); // The modem has gone.
    QCOMPARE(settled(), QStringList());
}

void TestQOfonoSimWatcher::staysValidWhenAModemComes()
{
    startWith({{first, sim(one)}});
    addModem(second, interfaces());
    const QDBusMessage call = askedFor(second);
    QCOMPARE(settled(), QStringList());
    QVERIFY(m_watcher->isValid());
    m_service->reply(call, {sim(other)});
    QCOMPARE(settled(), QStringList(u"sims: %1 %2"_s.arg(one, other)));
}

void TestQOfonoSimWatcher::emitsOnlyWhatChanges()
{
    startWith({{first, sim(one)}, {second, absent}});
    changeSim(first, u"SubscriberIdentity"_s, one);
    changeSim(first, u"Present"_s, true);
    changeSim(first, u"PinRequired"_s, u"none"_s);
    changeSim(second, u"Present"_s, false);
    changeSim(second, u"SubscriberIdentity"_s, other); // The SIM is not present.
    addModem(first, interfaces());
    m_watcher->setRequireSubscriberIdentity(false);
    QCOMPARE(settled(), QStringList());
}

void TestQOfonoSimWatcher::ignoresWhatItDoesNotKnow()
{
    start();
    // The changes come before the answers, which have them as well.
    addModem(first, interfaces());
    changeSim(first, u"Present"_s, true);
    changeModem(first, interfaces());
    QCOMPARE(settled(), QStringList());
    answerModems({first});
    const QDBusMessage call = askedFor(first);
    changeSim(first, u"SubscriberIdentity"_s, other);
    QCOMPARE(settled(), QStringList());
    m_service->reply(call, {sim(one)});
    QCOMPARE(settled(), QStringList({u"valid"_s, u"sims: "_s + one}));

    // These signals have other signatures.
    m_service->emitSignal(managerInterface, u"ModemAdded"_s, {u"text"_s});
    m_service->emitSignal(managerInterface, u"ModemRemoved"_s, {first});
    m_service->emitSignal(modemInterface, propertyChanged, {}, first);
    m_service->emitSignal(modemInterface, propertyChanged, {u"Interfaces"_s, 1}, first);
    m_service->emitSignal(simManagerInterface, propertyChanged, {u"Present"_s, false}, first);
    m_service->emitSignal(simManagerInterface, propertyChanged, {}, first);
    m_service->emitSignal(u"com.example.Other"_s, propertyChanged,
                          {u"Present"_s, QVariant::fromValue(QDBusVariant(false))}, first);
    QCOMPARE(settled(), QStringList());
}

void TestQOfonoSimWatcher::dropsAnAnswerOfAModemThatHasGone()
{
    startWith({{first, sim(one)}});
    addModem(second, interfaces());
    const QDBusMessage call = askedFor(second);
    m_service->emitSignal(managerInterface, u"ModemRemoved"_s,
                          {QVariant::fromValue(QDBusObjectPath(second))});
    addModem(second, interfaces());
    const QDBusMessage again = askedFor(second);
    m_service->reply(call, {sim(u"stale"_s)});
    QCOMPARE(settled(), QStringList());
    m_service->reply(again, {sim(other)});
    QCOMPARE(settled(), QStringList(u"sims: %1 %2"_s.arg(one, other)));
}

void TestQOfonoSimWatcher::dropsAnAnswerOfAServiceThatHasGone()
{
    start();
    m_service->next(u"GetModems"_s);
    m_service.reset();
    m_service = std::make_unique<ScriptedService>(m_bus.address(), ofono, u"/"_s);
    answerModems({});
    QCOMPARE(settled(), QStringList(u"valid"_s));
}

void TestQOfonoSimWatcher::followsTheService()
{
    startWith({{first, sim(one)}});
    m_service.reset();
    QTRY_VERIFY(!m_watcher->isValid());
    QCOMPARE(settled(), QStringList({u"invalid"_s, u"sims: "_s}));
    m_service = std::make_unique<ScriptedService>(m_bus.address(), ofono, u"/"_s);
    answerModems({first});
    m_service->reply(askedFor(first), {sim(one)});
    QCOMPARE(settled(), QStringList({u"valid"_s, u"sims: "_s + one}));
    changeSim(first, u"SubscriberIdentity"_s, other);
    QCOMPARE(settled(), QStringList(u"sims: "_s + other));
}

void TestQOfonoSimWatcher::followsTheServiceToAnotherOwner()
{
    startWith({{first, sim(one)}});
    const QString name = u"another owner"_s;
    QDBusConnection another = QDBusConnection::connectToBus(m_bus.address(), name);
    // It waits in the queue for the name, and gets it at once when the first owner releases it.
    another.interface()->registerService(ofono, QDBusConnectionInterface::QueueService);
    m_service.reset();
    QTRY_COMPARE(m_events.size(), 2);
    QCOMPARE(std::exchange(m_events, {}), QStringList({u"invalid"_s, u"sims: "_s}));
    // It is asked, and has no modems.
    QStringList lines;
    QTRY_COMPARE((lines += m_log->take()).size(), 1);
    QVERIFY(
        lines.at(0).startsWith(u"warning: Could not ask oFono for \"GetModems\" QDBusError("_s));
    QDBusConnection::disconnectFromBus(name);
    QVERIFY(!m_watcher->isValid());
}

void TestQOfonoSimWatcher::takesAnErrorForNoSim()
{
    start();
    answerModems({first, second});
    m_service->fail(askedFor(first), u"org.ofono.Error.Failed"_s, u"no SIM today"_s);
    m_service->reply(askedFor(second), {sim(other)});
    QCOMPARE(settled(), QStringList({u"valid"_s, u"sims: "_s + other}));
    QCOMPARE(m_log->take(),
             QStringList(u"warning: Could not ask oFono for \"GetProperties\" "
                         "QDBusError(\"org.ofono.Error.Failed\", \"no SIM today\")"_s));
}

void TestQOfonoSimWatcher::toleratesAnswersOfAnotherShape_data()
{
    QTest::addColumn<QVariantList>("values");
    QTest::addColumn<QString>("signature");

    QTest::newRow("nothing") << QVariantList() << QString();
    QTest::newRow("a text") << QVariantList{u"text"_s} << u"s"_s;
    QTest::newRow("a map") << QVariantList{QVariantMap{{u"a"_s, 1}}} << u"a{sv}"_s;
    QTest::newRow("texts") << QVariantList{QStringList{first}} << u"as"_s;
}

void TestQOfonoSimWatcher::toleratesAnswersOfAnotherShape()
{
    QFETCH(QVariantList, values);
    QFETCH(QString, signature);

    start();
    m_service->reply(m_service->next(u"GetModems"_s), values);
    QCOMPARE(settled(), QStringList());
    QVERIFY(!m_watcher->isValid());
    QCOMPARE(
        m_log->take(),
        QStringList(u"warning: oFono has answered \"GetModems\" with \"%1\""_s.arg(signature)));
}

void TestQOfonoSimWatcher::toleratesASimOfAnotherShape_data()
{
    QTest::addColumn<QVariantMap>("properties");

    const QVariant list = QStringList{one};
    QTest::newRow("nothing") << QVariantMap();
    QTest::newRow("no presence") << QVariantMap{{u"SubscriberIdentity"_s, one}};
    QTest::newRow("a list for a presence")
        << QVariantMap{{u"Present"_s, list}, {u"SubscriberIdentity"_s, one}};
    QTest::newRow("a map for an identity")
        << QVariantMap{{u"Present"_s, true}, {u"SubscriberIdentity"_s, QVariantMap{{one, 1}}}};
}

void TestQOfonoSimWatcher::toleratesASimOfAnotherShape()
{
    QFETCH(QVariantMap, properties);

    start();
    answerModems({first});
    m_service->reply(askedFor(first), {properties});
    QCOMPARE(settled(), QStringList(u"valid"_s));
    QCOMPARE(m_watcher->presentSimCount(), 0);
}

void TestQOfonoSimWatcher::survivesAHandlerThatEndsIt()
{
    start();
    connect(m_watcher.get(), &QOfonoSimWatcher::validChanged, this, [this] { m_watcher.reset(); });
    answerModems({first});
    m_service->reply(askedFor(first), {sim(one)});
    QTRY_VERIFY(!m_watcher);
    QCOMPARE(settled(), QStringList(u"valid"_s));
}

void TestQOfonoSimWatcher::dropsAnswersOnceItHasGone()
{
    start();
    const QDBusMessage call = m_service->next(u"GetModems"_s);
    m_watcher.reset();
    m_service->reply(call, {QVariant::fromValue(QList<Modem>())});
    QCOMPARE(settled(), QStringList());
}

void TestQOfonoSimWatcher::asksAboutSomeSimsAtATime()
{
    start();
    QStringList paths;
    for (int i = 0; i < 300; ++i)
        paths.append(u"/modem_%1"_s.arg(i, 3, 10, QLatin1Char('0')));
    answerModems(paths);
    m_service->settle();
    for (const QString &path : std::as_const(paths)) {
        QVERIFY(!m_watcher->isValid());
        QVERIFY(m_service->waiting() <= 64);
        m_service->reply(askedFor(path), {sim(path)});
    }
    QStringList events = settled();
    QCOMPARE(events.count(u"valid"_s), 1);
    QVERIFY(m_watcher->isValid());
    QCOMPARE(identities(), paths);
}

void TestQOfonoSimWatcher::leavesNothingOfFinishedCalls()
{
    startWith({{first, sim(one)}});
    const WatcherCount watchers;
    for (int i = 0; i < 1000; ++i) {
        changeSim(first, u"Present"_s, false);
        changeSim(first, u"Present"_s, true);
        m_service->reply(askedFor(first), {sim(one)});
    }
    settled();
    QCOMPARE(identities(), QStringList(one));
    QTRY_COMPARE(watchers.value(), 0);
}

QTEST_GUILESS_MAIN(TestQOfonoSimWatcher)

#include "tst_qofonosimwatcher.moc"
