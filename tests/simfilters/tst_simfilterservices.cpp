// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "callmeanwhile.h"
#include "childprocess.h"
#include "filterrule.h"
#include "literals.h"
#include "scriptedservice.h"
#include "telephonystack.h"
#include "uiundertest.h"
#include "waitfor.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QElapsedTimer>
#include <QJsonValue>
#include <QProcessEnvironment>
#include <QTest>

#include <algorithm>
#include <csignal>
#include <deque>
#include <memory>

#include <sys/types.h>

namespace {

const QString ofono = u"org.ofono"_s;
const QString simManager = u"org.ofono.SimManager"_s;
const QString filterInterface = u"org.cobalt.ofono.mdm.ParleyFilter"_s;
const QString dialPath = u"/mdm/parleyfilter/dial"_s;
const QString incomingPath = u"/mdm/parleyfilter/incoming"_s;
const QString control = u"com.nimbo.simulator.Telephony"_s;
const QString dial = u"dial"_s;
const QString incoming = u"incoming"_s;
const QString first = u"/ril_0"_s;
const QString second = u"/ril_1"_s;
const QString one = u"262011111111111"_s;
const QString other = u"262022222222222"_s;

constexpr uint block = 1;
constexpr uint allow = 2;
constexpr uint hangup = 3;
constexpr int patience = 30000;

} // namespace

/// The filters as the screens of the built process see them: with a telephony stack that is
/// scripted message by message, with that of the simulated handset, with the real oFono, and with a
/// mock of it that others have written.
class TestSimFilterServices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void speakToTheStackInOrder();
    void followSimsThatChangeInPlace();
    void answerOthersUntilAHungFilterTimesOut();
    void outliveAStackThatDiesInACall();

    void followSims();
    void followALock();
    void knowTheSimsAtTheStart();
    void followRules_data();
    void followRules();
    void missTheRulesOfAStackThatComesLater();
    void returnWithTheStack();
    void goOnWhenAHungStackDoes();
    void startBesideAHungStack();
    void endRightAfterManyChanges();

    void haveNoSimWithTheRealDaemon();
    void followTheRealDaemonToAnother();
    void lockNobodyOutWithoutFilters();

private:
    bool startUi();
    /// These functions wait until the telephony stack is on the bus, or has left it.
    bool startStack(const QString &program, const QStringList &arguments);
    bool endStack(int signal);
    bool startTelephony();
    bool startRealDaemon();
    bool startMock();
    void signalProcess(qint64 processId, int signal);

    QDBusMessage message(const QString &path, const QString &interface, const QString &method,
                         const QVariantList &arguments) const;
    bool isDone(const QString &path, const QString &interface, const QString &method,
                const QVariantList &arguments = {});
    bool isDone(const QString &method, const QVariantList &arguments);
    bool changeMany(int simChanges, int ruleChanges);

    bool startScripted(const QStringList &imsis);
    QDBusMessage getAll(const QString &path);
    void answer(const QDBusMessage &call, uint defaultAction, const FilterRules &rules = {});
    void changeSim(const QString &path, const QString &name, const QVariant &value);

    /// Returns whether the screens log these changes, in this order.
    bool areTold(const QStringList &changes);
    /// Returns the current state, in the form that areTold() expects after the name of a change.
    QString state();
    bool logsFailure(const QString &filter, const QString &error);

    std::unique_ptr<UiUnderTest> m_ui;
    std::unique_ptr<QDBusConnection> m_system;
    std::unique_ptr<ChildProcess> m_stack;
    std::unique_ptr<ScriptedService> m_scripted;
};

void TestSimFilterServices::initTestCase()
{
    registerFilterRuleTypes();
    qDBusRegisterMetaType<OfonoObject>();
    qDBusRegisterMetaType<OfonoObjects>();
}

void TestSimFilterServices::init()
{
    m_ui = std::make_unique<UiUnderTest>();
    QVERIFY(m_ui->isValid());
    m_system = std::make_unique<QDBusConnection>(
        QDBusConnection::connectToBus(m_ui->systemBus().address(), m_ui->folder() + u"/system"_s));
    QVERIFY(m_system->isConnected());
}

void TestSimFilterServices::cleanup()
{
    QVERIFY(m_ui->isRunning());
    m_ui->evaluate(u"0"_s);
    m_ui->stop();
    m_stack.reset();
    if (m_scripted)
        QCOMPARE(m_scripted->waiting(), 0);
    m_scripted.reset();
    QDBusConnection::disconnectFromBus(m_system->name());
    m_system.reset();
    QCOMPARE(m_ui->takeLog().join(u'\n'), QString());
    m_ui.reset();
}

bool TestSimFilterServices::startUi()
{
    if (m_stack || m_scripted)
        m_ui->setHasTelephony();
    return m_ui->startScreens(QStringLiteral(PARLEY_SIM_FILTER_SCREENS), {u"-prestart"_s});
}

bool TestSimFilterServices::startStack(const QString &program, const QStringList &arguments)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, m_ui->sessionBus().address());
    environment.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, m_ui->systemBus().address());
    m_stack = std::make_unique<ChildProcess>();
    m_stack->setProcessEnvironment(environment);
    m_stack->start(program, arguments);
    return QTest::qWaitFor(
        [this] { return m_system->interface()->isServiceRegistered(ofono).value(); }, patience);
}

bool TestSimFilterServices::endStack(int signal)
{
    signalProcess(m_stack->processId(), signal);
    return m_stack->waitForFinished(patience)
        && QTest::qWaitFor(
               [this] { return !m_system->interface()->isServiceRegistered(ofono).value(); },
               patience);
}

bool TestSimFilterServices::startTelephony()
{
    return startStack(qEnvironmentVariable("PARLEY_HANDSET"),
                      {u"--service"_s, u"telephony"_s, u"--state"_s, m_ui->folder() + u"/state"_s});
}

/// The plugins that look for modems are left out, so that those of this machine are not used.
bool TestSimFilterServices::startRealDaemon()
{
    return startStack(u"/usr/sbin/ofonod"_s, {u"-n"_s, u"--noplugin=udevng,phonesim"_s});
}

/// Starts the mock with a SIM in each of two modems, and without filters.
bool TestSimFilterServices::startMock()
{
    return startStack(u"/usr/bin/python3"_s,
                      {u"-m"_s, u"dbusmock"_s, u"--system"_s, u"--template"_s, u"ofono"_s})
        && isDone(u"/"_s, u"org.freedesktop.DBus.Mock"_s, u"AddModem"_s,
                  {u"ril_1"_s, QVariantMap()});
}

void TestSimFilterServices::signalProcess(qint64 processId, int signal)
{
    QVERIFY(processId > 0);
    QCOMPARE(::kill(static_cast<pid_t>(processId), signal), 0);
}

QDBusMessage TestSimFilterServices::message(const QString &path, const QString &interface,
                                            const QString &method,
                                            const QVariantList &arguments) const
{
    QDBusMessage call = QDBusMessage::createMethodCall(ofono, path, interface, method);
    call.setArguments(arguments);
    return call;
}

bool TestSimFilterServices::isDone(const QString &path, const QString &interface,
                                   const QString &method, const QVariantList &arguments)
{
    // Read the log meanwhile: a UI that cannot write its log stops.
    const QDBusMessage reply =
        callMeanwhile(*m_system, message(path, interface, method, arguments), patience);
    if (reply.type() == QDBusMessage::ReplyMessage)
        return true;
    qWarning() << method << reply.errorName() << reply.errorMessage();
    return false;
}

/// Calls a method of the simulated handset's control.
bool TestSimFilterServices::isDone(const QString &method, const QVariantList &arguments)
{
    return isDone(u"/"_s, control, method, arguments);
}

/// Makes changes as fast as the stack can, with a few calls under way at any moment. Begins and
/// ends with a SIM in the first modem. In the end its rules let it dial, and not receive.
bool TestSimFilterServices::changeMany(int simChanges, int ruleChanges)
{
    const auto change = [&](int i) {
        const int rulesPerSim = ruleChanges / simChanges;
        const int sim = i / (rulesPerSim + 1);
        const int rule = i % (rulesPerSim + 1);
        if (rule == rulesPerSim) {
            return sim % 2 == 0 ? message(u"/"_s, control, u"RemoveSim"_s, {first})
                                : message(u"/"_s, control, u"InsertSim"_s, {one, first});
        }
        // Each call is a change. One side allows what the other blocks.
        const bool isDial = rule % 2 == 0;
        const uint action = (rule / 2 + sim) % 2 == (isDial ? 1 : 0) ? allow : block;
        return message(u"/"_s, control, u"SetRule"_s, {isDial ? dial : incoming, one, action});
    };
    const int total = simChanges + ruleChanges;
    int refused = 0;
    std::deque<std::unique_ptr<QDBusPendingCallWatcher>> underWay;
    for (int i = 0; i < total; ++i) {
        underWay.push_back(
            std::make_unique<QDBusPendingCallWatcher>(m_system->asyncCall(change(i))));
        while (underWay.size() >= 16 || (i + 1 == total && !underWay.empty())) {
            const QDBusPendingCallWatcher &call = *underWay.front();
            if (!waitFor([&call] { return call.isFinished(); }, patience) || call.isError())
                ++refused;
            underWay.pop_front();
        }
    }
    return refused == 0;
}

/// Starts a scripted stack with a modem for each of the SIMs, and waits until the screens know
/// their count.
bool TestSimFilterServices::startScripted(const QStringList &imsis)
{
    m_scripted = std::make_unique<ScriptedService>(m_ui->systemBus().address(), ofono, u"/"_s);
    if (!startUi())
        return false;
    OfonoObjects modems;
    for (int i = 0; i < imsis.size(); ++i)
        modems.append(
            {QDBusObjectPath(u"/ril_%1"_s.arg(i)), {{u"Interfaces"_s, QStringList(simManager)}}});
    m_scripted->reply(m_scripted->next(u"GetModems"_s), {QVariant::fromValue(modems)});
    for (const QString &imsi : imsis)
        m_scripted->reply(m_scripted->next(u"GetProperties"_s),
                          {QVariantMap{{u"Present"_s, true}, {u"SubscriberIdentity"_s, imsi}}});
    return areTold({u"count: dial receive %1"_s.arg(imsis.size())});
}

QDBusMessage TestSimFilterServices::getAll(const QString &path)
{
    const QDBusMessage call = m_scripted->next(u"GetAll"_s);
    if (call.path() != path || call.interface() != filterInterface || !call.signature().isEmpty())
        qWarning() << "not the call that was expected:" << call;
    return call;
}

void TestSimFilterServices::answer(const QDBusMessage &call, uint defaultAction,
                                   const FilterRules &rules)
{
    m_scripted->reply(call, {1U, defaultAction, QVariant::fromValue(rules)});
}

void TestSimFilterServices::changeSim(const QString &path, const QString &name,
                                      const QVariant &value)
{
    m_scripted->emitSignal(simManager, u"PropertyChanged"_s,
                           {name, QVariant::fromValue(QDBusVariant(value))}, path);
}

bool TestSimFilterServices::areTold(const QStringList &changes)
{
    const QString prefix = u"qml: told "_s;
    return std::all_of(changes.cbegin(), changes.cend(), [&](const QString &change) {
        const QString line = m_ui->lineBeginning(prefix);
        if (line != prefix + change)
            qWarning() << "told" << line.mid(prefix.size()) << "instead of" << change;
        return line == prefix + change;
    });
}

QString TestSimFilterServices::state()
{
    return m_ui->evaluate(u"state()"_s).toString();
}

/// Returns the line for a failed fetch.
bool TestSimFilterServices::logsFailure(const QString &filter, const QString &error)
{
    return !m_ui->lineBeginning(u"(%1) GetAll() failed: \"%2\" \""_s.arg(filter, error)).isNull();
}

void TestSimFilterServices::speakToTheStackInOrder()
{
    m_scripted = std::make_unique<ScriptedService>(m_ui->systemBus().address(), ofono, u"/"_s);
    QVERIFY(startUi());
    const QDBusMessage modems = m_scripted->next(u"GetModems"_s);
    QCOMPARE(modems.path(), u"/"_s);
    QCOMPARE(modems.interface(), u"org.ofono.Manager"_s);
    QCOMPARE(state(), u"dial receive 0"_s);
    QCOMPARE(m_scripted->waiting(), 0);
    const OfonoObjects entries{
        {QDBusObjectPath(first), {{u"Interfaces"_s, QStringList(simManager)}}}};
    m_scripted->reply(modems, {QVariant::fromValue(entries)});
    const QDBusMessage sim = m_scripted->next(u"GetProperties"_s);
    QCOMPARE(sim.path(), first);
    QCOMPARE(sim.interface(), simManager);
    QCOMPARE(state(), u"dial receive 0"_s);
    QCOMPARE(m_scripted->waiting(), 0);
    m_scripted->reply(sim, {QVariantMap{{u"Present"_s, true}, {u"SubscriberIdentity"_s, one}}});

    const QDBusMessage dialCall = getAll(dialPath);
    const QDBusMessage incomingCall = getAll(incomingPath);
    QVERIFY(areTold({u"count: dial receive 1"_s}));
    answer(incomingCall, allow, {{other, allow}, {one, hangup}, {one, allow}});
    QVERIFY(areTold({u"receive: dial 1"_s}));
    answer(dialCall, block, {{one, allow}, {one, block}});
    QVERIFY(areTold({u"ready: ready dial 1"_s}));
}

void TestSimFilterServices::followSimsThatChangeInPlace()
{
    QVERIFY(startScripted({one, other}));
    answer(getAll(dialPath), block, {{other, allow}});
    answer(getAll(incomingPath), block);
    QVERIFY(areTold({u"ready: ready dial 2"_s, u"receive: ready dial 2"_s}));

    // Another SIM in a modem makes both rule sets be read. The count stays the same.
    changeSim(second, u"SubscriberIdentity"_s, u"262033333333333"_s);
    answer(getAll(dialPath), block, {{other, allow}});
    answer(getAll(incomingPath), allow);
    QVERIFY(areTold({u"dial: ready 2"_s, u"receive: ready receive 2"_s}));
    changeSim(second, u"SubscriberIdentity"_s, other);
    answer(getAll(dialPath), block, {{other, allow}});
    answer(getAll(incomingPath), block);
    QVERIFY(areTold({u"dial: ready dial receive 2"_s, u"receive: ready dial 2"_s}));

    // The two SIMs change places, which takes two steps.
    changeSim(first, u"SubscriberIdentity"_s, other);
    answer(getAll(dialPath), block);
    answer(getAll(incomingPath), block);
    QVERIFY(areTold({u"dial: ready 2"_s}));
    changeSim(second, u"SubscriberIdentity"_s, one);
    answer(getAll(dialPath), block, {{one, allow}});
    answer(getAll(incomingPath), allow);
    QVERIFY(areTold({u"dial: ready dial 2"_s, u"receive: ready dial receive 2"_s}));
    QCOMPARE(m_scripted->waiting(), 0);
}

void TestSimFilterServices::answerOthersUntilAHungFilterTimesOut()
{
    QVERIFY(startScripted({one}));
    getAll(dialPath);
    const QDBusMessage incomingCall = getAll(incomingPath);
    for (int i = 0; i < 100; ++i) {
        m_scripted->emitSignal(filterInterface, u"RulesChanged"_s, {}, dialPath);
        QCOMPARE(state(), u"dial receive 1"_s);
    }
    answer(incomingCall, block);
    QVERIFY(areTold({u"receive: dial 1"_s}));
    QCOMPARE(m_scripted->waiting(), 0); // There is no second call while the first is outstanding.

    QVERIFY(logsFailure(dial, u"org.freedesktop.DBus.Error.NoReply"_s));
    QVERIFY(areTold({u"ready: ready dial 1"_s}));
    m_scripted->emitSignal(filterInterface, u"RulesChanged"_s, {}, dialPath);
    answer(getAll(dialPath), block);
    QVERIFY(areTold({u"dial: ready 1"_s}));
}

/// If a fetch fails when the SIMs are not known any more, the next one corrects its result.
void TestSimFilterServices::outliveAStackThatDiesInACall()
{
    QVERIFY(startScripted({one}));
    answer(getAll(dialPath), block);
    getAll(incomingPath);
    QVERIFY(areTold({u"dial: receive 1"_s}));
    m_scripted->emitSignal(filterInterface, u"RulesChanged"_s, {}, dialPath);
    answer(getAll(dialPath), allow);
    QVERIFY(areTold({u"dial: dial receive 1"_s}));
    m_scripted.reset();
    QVERIFY(areTold(
        {u"count: dial receive 0"_s, u"ready: ready dial 0"_s, u"receive: ready dial 0"_s}));
    QVERIFY(logsFailure(incoming, u"org.freedesktop.DBus.Error.NoReply"_s));

    QVERIFY(startTelephony());
    QVERIFY(areTold({u"receive: ready dial receive 0"_s}));
}

void TestSimFilterServices::followSims()
{
    QVERIFY(startTelephony());
    QVERIFY(isDone(u"SetRule"_s, {dial, one, block}));
    QVERIFY(isDone(u"SetDefaultAction"_s, {incoming, block}));
    QVERIFY(startUi());
    QVERIFY(areTold({u"ready: ready dial receive 0"_s}));

    const QStringList inserted{u"count: ready dial receive 1"_s, u"dial: ready receive 1"_s,
                               u"receive: ready 1"_s};
    QVERIFY(isDone(u"InsertSim"_s, {one, first}));
    QVERIFY(areTold(inserted));
    QVERIFY(isDone(u"RemoveSim"_s, {first}));
    QVERIFY(areTold({u"count: ready 0"_s, u"dial: ready dial receive 0"_s,
                     u"receive: ready dial receive 0"_s}));

    // Put another SIM into the same modem, and then the first one again.
    QVERIFY(isDone(u"InsertSim"_s, {other, first}));
    QVERIFY(areTold({u"count: ready dial receive 1"_s, u"receive: ready dial 1"_s}));
    QVERIFY(isDone(u"RemoveSim"_s, {first}));
    QVERIFY(areTold({u"count: ready dial 0"_s, u"receive: ready dial receive 0"_s}));
    QVERIFY(isDone(u"InsertSim"_s, {one, first}));
    QVERIFY(areTold(inserted));

    // Add a second SIM, and then change their order.
    QVERIFY(isDone(u"InsertSim"_s, {other, second}));
    QVERIFY(areTold({u"count: ready 2"_s, u"dial: ready dial 2"_s}));
    QVERIFY(isDone(u"RemoveSim"_s, {first}));
    QVERIFY(isDone(u"InsertSim"_s, {other, first}));
    QVERIFY(isDone(u"RemoveSim"_s, {second}));
    QVERIFY(isDone(u"InsertSim"_s, {one, second}));
    QVERIFY(areTold({u"count: ready dial 1"_s, u"count: ready dial 2"_s, u"count: ready dial 1"_s,
                     u"count: ready dial 2"_s}));
    QVERIFY(isDone(u"RemoveModem"_s, {first}));
    QVERIFY(areTold({u"count: ready dial 1"_s, u"dial: ready 1"_s}));
}

void TestSimFilterServices::followALock()
{
    QVERIFY(startTelephony());
    QVERIFY(isDone(u"SetRule"_s, {dial, one, hangup}));
    QVERIFY(isDone(u"SetDefaultAction"_s, {incoming, block}));
    QVERIFY(isDone(u"InsertSim"_s, {one, first}));
    QVERIFY(isDone(u"InsertSim"_s, {other, second}));
    QVERIFY(startUi());
    QVERIFY(areTold(
        {u"count: dial receive 2"_s, u"ready: ready dial 2"_s, u"receive: ready dial 2"_s}));

    QVERIFY(isDone(u"LockSim"_s, {second}));
    QVERIFY(areTold({u"count: ready dial 1"_s, u"dial: ready 1"_s}));
    QVERIFY(isDone(u"UnlockSim"_s, {second}));
    QVERIFY(areTold({u"count: ready 2"_s, u"dial: ready dial 2"_s}));
    QVERIFY(isDone(u"LockSim"_s, {first}));
    QVERIFY(areTold({u"count: ready dial 1"_s}));
    QVERIFY(isDone(u"UnlockSim"_s, {first}));
    QVERIFY(areTold({u"count: ready dial 2"_s}));
}

void TestSimFilterServices::knowTheSimsAtTheStart()
{
    QVERIFY(startTelephony());
    QVERIFY(isDone(u"InsertSim"_s, {one, first}));
    QVERIFY(isDone(u"SetDefaultAction"_s, {dial, block}));
    QVERIFY(isDone(u"SetDefaultAction"_s, {incoming, hangup}));
    QVERIFY(startUi());
    QVERIFY(areTold({u"count: dial receive 1"_s, u"dial: receive 1"_s, u"ready: ready 1"_s,
                     u"receive: ready 1"_s}));
}

void TestSimFilterServices::followRules_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QString>("blocked");
    QTest::addColumn<QString>("allowed");

    QTest::newRow("dial") << dial << u"dial: ready receive 1"_s << u"dial: ready dial receive 1"_s;
    QTest::newRow("incoming") << incoming << u"receive: ready dial 1"_s
                              << u"receive: ready dial receive 1"_s;
}

void TestSimFilterServices::followRules()
{
    QFETCH(QString, filter);
    QFETCH(QString, blocked);
    QFETCH(QString, allowed);

    QVERIFY(startTelephony());
    QVERIFY(isDone(u"InsertSim"_s, {one, first}));
    QVERIFY(startUi());
    QVERIFY(areTold({u"count: dial receive 1"_s, u"ready: ready dial receive 1"_s}));

    QVERIFY(isDone(u"SetRule"_s, {filter, one, block}));
    QVERIFY(areTold({blocked}));
    QVERIFY(isDone(u"SetRule"_s, {filter, one, allow}));
    QVERIFY(areTold({allowed}));
    QVERIFY(isDone(u"SetDefaultAction"_s, {filter, block}));
    QVERIFY(isDone(u"RemoveRule"_s, {filter, one}));
    QVERIFY(areTold({blocked}));
    QVERIFY(isDone(u"SetDefaultAction"_s, {filter, allow}));
    QVERIFY(areTold({allowed}));
    QVERIFY(isDone(u"SetRules"_s,
                   {filter, QVariant::fromValue(FilterRules{{one, hangup}, {one, allow}})}));
    QVERIFY(areTold({blocked}));
    QVERIFY(isDone(u"SetRules"_s, {filter, QVariant::fromValue(FilterRules())}));
    QVERIFY(areTold({allowed}));
}

void TestSimFilterServices::missTheRulesOfAStackThatComesLater()
{
    QVERIFY(startUi());
    QCOMPARE(state(), u"dial receive 0"_s);

    QVERIFY(startTelephony());
    QVERIFY(areTold({u"ready: ready dial receive 0"_s}));
    QVERIFY(isDone(u"SetDefaultAction"_s, {incoming, block}));
    QVERIFY(isDone(u"InsertSim"_s, {one, first}));
    QVERIFY(areTold({u"count: ready dial receive 1"_s, u"receive: ready dial 1"_s}));

    // Its signals are followed only if it was there at the start.
    QVERIFY(isDone(u"SetDefaultAction"_s, {dial, block}));
    QVERIFY(isDone(u"SetDefaultAction"_s, {incoming, allow}));
    QCOMPARE(state(), u"ready dial 1"_s);
    QVERIFY(isDone(u"InsertSim"_s, {other, second}));
    QVERIFY(areTold({u"count: ready dial 2"_s, u"dial: ready 2"_s, u"receive: ready receive 2"_s}));
}

void TestSimFilterServices::returnWithTheStack()
{
    QVERIFY(startTelephony());
    QVERIFY(isDone(u"InsertSim"_s, {one, first}));
    QVERIFY(isDone(u"SetDefaultAction"_s, {dial, block}));
    QVERIFY(startUi());
    QVERIFY(
        areTold({u"count: dial receive 1"_s, u"dial: receive 1"_s, u"ready: ready receive 1"_s}));

    for (const int signal : {SIGTERM, SIGKILL}) {
        QVERIFY(endStack(signal));
        QVERIFY(areTold({u"count: ready receive 0"_s}));
        QCOMPARE(state(), u"ready receive 0"_s); // The known state is kept.
        QVERIFY(startTelephony());
        QVERIFY(areTold({u"count: ready receive 1"_s}));
        // The rules of the new process are followed as before.
        QVERIFY(isDone(u"SetRule"_s, {dial, one, allow}));
        QVERIFY(areTold({u"dial: ready dial receive 1"_s}));
        QVERIFY(isDone(u"RemoveRule"_s, {dial, one}));
        QVERIFY(areTold({u"dial: ready receive 1"_s}));
    }
}

void TestSimFilterServices::goOnWhenAHungStackDoes()
{
    QVERIFY(startTelephony());
    QVERIFY(isDone(u"SetDefaultAction"_s, {dial, block}));
    QVERIFY(isDone(u"SetDefaultAction"_s, {incoming, block}));
    QVERIFY(startUi());
    QVERIFY(areTold({u"ready: ready dial receive 0"_s}));

    // The UI is notified of the SIM while the stack hangs.
    const qint64 ui = m_ui->processId();
    signalProcess(ui, SIGSTOP);
    QVERIFY(isDone(u"InsertSim"_s, {one, first}));
    signalProcess(m_stack->processId(), SIGSTOP);
    signalProcess(ui, SIGCONT);
    QVERIFY(areTold({u"count: ready dial receive 1"_s}));
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 100; ++i)
        QCOMPARE(state(), u"ready dial receive 1"_s);
    QVERIFY(timer.elapsed() < 10000);

    signalProcess(m_stack->processId(), SIGCONT);
    QVERIFY(areTold({u"dial: ready receive 1"_s, u"receive: ready 1"_s}));
}

/// The start is as fast as with a stack that answers, because nothing waits for it.
void TestSimFilterServices::startBesideAHungStack()
{
    QVERIFY(startTelephony());
    QVERIFY(isDone(u"SetDefaultAction"_s, {dial, block}));
    QVERIFY(isDone(u"InsertSim"_s, {one, first}));
    signalProcess(m_stack->processId(), SIGSTOP);
    QElapsedTimer timer;
    timer.start();
    QVERIFY(startUi());
    QCOMPARE(state(), u"dial receive 0"_s);
    QVERIFY(timer.elapsed() < 20000); // A single blocking call to it would take 25 s.

    signalProcess(m_stack->processId(), SIGCONT);
    QVERIFY(
        areTold({u"count: dial receive 1"_s, u"dial: receive 1"_s, u"ready: ready receive 1"_s}));
    // The process follows the signals of this change.
    QVERIFY(isDone(u"SetDefaultAction"_s, {dial, allow}));
    QVERIFY(areTold({u"dial: ready dial receive 1"_s}));
}

void TestSimFilterServices::endRightAfterManyChanges()
{
    QVERIFY(startTelephony());
    QVERIFY(isDone(u"SetDefaultAction"_s, {dial, block}));
    QVERIFY(isDone(u"SetDefaultAction"_s, {incoming, block}));
    QVERIFY(isDone(u"InsertSim"_s, {one, first}));
    QVERIFY(startUi());
    // A second SIM without a rule shows that all earlier changes have arrived.
    QVERIFY(changeMany(100, 1000));
    QVERIFY(isDone(u"InsertSim"_s, {other, second}));
    QTRY_COMPARE_WITH_TIMEOUT(state(), u"ready dial 2"_s, patience);
    const qint64 memoryBefore = m_ui->residentMemory();
    QVERIFY(isDone(u"RemoveSim"_s, {second}));
    QElapsedTimer timer;
    timer.start();
    QVERIFY(changeMany(1000, 10000));
    QVERIFY(isDone(u"InsertSim"_s, {other, second}));
    QTRY_COMPARE_WITH_TIMEOUT(state(), u"ready dial 2"_s, patience);
    const qint64 memoryAfter = m_ui->residentMemory();
    qInfo("1,000 SIM changes and 10,000 rule changes in %.1f s; memory before: %lld KiB, after: "
          "%lld KiB",
          static_cast<double>(timer.elapsed()) / 1e3, memoryBefore, memoryAfter);
    for (const QString &line : m_ui->takeLog())
        QVERIFY2(line.startsWith(u"qml: told "_s), qPrintable(line));
    QVERIFY(memoryBefore > 0);
    if (!qEnvironmentVariableIsSet("PARLEY_UI_OPTIMIZED"))
        QSKIP("a debug build may keep freed memory");
    QVERIFY(memoryAfter - memoryBefore <= 1024);
}

void TestSimFilterServices::haveNoSimWithTheRealDaemon()
{
    QVERIFY(startRealDaemon());
    QVERIFY(startUi());
    QVERIFY(areTold({u"ready: ready dial receive 0"_s}));
}

void TestSimFilterServices::followTheRealDaemonToAnother()
{
    QVERIFY(startRealDaemon());
    QVERIFY(startUi());
    QVERIFY(areTold({u"ready: ready dial receive 0"_s}));
    QVERIFY(endStack(SIGKILL));
    QCOMPARE(state(), u"ready dial receive 0"_s);
    QVERIFY(startRealDaemon());
    QCOMPARE(state(), u"ready dial receive 0"_s);
    QVERIFY(endStack(SIGKILL));

    // A SIM shows that the process still follows the changes.
    QVERIFY(startTelephony());
    QVERIFY(isDone(u"SetDefaultAction"_s, {dial, block}));
    QVERIFY(isDone(u"InsertSim"_s, {one, first}));
    QVERIFY(areTold({u"count: ready dial receive 1"_s, u"dial: ready receive 1"_s}));
}

void TestSimFilterServices::lockNobodyOutWithoutFilters()
{
    const QString error = u"org.freedesktop.DBus.Error.UnknownObject"_s;
    const QString present = u"Present"_s;
    QVERIFY(startMock());
    QVERIFY(startUi());
    QVERIFY(logsFailure(dial, error) && logsFailure(incoming, error));
    QVERIFY(areTold({u"count: dial receive 2"_s, u"ready: ready dial receive 2"_s}));

    QVERIFY(isDone(second, simManager, u"SetProperty"_s,
                   {present, QVariant::fromValue(QDBusVariant(false))}));
    QVERIFY(logsFailure(dial, error) && logsFailure(incoming, error));
    QVERIFY(areTold({u"count: ready dial receive 1"_s}));
    QVERIFY(isDone(second, simManager, u"SetProperty"_s,
                   {present, QVariant::fromValue(QDBusVariant(true))}));
    QVERIFY(logsFailure(dial, error) && logsFailure(incoming, error));
    QVERIFY(areTold({u"count: ready dial receive 2"_s}));
    QCOMPARE(state(), u"ready dial receive 2"_s);
}

QTEST_GUILESS_MAIN(TestSimFilterServices)

#include "tst_simfilterservices.moc"
