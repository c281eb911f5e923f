// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "bussignature.h"
#include "fakeplatform.h"
#include "literals.h"
#include "messagelog.h"
#include "privatebus.h"
#include "qt5and6.h"
#include "scriptedservice.h"
#include "simfiltershelper.h"
#include "watchercount.h"

#include <qofonosimwatcher.h>

#include <QDBusConnection>
#include <QDBusInterface>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QMetaEnum>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QSequentialIterable>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

#include <dlfcn.h>

using Rule = SimFiltersHelper::Rule;
using RuleList = SimFiltersHelper::RuleList;

Q_DECLARE_METATYPE(QList<RuleList>)

namespace {

const QString filters = u"/mdm/parleyfilter"_s;
const QString dial = filters + u"/dial"_s;
const QString incoming = filters + u"/incoming"_s;
const QString interface = u"org.cobalt.ofono.mdm.ParleyFilter"_s;
const QString unableToConnect = u"debug: SimFiltersHelper::SimFiltersHelper(QObject*) "
                                "Unable to connect to voice call filter interfaces!"_s;
const QString one = u"262011111111111"_s;
const QString other = u"262022222222222"_s;

constexpr uint block = SimFiltersHelper::Block;
constexpr uint allow = SimFiltersHelper::Allow;
constexpr uint hangup = SimFiltersHelper::Hangup;

/// The number of the subscription that fails, from 1; -1 for all, 0 for none.
int failingSubscription = 0;
int subscriptions = 0;

} // namespace

using Connect = bool (*)(void *, const QString &, const QString &, const QString &, const QString &,
                         QObject *, const char *);

// Replaces QDBusConnection::connect() under its linker name. No seam can do it: on a working
// connection the function has no way to fail for one signal alone.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
extern "C" bool _ZN15QDBusConnection7connectERK7QStringS2_S2_S2_P7QObjectPKc(
    void *self, const QString &service, const QString &path, const QString &connectedInterface,
    const QString &name, QObject *receiver, const char *slot)
{
    ++subscriptions;
    if (failingSubscription == -1 || failingSubscription == subscriptions)
        return false;
    const auto connect = reinterpret_cast<Connect>(
        dlsym(RTLD_NEXT, "_ZN15QDBusConnection7connectERK7QStringS2_S2_S2_P7QObjectPKc"));
    return connect(self, service, path, connectedInterface, name, receiver, slot);
}

/// The filters, with scripted rules and with SIMs that a test sets.
class TestSimFiltersHelper : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void declaresWhatQmlUses();
    void registersItsTypes();
    void carriesRules_data();
    void carriesRules();

    void startsInOrder();
    void staysAloofWithoutFilters();
    void readsRulesWithoutFiltersAtItsStart();
    void takesAValidWatcherForNoSimAtItsStart();
    void subscribesInOrder();
    void reportsFailedSubscriptions_data();
    void reportsFailedSubscriptions();

    void isReadyWithoutASim();
    void isReadyWithBothAnswers_data();
    void isReadyWithBothAnswers();
    void isReadyOnce();
    void evaluatesRules_data();
    void evaluatesRules();
    void evaluatesEachSideByItself();
    void ignoresFurtherValues();

    void readsRulesOfOtherSims_data();
    void readsRulesOfOtherSims();
    void leavesTheSameSimsAlone();
    void keepsItsAnswersWithoutAWatcher();
    void allowsEverythingWithoutASim();
    void tellsWhatChangesWithoutASim_data();
    void tellsWhatChangesWithoutASim();

    void readsRulesThatHaveChanged_data();
    void readsRulesThatHaveChanged();
    void dropsRequestsWhileOneIsOutstanding();
    void ignoresSignalsWithoutASim();
    void leavesNothingOfFinishedCalls();
    void evaluatesForTheSimsOfTheMoment();
    void ignoresSignalsOfOtherInterfaces();
    void allowsNothingForASimThatHasGone();
    void waitsForBothAnswersOnceTheLastSimHasGone();
    void isReadyBeforeItTellsOfPermissions();

    void locksNobodyOutWhereRulesCannotBeRead_data();
    void locksNobodyOutWhereRulesCannotBeRead();
    void failsWithoutAValidWatcher_data();
    void failsWithoutAValidWatcher();
    void asksTheWatcherWhetherThereIsASim();
    void outlivesItsService();
    void survivesHandlersThatChangeTheSims();
    void dropsAnAnswerOnceItHasGone();

private:
    void start();
    /// Starts with these SIMs, and with rules that allow everything.
    void startAllowed(const QStringList &sims);
    void setSims(const QStringList &sims, bool valid = true);
    QDBusMessage getAll(const QString &path);
    void answer(const QDBusMessage &call, uint defaultAction, const RuleList &rules = {});
    /// Waits until everything under way has arrived. Returns what has happened since the last call.
    QStringList settled();
    QOfonoSimWatcher *watcher() const { return m_helper->findChild<QOfonoSimWatcher *>(); }
    void record(const QString &signal);
    QStringList log();

    QTemporaryDir m_folder;
    PrivateBus m_bus;
    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<FakePlatform> m_platform;
    std::unique_ptr<ScriptedService> m_service;
    std::unique_ptr<SimFiltersHelper> m_helper;
    QStringList m_events;
};

void TestSimFiltersHelper::initTestCase()
{
    QVERIFY(m_bus.start(m_folder.path(), u"system"_s));
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address().toUtf8());
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().toUtf8());
}

void TestSimFiltersHelper::init()
{
    failingSubscription = 0;
    subscriptions = 0;
    m_log.reset();
    m_log = std::make_unique<MessageLog>();
    m_platform = std::make_unique<FakePlatform>();
    m_service = std::make_unique<ScriptedService>(m_bus.address(), u"org.ofono"_s, filters);
    m_events.clear();
}

void TestSimFiltersHelper::cleanup()
{
    if (m_helper)
        QCOMPARE(settled(), QStringList());
    m_helper.reset();
    if (m_service)
        QCOMPARE(m_service->waiting(), 0);
    m_service.reset();
    m_platform.reset();
    QCOMPARE(log().join(u'\n'), QString());
}

void TestSimFiltersHelper::start()
{
    m_helper = std::make_unique<SimFiltersHelper>(nullptr);
    connect(m_helper.get(), &SimFiltersHelper::readyChanged, this, [this] { record(u"ready"_s); });
    connect(m_helper.get(), &SimFiltersHelper::anyActiveSimCanDialChanged, this,
            [this] { record(u"dial"_s); });
    connect(m_helper.get(), &SimFiltersHelper::anyActiveSimCanReceiveChanged, this,
            [this] { record(u"receive"_s); });
    connect(m_helper.get(), &SimFiltersHelper::activeSimCountChanged, this,
            [this] { record(u"count"_s); });
}

void TestSimFiltersHelper::startAllowed(const QStringList &sims)
{
    start();
    setSims(sims);
    answer(getAll(dial), allow);
    answer(getAll(incoming), allow);
    settled();
    QVERIFY(m_helper->ready());
    QCOMPARE(m_helper->activeSimCount(), sims.size());
}

/// Records a signal and the whole state at that moment.
void TestSimFiltersHelper::record(const QString &signal)
{
    QString state = signal + u':';
    if (m_helper->ready())
        state += u" ready"_s;
    if (m_helper->anyActiveSimCanDial())
        state += u" dial"_s;
    if (m_helper->anyActiveSimCanReceive())
        state += u" receive"_s;
    m_events.append(state + u' ' + QString::number(m_helper->activeSimCount()));
}

void TestSimFiltersHelper::setSims(const QStringList &sims, bool valid)
{
    const bool validityChanges = valid != m_platform->simsValid;
    m_platform->sims = sims;
    m_platform->simsValid = valid;
    if (validityChanges)
        Q_EMIT watcher()->validChanged();
    Q_EMIT watcher()->presentSimListChanged();
}

QDBusMessage TestSimFiltersHelper::getAll(const QString &path)
{
    const QDBusMessage call = m_service->next(u"GetAll"_s);
    if (call.path() != path || call.interface() != interface || !call.arguments().isEmpty())
        qWarning() << "not the call that was expected:" << call;
    return call;
}

void TestSimFiltersHelper::answer(const QDBusMessage &call, uint defaultAction,
                                  const RuleList &rules)
{
    m_service->reply(call, {7U, defaultAction, QVariant::fromValue(rules)});
}

QStringList TestSimFiltersHelper::settled()
{
    if (m_service)
        m_service->settle();
    return std::exchange(m_events, {});
}

QStringList TestSimFiltersHelper::log()
{
    return m_log->take();
}

void TestSimFiltersHelper::declaresWhatQmlUses()
{
    const QMetaObject &type = SimFiltersHelper::staticMetaObject;
    QCOMPARE(type.superClass(), &QObject::staticMetaObject);
    QStringList properties;
    for (int i = type.propertyOffset(); i < type.propertyCount(); ++i) {
        const QMetaProperty property = type.property(i);
        QVERIFY(property.isReadable() && !property.isWritable() && !property.isResettable());
        properties.append(QString::fromLatin1(property.typeName()) + u' '
                          + QString::fromLatin1(property.name()) + u' '
                          + QString::fromLatin1(property.notifySignal().methodSignature()));
    }
    QCOMPARE(properties,
             QStringList({u"bool ready readyChanged()"_s,
                          u"bool anyActiveSimCanDial anyActiveSimCanDialChanged()"_s,
                          u"bool anyActiveSimCanReceive anyActiveSimCanReceiveChanged()"_s,
                          u"int activeSimCount activeSimCountChanged()"_s}));
    QStringList methods;
    for (int i = type.methodOffset(); i < type.methodCount(); ++i) {
        const QMetaMethod method = type.method(i);
        QCOMPARE(method.access(),
                 i < type.methodOffset() + 4 ? QMetaMethod::Public : QMetaMethod::Private);
        methods.append(QString::fromLatin1(method.methodSignature()));
    }
    QCOMPARE(
        methods,
        QStringList({u"readyChanged()"_s, u"anyActiveSimCanDialChanged()"_s,
                     u"anyActiveSimCanReceiveChanged()"_s, u"activeSimCountChanged()"_s,
                     u"requestDialRules()"_s, u"requestIncomingRules()"_s,
                     u"dialGetAllFinished(QDBusPendingCallWatcher*)"_s,
                     u"incomingGetAllFinished(QDBusPendingCallWatcher*)"_s, u"updateSims()"_s}));

    QCOMPARE(type.enumeratorCount(), 1);
    const QMetaEnum actions = type.enumerator(0);
    QCOMPARE(QByteArray(actions.name()), QByteArray("Action"));
    QVERIFY(!actions.isFlag());
    QStringList values;
    for (int i = 0; i < actions.keyCount(); ++i)
        values.append(QString::fromLatin1(actions.key(i)) + u' '
                      + QString::number(actions.value(i)));
    QCOMPARE(values, QStringList({u"Block 1"_s, u"Ignore 1"_s, u"Allow 2"_s, u"Hangup 3"_s}));
}

void TestSimFiltersHelper::registersItsTypes()
{
    start();
    QCOMPARE(metaTypeNamed("SimFiltersHelper::Rule"), qMetaTypeId<Rule>());
    QCOMPARE(metaTypeNamed("SimFiltersHelper::RuleList"), qMetaTypeId<RuleList>());
    QCOMPARE(busSignature<Rule>(), u"(su)"_s);
    QCOMPARE(busSignature<RuleList>(), u"a(su)"_s);
    QCOMPARE(Rule().imsi, QString());
    QCOMPARE(Rule().action, block);

    const QVariant rules = QVariant::fromValue(RuleList{{one, allow}, {other, block}});
    const auto iterable = rules.value<QSequentialIterable>();
    QCOMPARE(iterable.size(), 2);
    QCOMPARE(iterable.at(1).value<Rule>().imsi, other);
}

void TestSimFiltersHelper::carriesRules_data()
{
    QTest::addColumn<RuleList>("rules");

    QTest::newRow("none") << RuleList();
    QTest::newRow("one") << RuleList{{one, allow}};
    QTest::newRow("in order") << RuleList{{other, hangup}, {one, 7}, {other, 0}, {one, 4294967295}};
    QTest::newRow("any text") << RuleList{{QString(), 0}, {u"\u4e2d \U0001f600"_s, 1}};
}

void TestSimFiltersHelper::carriesRules()
{
    QFETCH(RuleList, rules);

    start();
    QDBusMessage call = QDBusMessage::createMethodCall(u"org.ofono"_s, dial, interface, u"Carry"_s);
    call.setArguments({QVariant::fromValue(rules)});
    const QDBusPendingReply<RuleList> reply = QDBusConnection::systemBus().asyncCall(call);
    const QDBusMessage received = m_service->next(u"Carry"_s);
    QCOMPARE(received.signature(), u"a(su)"_s);
    const auto there = qdbus_cast<RuleList>(received.arguments().constFirst());
    m_service->reply(received, {QVariant::fromValue(there)});
    QTRY_VERIFY(reply.isFinished());
    // The former content of the list is replaced.
    RuleList back{{u"before"_s, allow}};
    received.arguments().constFirst().value<QDBusArgument>() >> back;
    for (const RuleList &list : {there, back, reply.value()}) {
        QCOMPARE(list.size(), rules.size());
        for (int i = 0; i < rules.size(); ++i) {
            QCOMPARE(list.at(i).imsi, rules.at(i).imsi);
            QCOMPARE(list.at(i).action, rules.at(i).action);
        }
    }
}

void TestSimFiltersHelper::startsInOrder()
{
    start();
    QCOMPARE(m_platform->takeCalls(),
             QStringList({u"QOfonoSimWatcher()"_s, u"setRequireSubscriberIdentity(true)"_s}));
    const auto proxies =
        m_helper->findChildren<QDBusInterface *>(QString(), Qt::FindDirectChildrenOnly);
    QCOMPARE(proxies.size(), 2);
    QCOMPARE(proxies.at(0)->path(), dial);
    QCOMPARE(proxies.at(1)->path(), incoming);
    for (const QDBusInterface *proxy : proxies) {
        QCOMPARE(proxy->service(), u"org.ofono"_s);
        QCOMPARE(proxy->interface(), interface);
        QCOMPARE(proxy->connection().name(), QDBusConnection::systemBus().name());
    }
    QVERIFY(!m_helper->ready());
    QVERIFY(m_helper->anyActiveSimCanDial());
    QVERIFY(m_helper->anyActiveSimCanReceive());
    QCOMPARE(m_helper->activeSimCount(), 0);
    QCOMPARE(settled(), QStringList());
    QCOMPARE(m_service->waiting(), 0); // No rule is read before there is a SIM.

    m_helper.reset();
    QCOMPARE(m_platform->takeCalls(), QStringList(u"~QOfonoSimWatcher()"_s));
}

void TestSimFiltersHelper::staysAloofWithoutFilters()
{
    m_service.reset();
    start();
    QCOMPARE(log(), QStringList(unableToConnect));
    QCOMPARE(subscriptions, 0);

    // The signals of a service that starts later are not followed.
    m_service = std::make_unique<ScriptedService>(m_bus.address(), u"org.ofono"_s, filters);
    setSims({one});
    QCOMPARE(settled(), QStringList(u"count: dial receive 1"_s));
    answer(getAll(dial), block);
    answer(getAll(incoming), block);
    QCOMPARE(settled(),
             QStringList({u"dial: receive 1"_s, u"ready: ready 1"_s, u"receive: ready 1"_s}));
    m_service->emitSignal(interface, u"RulesChanged"_s, {}, dial);
    m_service->emitSignal(interface, u"RulesChanged"_s, {}, incoming);
    m_service->settle();
    QCOMPARE(m_service->waiting(), 0);
}

void TestSimFiltersHelper::readsRulesWithoutFiltersAtItsStart()
{
    m_service.reset();
    start();
    QCOMPARE(log(), QStringList(unableToConnect));
    setSims({one});
    const QString failure = u"GetAll() failed: \"org.freedesktop.DBus.Error.ServiceUnknown\" "
                            "\"The name org.ofono was not provided by any .service files\""_s;
    QTRY_VERIFY(m_helper->ready());
    QCOMPARE(settled(),
             QStringList({u"count: dial receive 1"_s, u"ready: ready dial receive 1"_s}));
    QCOMPARE(log(),
             QStringList({u"debug: (dial) "_s + failure, u"debug: (incoming) "_s + failure}));
}

/// The SIMs of the watcher are not read before it has signalled a change.
void TestSimFiltersHelper::takesAValidWatcherForNoSimAtItsStart()
{
    m_platform->sims = QStringList{one};
    m_platform->simsValid = true;
    start();
    QVERIFY(m_helper->ready());
    QCOMPARE(m_helper->activeSimCount(), 0);
    m_service->settle();
    QCOMPARE(m_service->waiting(), 0);

    Q_EMIT watcher()->presentSimListChanged();
    QCOMPARE(settled(), QStringList(u"count: ready dial receive 1"_s));
    answer(getAll(dial), allow);
    answer(getAll(incoming), allow);
}

void TestSimFiltersHelper::subscribesInOrder()
{
    failingSubscription = -1;
    start();
    QStringList expected;
    for (const QString &side : {u"dial"_s, u"incoming"_s}) {
        for (const QString &signal : {u"RuleAdded"_s, u"RuleChanged"_s, u"RuleRemoved"_s,
                                      u"RulesChanged"_s, u"DefaultActionChanged"_s})
            expected.append(u"warning: void SimFiltersHelper::connectSignals() "
                            "Failed to connect to (%1) %2"_s.arg(side, signal));
    }
    QCOMPARE(log(), expected);

    // The SIMs are followed all the same.
    setSims({one});
    answer(getAll(dial), block);
    answer(getAll(incoming), allow);
    QCOMPARE(settled(),
             QStringList(
                 {u"count: dial receive 1"_s, u"dial: receive 1"_s, u"ready: ready receive 1"_s}));
}

void TestSimFiltersHelper::reportsFailedSubscriptions_data()
{
    QTest::addColumn<int>("which");
    QTest::addColumn<QString>("name");

    QTest::newRow("the first") << 1 << u"(dial) RuleAdded"_s;
    QTest::newRow("the fifth") << 5 << u"(dial) DefaultActionChanged"_s;
    QTest::newRow("the sixth") << 6 << u"(incoming) RuleAdded"_s;
    QTest::newRow("the ninth") << 9 << u"(incoming) RulesChanged"_s;
}

void TestSimFiltersHelper::reportsFailedSubscriptions()
{
    QFETCH(int, which);
    QFETCH(QString, name);

    failingSubscription = which;
    start();
    QCOMPARE(subscriptions, 10);
    QCOMPARE(log(),
             QStringList(u"warning: void SimFiltersHelper::connectSignals() "
                         "Failed to connect to "_s
                         + name));
}

void TestSimFiltersHelper::isReadyWithoutASim()
{
    start();
    setSims({}, false);
    QCOMPARE(settled(), QStringList());
    QVERIFY(!m_helper->ready());
    setSims({});
    QCOMPARE(settled(), QStringList(u"ready: ready dial receive 0"_s));
    setSims({});
    QCOMPARE(settled(), QStringList());
    QCOMPARE(m_service->waiting(), 0);
}

void TestSimFiltersHelper::isReadyWithBothAnswers_data()
{
    QTest::addColumn<QStringList>("order");
    QTest::addColumn<QStringList>("events");

    QTest::newRow("dial first") << QStringList{dial, incoming}
                                << QStringList{u"dial: receive 1"_s, u"ready: ready 1"_s,
                                               u"receive: ready 1"_s};
    QTest::newRow("incoming first")
        << QStringList{incoming, dial}
        << QStringList{u"receive: dial 1"_s, u"ready: ready 1"_s, u"dial: ready 1"_s};
}

void TestSimFiltersHelper::isReadyWithBothAnswers()
{
    QFETCH(QStringList, order);
    QFETCH(QStringList, events);

    start();
    setSims({one});
    QMap<QString, QDBusMessage> calls;
    calls.insert(dial, getAll(dial));
    calls.insert(incoming, getAll(incoming));
    QCOMPARE(settled(), QStringList(u"count: dial receive 1"_s));
    answer(calls.value(order.at(0)), block);
    QCOMPARE(settled(), QStringList(events.at(0)));
    QVERIFY(!m_helper->ready());
    answer(calls.value(order.at(1)), block);
    QCOMPARE(settled(), events.mid(1));
}

void TestSimFiltersHelper::isReadyOnce()
{
    startAllowed({one});
    for (const uint action : {block, allow}) {
        m_service->emitSignal(interface, u"RulesChanged"_s, {}, dial);
        answer(getAll(dial), action);
        m_service->emitSignal(interface, u"RulesChanged"_s, {}, incoming);
        answer(getAll(incoming), action);
        const QString after = action == allow ? u" dial receive 1"_s : u" 1"_s;
        QCOMPARE(
            settled(),
            QStringList({action == allow ? u"dial: ready dial 1"_s : u"dial: ready receive 1"_s,
                         u"receive: ready"_s + after}));
    }
    setSims({});
    setSims({}, false);
    setSims({});
    QCOMPARE(settled(), QStringList(u"count: ready dial receive 0"_s));
}

void TestSimFiltersHelper::evaluatesRules_data()
{
    QTest::addColumn<QStringList>("sims");
    QTest::addColumn<uint>("defaultAction");
    QTest::addColumn<RuleList>("rules");
    QTest::addColumn<bool>("allowed");

    const QStringList sim{one};
    const QStringList sims{one, other};
    QTest::newRow("allowed by default") << sim << allow << RuleList() << true;
    QTest::newRow("blocked by default") << sim << block << RuleList() << false;
    QTest::newRow("hung up by default") << sim << hangup << RuleList() << false;
    QTest::newRow("no action by default") << sim << 0U << RuleList() << false;
    QTest::newRow("any number by default") << sim << 4294967295U << RuleList() << false;
    QTest::newRow("allowed by its rule") << sim << block << RuleList{{one, allow}} << true;
    QTest::newRow("blocked by its rule") << sim << allow << RuleList{{one, block}} << false;
    QTest::newRow("hung up by its rule") << sim << allow << RuleList{{one, hangup}} << false;
    QTest::newRow("any number in its rule") << sim << allow << RuleList{{one, 7}} << false;
    QTest::newRow("the first rule decides: blocked")
        << sim << allow << RuleList{{one, block}, {one, allow}} << false;
    QTest::newRow("the first rule decides: allowed")
        << sim << block << RuleList{{other, block}, {one, allow}, {one, block}} << true;
    QTest::newRow("a rule of another") << sim << allow << RuleList{{other, block}} << true;
    QTest::newRow("a longer identity") << sim << allow << RuleList{{one + u'0', block}} << true;
    QTest::newRow("another case") << QStringList(u"Sim"_s) << allow << RuleList{{u"sim"_s, block}}
                                  << true;
    QTest::newRow("no identity") << QStringList(QString()) << allow << RuleList{{QString(), block}}
                                 << false;
    QTest::newRow("one of two allowed") << sims << allow << RuleList{{one, block}} << true;
    QTest::newRow("the other of two allowed")
        << sims << block << RuleList{{other, allow}, {one, hangup}} << true;
    QTest::newRow("none of two allowed")
        << sims << allow << RuleList{{other, block}, {one, hangup}} << false;
    QTest::newRow("the same twice")
        << QStringList{one, one} << allow << RuleList{{one, block}} << false;
}

void TestSimFiltersHelper::evaluatesRules()
{
    QFETCH(QStringList, sims);
    QFETCH(uint, defaultAction);
    QFETCH(RuleList, rules);
    QFETCH(bool, allowed);

    start();
    setSims(sims);
    const QString count = QString::number(sims.size());
    QCOMPARE(settled(), QStringList(u"count: dial receive "_s + count));
    answer(getAll(dial), defaultAction, rules);
    answer(getAll(incoming), defaultAction, rules);
    QStringList expected{u"dial: receive "_s + count, u"ready: ready "_s + count,
                         u"receive: ready "_s + count};
    if (allowed)
        expected = QStringList(u"ready: ready dial receive "_s + count);
    QCOMPARE(settled(), expected);
    QCOMPARE(m_helper->anyActiveSimCanDial(), allowed);
    QCOMPARE(m_helper->anyActiveSimCanReceive(), allowed);
}

void TestSimFiltersHelper::evaluatesEachSideByItself()
{
    start();
    setSims({one});
    answer(getAll(dial), allow, {{one, block}});
    answer(getAll(incoming), block, {{one, allow}});
    QCOMPARE(settled(),
             QStringList(
                 {u"count: dial receive 1"_s, u"dial: receive 1"_s, u"ready: ready receive 1"_s}));
}

void TestSimFiltersHelper::ignoresFurtherValues()
{
    startAllowed({one});
    m_service->emitSignal(interface, u"RulesChanged"_s, {}, dial);
    m_service->reply(getAll(dial), {1U, block, QVariant::fromValue(RuleList()), u"more"_s});
    QCOMPARE(settled(), QStringList(u"dial: ready receive 1"_s));
}

void TestSimFiltersHelper::readsRulesOfOtherSims_data()
{
    QTest::addColumn<QStringList>("before");
    QTest::addColumn<QStringList>("after");

    QTest::newRow("one more") << QStringList{one} << QStringList{one, other};
    QTest::newRow("one less") << QStringList{one, other} << QStringList{other};
    QTest::newRow("another") << QStringList{one} << QStringList{other};
    QTest::newRow("in another order") << QStringList{one, other} << QStringList{other, one};
    QTest::newRow("the same twice") << QStringList{one} << QStringList{one, one};
    QTest::newRow("one without identity") << QStringList{one} << QStringList{one, QString()};
}

void TestSimFiltersHelper::readsRulesOfOtherSims()
{
    QFETCH(QStringList, before);
    QFETCH(QStringList, after);

    startAllowed(before);
    setSims(after);
    const QDBusMessage dialCall = getAll(dial);
    const QDBusMessage incomingCall = getAll(incoming);
    QStringList expected;
    if (before.size() != after.size())
        expected.append(u"count: ready dial receive %1"_s.arg(after.size()));
    QCOMPARE(settled(), expected);
    QCOMPARE(m_service->waiting(), 0);

    // The known permissions stay until the answer comes.
    QVERIFY(m_helper->anyActiveSimCanDial());
    answer(dialCall, block);
    answer(incomingCall, block);
    QCOMPARE(settled(),
             QStringList({u"dial: ready receive %1"_s.arg(after.size()),
                          u"receive: ready %1"_s.arg(after.size())}));
}

void TestSimFiltersHelper::leavesTheSameSimsAlone()
{
    startAllowed({one, other});
    setSims({one, other});
    Q_EMIT watcher()->validChanged();
    QCOMPARE(settled(), QStringList());
    QCOMPARE(m_service->waiting(), 0);
}

void TestSimFiltersHelper::keepsItsAnswersWithoutAWatcher()
{
    start();
    setSims({one});
    answer(getAll(dial), block);
    answer(getAll(incoming), allow);
    settled();
    setSims({one}, false); // The list of the watcher is not valid.
    QCOMPARE(settled(), QStringList(u"count: ready receive 0"_s));
    QCOMPARE(m_service->waiting(), 0);

    setSims({one});
    QCOMPARE(settled(), QStringList(u"count: ready receive 1"_s));
    answer(getAll(dial), block);
    answer(getAll(incoming), allow);
}

void TestSimFiltersHelper::allowsEverythingWithoutASim()
{
    start();
    setSims({one});
    answer(getAll(dial), block);
    answer(getAll(incoming), block);
    settled();
    setSims({});
    QCOMPARE(settled(),
             QStringList({u"count: ready 0"_s, u"dial: ready dial receive 0"_s,
                          u"receive: ready dial receive 0"_s}));
    QCOMPARE(m_service->waiting(), 0);
}

void TestSimFiltersHelper::tellsWhatChangesWithoutASim_data()
{
    QTest::addColumn<uint>("dialAction");
    QTest::addColumn<uint>("incomingAction");
    QTest::addColumn<QStringList>("events");

    QTest::newRow("nothing") << allow << allow << QStringList{u"count: ready dial receive 0"_s};
    QTest::newRow("dialling") << block << allow
                              << QStringList{u"count: ready receive 0"_s,
                                             u"dial: ready dial receive 0"_s};
    QTest::newRow("receiving") << allow << block
                               << QStringList{u"count: ready dial 0"_s,
                                              u"receive: ready dial receive 0"_s};
}

void TestSimFiltersHelper::tellsWhatChangesWithoutASim()
{
    QFETCH(uint, dialAction);
    QFETCH(uint, incomingAction);
    QFETCH(QStringList, events);

    start();
    setSims({one});
    answer(getAll(dial), dialAction);
    answer(getAll(incoming), incomingAction);
    settled();
    setSims({});
    QCOMPARE(settled(), events);
}

void TestSimFiltersHelper::readsRulesThatHaveChanged_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("signal");
    QTest::addColumn<QVariantList>("arguments");

    const std::pair<const char *, QVariantList> shapes[] = {
        {"nothing", {}},
        {"a rule", {one, allow}},
        {"anything", {QVariantList{1, u"x"_s}, 2.5, QVariantMap{{u"a"_s, true}}}}};
    for (const QString &path : {dial, incoming}) {
        for (const QString &signal : {u"RuleAdded"_s, u"RuleChanged"_s, u"RuleRemoved"_s,
                                      u"RulesChanged"_s, u"DefaultActionChanged"_s}) {
            for (const auto &[name, arguments] : shapes)
                QTest::addRow("%s of %s with %s", qUtf8Printable(signal), qUtf8Printable(path),
                              name)
                    << path << signal << arguments;
        }
    }
}

void TestSimFiltersHelper::readsRulesThatHaveChanged()
{
    QFETCH(QString, path);
    QFETCH(QString, signal);
    QFETCH(QVariantList, arguments);

    startAllowed({one});
    m_service->emitSignal(interface, signal, arguments, path);
    const QDBusMessage call = getAll(path);
    m_service->settle();
    QCOMPARE(m_service->waiting(), 0);
    answer(call, block);
    QCOMPARE(settled(),
             QStringList(path == dial ? u"dial: ready receive 1"_s : u"receive: ready dial 1"_s));
}

void TestSimFiltersHelper::dropsRequestsWhileOneIsOutstanding()
{
    startAllowed({one});
    m_service->emitSignal(interface, u"RuleAdded"_s, {}, dial);
    const QDBusMessage call = getAll(dial);
    for (int i = 0; i < 100; ++i)
        m_service->emitSignal(interface, u"RuleChanged"_s, {}, dial);
    m_service->settle();
    QCOMPARE(m_service->waiting(), 0);

    // The other side is independent.
    m_service->emitSignal(interface, u"RuleAdded"_s, {}, incoming);
    answer(getAll(incoming), allow);

    // The dropped requests are not made later.
    answer(call, allow);
    QCOMPARE(settled(), QStringList());
    QCOMPARE(m_service->waiting(), 0);
    m_service->emitSignal(interface, u"RuleRemoved"_s, {}, dial);
    answer(getAll(dial), allow);
}

void TestSimFiltersHelper::ignoresSignalsWithoutASim()
{
    start();
    m_service->emitSignal(interface, u"RuleAdded"_s, {}, dial);
    QCOMPARE(settled(), QStringList());
    setSims({});
    settled();
    m_service->emitSignal(interface, u"RuleAdded"_s, {}, dial);
    m_service->emitSignal(interface, u"RuleAdded"_s, {}, incoming);
    QCOMPARE(settled(), QStringList());
    QCOMPARE(m_service->waiting(), 0);
}

void TestSimFiltersHelper::leavesNothingOfFinishedCalls()
{
    startAllowed({one});
    const WatcherCount watchers;
    for (int i = 0; i < 1000; ++i) {
        m_service->emitSignal(interface, u"RulesChanged"_s, {}, dial);
        answer(getAll(dial), allow);
        m_service->settle();
    }
    for (int i = 0; i < 1000; ++i) {
        setSims({i % 2 == 0 ? other : one});
        answer(getAll(dial), allow);
        answer(getAll(incoming), allow);
        m_service->settle();
    }
    QTRY_COMPARE(watchers.value(), 0);
}

void TestSimFiltersHelper::evaluatesForTheSimsOfTheMoment()
{
    start();
    setSims({one});
    const QDBusMessage dialCall = getAll(dial);
    const QDBusMessage incomingCall = getAll(incoming);
    setSims({other});
    settled();
    QCOMPARE(m_service->waiting(), 0); // There is one request of each side at a time.
    answer(dialCall, allow, {{other, block}});
    answer(incomingCall, block, {{other, allow}});
    QCOMPARE(settled(), QStringList({u"dial: receive 1"_s, u"ready: ready receive 1"_s}));
    QCOMPARE(m_service->waiting(), 0);
}

void TestSimFiltersHelper::allowsNothingForASimThatHasGone()
{
    startAllowed({one});
    m_service->emitSignal(interface, u"RulesChanged"_s, {}, dial);
    const QDBusMessage call = getAll(dial);
    setSims({});
    QCOMPARE(settled(), QStringList(u"count: ready dial receive 0"_s));
    answer(call, allow);
    QCOMPARE(settled(), QStringList(u"dial: ready receive 0"_s));
    Q_EMIT watcher()->presentSimListChanged();
    QCOMPARE(settled(), QStringList(u"dial: ready dial receive 0"_s));
}

void TestSimFiltersHelper::ignoresSignalsOfOtherInterfaces()
{
    startAllowed({one});
    m_service->emitSignal(u"org.ofono.Manager"_s, u"RuleAdded"_s, {}, dial);
    m_service->emitSignal(interface, u"RuleReplaced"_s, {}, dial);
    m_service->emitSignal(interface, u"RuleAdded"_s, {}, filters);
    QCOMPARE(settled(), QStringList());
    QCOMPARE(m_service->waiting(), 0);
}

void TestSimFiltersHelper::waitsForBothAnswersOnceTheLastSimHasGone()
{
    start();
    setSims({one});
    const QDBusMessage dialCall = getAll(dial);
    const QDBusMessage incomingCall = getAll(incoming);
    settled();
    setSims({});
    QCOMPARE(settled(), QStringList(u"count: dial receive 0"_s));
    answer(dialCall, allow);
    answer(incomingCall, allow);
    QCOMPARE(settled(),
             QStringList({u"dial: receive 0"_s, u"ready: ready 0"_s, u"receive: ready 0"_s}));
    Q_EMIT watcher()->presentSimListChanged();
    QCOMPARE(settled(),
             QStringList({u"dial: ready dial receive 0"_s, u"receive: ready dial receive 0"_s}));
}

void TestSimFiltersHelper::isReadyBeforeItTellsOfPermissions()
{
    start();
    setSims({one});
    answer(getAll(dial), block);
    const QDBusMessage call = getAll(incoming);
    QCOMPARE(settled(), QStringList({u"count: dial receive 1"_s, u"dial: receive 1"_s}));
    setSims({});
    QCOMPARE(settled(),
             QStringList({u"count: receive 0"_s, u"ready: ready dial receive 0"_s,
                          u"dial: ready dial receive 0"_s}));
    answer(call, allow);
    QCOMPARE(settled(), QStringList(u"receive: ready dial 0"_s));
}

void TestSimFiltersHelper::locksNobodyOutWhereRulesCannotBeRead_data()
{
    QTest::addColumn<QVariantList>("values");
    QTest::addColumn<QString>("signature");

    const QVariant rules = QVariant::fromValue(RuleList{{one, block}});
    QTest::newRow("nothing") << QVariantList() << QString();
    QTest::newRow("two values") << QVariantList{1U, block} << u"uu"_s;
    QTest::newRow("signed") << QVariantList{1, 1, rules} << u"iia(su)"_s;
    QTest::newRow("texts") << QVariantList{1U, block, QStringList{one}} << u"uuas"_s;
    QTest::newRow("in another order") << QVariantList{rules, 1U, block} << u"a(su)uu"_s;
    QTest::newRow("a variant") << QVariantList{1U, block, QVariant::fromValue(QDBusVariant(rules))}
                               << u"uuv"_s;
}

void TestSimFiltersHelper::locksNobodyOutWhereRulesCannotBeRead()
{
    QFETCH(QVariantList, values);
    QFETCH(QString, signature);

    start();
    setSims({one});
    answer(getAll(dial), block);
    answer(getAll(incoming), block);
    settled();
    m_service->emitSignal(interface, u"RulesChanged"_s, {}, dial);
    m_service->reply(getAll(dial), values);
    m_service->emitSignal(interface, u"RulesChanged"_s, {}, incoming);
    m_service->fail(getAll(incoming), u"com.example.Error"_s, u"no \"rules\" today"_s);
    QCOMPARE(settled(), QStringList({u"dial: ready dial 1"_s, u"receive: ready dial receive 1"_s}));
    QCOMPARE(log(),
             QStringList({u"debug: (dial) GetAll() failed: "
                          "\"org.freedesktop.DBus.Error.InvalidSignature\" "
                          "\"Unexpected reply signature: got \\\"%1\\\", "
                          "expected \\\"uua(su)\\\"\""_s.arg(signature),
                          u"debug: (incoming) GetAll() failed: \"com.example.Error\" "
                          "\"no \\\"rules\\\" today\""_s}));
}

void TestSimFiltersHelper::failsWithoutAValidWatcher_data()
{
    QTest::addColumn<QStringList>("sims");
    QTest::addColumn<bool>("valid");

    QTest::newRow("invalid, with a SIM") << QStringList{other} << false;
    QTest::newRow("valid, without a SIM") << QStringList() << true;
}

void TestSimFiltersHelper::failsWithoutAValidWatcher()
{
    QFETCH(QStringList, sims);
    QFETCH(bool, valid);

    startAllowed({one});
    m_service->emitSignal(interface, u"RulesChanged"_s, {}, dial);
    const QDBusMessage call = getAll(dial);
    setSims(sims, valid);
    QCOMPARE(settled(), QStringList(u"count: ready dial receive 0"_s));
    m_service->fail(call, u"com.example.Error"_s, {});
    QCOMPARE(settled(), QStringList(u"dial: ready receive 0"_s));
    QCOMPARE(log(), QStringList(u"debug: (dial) GetAll() failed: \"com.example.Error\" \"\""_s));
}

void TestSimFiltersHelper::asksTheWatcherWhetherThereIsASim()
{
    startAllowed({one});
    m_service->emitSignal(interface, u"RulesChanged"_s, {}, dial);
    const QDBusMessage call = getAll(dial);
    setSims({});
    settled();
    m_platform->sims = QStringList{other}; // The watcher has not signalled this yet.
    m_service->fail(call, u"com.example.Error"_s, {});
    QCOMPARE(settled(), QStringList());
    QVERIFY(m_helper->anyActiveSimCanDial());
    QCOMPARE(log(), QStringList(u"debug: (dial) GetAll() failed: \"com.example.Error\" \"\""_s));
}

void TestSimFiltersHelper::outlivesItsService()
{
    start();
    setSims({one});
    answer(getAll(dial), block);
    answer(getAll(incoming), block);
    settled();
    m_service->emitSignal(interface, u"RulesChanged"_s, {}, dial);
    getAll(dial);
    m_service.reset();
    QTRY_VERIFY(m_helper->anyActiveSimCanDial());
    QCOMPARE(settled(), QStringList(u"dial: ready dial 1"_s));
    QCOMPARE(log(),
             QStringList(u"debug: (dial) GetAll() failed: "
                         "\"org.freedesktop.DBus.Error.NoReply\" "
                         "\"Message recipient disconnected from message bus without "
                         "replying\""_s));

    // The signals of the next service are followed.
    m_service = std::make_unique<ScriptedService>(m_bus.address(), u"org.ofono"_s, filters);
    m_service->settle();
    m_service->emitSignal(interface, u"RulesChanged"_s, {}, dial);
    answer(getAll(dial), block);
    QCOMPARE(settled(), QStringList(u"dial: ready 1"_s));
}

void TestSimFiltersHelper::survivesHandlersThatChangeTheSims()
{
    start();
    connect(m_helper.get(), &SimFiltersHelper::activeSimCountChanged, this, [this] {
        if (m_helper->activeSimCount() == 1)
            setSims({one, other});
    });
    connect(m_helper.get(), &SimFiltersHelper::anyActiveSimCanDialChanged, this,
            [this] { setSims({}); });
    setSims({one});
    answer(getAll(dial), block);
    answer(getAll(incoming), block);
    settled();
    QCOMPARE(m_helper->activeSimCount(), 0);
    QVERIFY(m_helper->ready());
    QVERIFY(m_helper->anyActiveSimCanDial());
    QVERIFY(!m_helper->anyActiveSimCanReceive()); // Its answer came after the SIMs were gone.
    QCOMPARE(m_service->waiting(), 0);
}

void TestSimFiltersHelper::dropsAnAnswerOnceItHasGone()
{
    start();
    setSims({one});
    const QDBusMessage dialCall = getAll(dial);
    const QDBusMessage incomingCall = getAll(incoming);
    settled();
    m_helper.reset();
    answer(dialCall, block);
    answer(incomingCall, block);
    m_service->settle();
    QCOMPARE(m_events, QStringList());
}

QTEST_GUILESS_MAIN(TestSimFiltersHelper)

#include "tst_simfiltershelper.moc"
