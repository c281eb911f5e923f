// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "literals.h"
#include "serviceundertest.h"
#include "telephonystack.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

#include <csignal>
#include <memory>
#include <utility>

namespace {

const QString control = u"com.nimbo.simulator.Telephony"_s;
const QString manager = u"org.ofono.Manager"_s;
const QString modemInterface = u"org.ofono.Modem"_s;
const QString simManager = u"org.ofono.SimManager"_s;
const QString filterInterface = u"org.cobalt.ofono.mdm.ParleyFilter"_s;

const QString imsi = u"262011234567890"_s;
const QString card = u"8900262011234567890"_s;

/// The reply of GetAll of a filter.
struct Rules
{
    QString signature;
    uint version = 0;
    uint defaultAction = 0;
    FilterRules rules;

    bool operator==(const Rules &other) const
    {
        return signature == other.signature && version == other.version
            && defaultAction == other.defaultAction && rules == other.rules;
    }
};

Rules rulesWith(uint defaultAction, const FilterRules &rules = {})
{
    return {u"uua(su)"_s, 1, defaultAction, rules};
}

const QString callsInterface = u"org.ofono.VoiceCallManager"_s;
const QString messagesInterface = u"org.ofono.MessageManager"_s;
const QString networkInterface = u"org.ofono.NetworkRegistration"_s;
const QString servicesInterface = u"org.ofono.SupplementaryServices"_s;
const QString callInterface = u"org.ofono.VoiceCall"_s;
const QString messageInterface = u"org.ofono.Message"_s;
const QString networkControl = u"com.nimbo.simulator.Network"_s;

const QStringList interfacesWithoutSim{simManager, callsInterface};
const QStringList interfacesWithSim{simManager, callsInterface, u"org.ofono.MessageManager"_s,
                                    u"org.ofono.NetworkRegistration"_s,
                                    u"org.ofono.SupplementaryServices"_s};
const QStringList featuresWithSim{u"sim"_s, u"net"_s, u"sms"_s, u"ussd"_s};

/// Returns the properties of a modem, whose SIM can be read or not.
QVariantMap modemProperties(const QString &serial, bool hasSim)
{
    const QStringList interfaces = hasSim ? interfacesWithSim : interfacesWithoutSim;
    const QStringList features = hasSim ? featuresWithSim : QStringList(u"sim"_s);
    return {{u"Powered"_s, true},
            {u"Online"_s, true},
            {u"Lockdown"_s, false},
            {u"Emergency"_s, false},
            {u"Manufacturer"_s, u"Parley"_s},
            {u"Model"_s, u"Simulated modem"_s},
            {u"Revision"_s, u"1.0"_s},
            {u"Serial"_s, serial},
            {u"Type"_s, u"hardware"_s},
            {u"Features"_s, features},
            {u"Interfaces"_s, interfaces}};
}

const QVariantMap noSim{{u"Present"_s, false}};
const QVariantMap readableSim{{u"Present"_s, true},
                              {u"CardIdentifier"_s, card},
                              {u"PinRequired"_s, u"none"_s},
                              {u"SubscriberIdentity"_s, imsi},
                              {u"MobileCountryCode"_s, u"262"_s},
                              {u"MobileNetworkCode"_s, u"01"_s}};
const QVariantMap lockedSim{
    {u"Present"_s, true}, {u"CardIdentifier"_s, card}, {u"PinRequired"_s, u"pin"_s}};

/// Returns the signals of the modem at \a path whose SIM can be read from now on, or not any more.
QStringList switched(const QString &path, bool hasSim)
{
    const QString changed = path + u" Modem.PropertyChanged "_s;
    const QStringList interfaces = hasSim ? interfacesWithSim : interfacesWithoutSim;
    const QStringList features = hasSim ? featuresWithSim : QStringList(u"sim"_s);
    return {changed + u"Interfaces ["_s + interfaces.join(u',') + u"]"_s,
            changed + u"Features ["_s + features.join(u',') + u"]"_s};
}

/// Returns the value of an argument of a signal.
QString describe(const QVariant &value)
{
    if (value.userType() == qMetaTypeId<QDBusVariant>())
        return describe(value.value<QDBusVariant>().variant());
    if (value.userType() == qMetaTypeId<QDBusObjectPath>())
        return value.value<QDBusObjectPath>().path();
    if (value.userType() == QMetaType::QStringList)
        return u"["_s + value.toStringList().join(u',') + u"]"_s;
    if (value.userType() != qMetaTypeId<QDBusArgument>())
        return value.toString();
    const auto argument = value.value<QDBusArgument>();
    QStringList parts;
    if (argument.currentSignature() == u"a(su)"_s) {
        const auto rules = qdbus_cast<FilterRules>(argument);
        for (const FilterRule &rule : rules)
            parts.append(rule.imsi + u"="_s + QString::number(rule.action));
    } else if (argument.currentSignature() == u"a{sv}"_s) {
        const auto map = qdbus_cast<QVariantMap>(argument);
        for (auto it = map.cbegin(); it != map.cend(); ++it)
            parts.append(it.key());
    } else {
        parts.append(argument.currentSignature());
    }
    return u"["_s + parts.join(u',') + u"]"_s;
}

} // namespace

class TestTelephony : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void offersItsInterfaces_data();
    void offersItsInterfaces();
    void servesAnotherClient();
    void hasTwoModemsAtFirst();
    void insertsASim();
    void insertsIntoTheFirstEmptyModem();
    void addsAModemForASim_data();
    void addsAModemForASim();
    void readsACodeOnlyFromALongIdentity();
    void removesASim();
    void locksAndUnlocksASim();
    void removesAModem();
    void switchesAModem();
    void refusesOtherProperties_data();
    void refusesOtherProperties();
    void changesRules_data();
    void changesRules();
    void replacesRules();
    void changesTheDefaultAction();
    void outlivesItsProcess_data();
    void outlivesItsProcess();
    void keepsEachChange_data();
    void keepsEachChange();
    void putsABrokenFileAside_data();
    void putsABrokenFileAside();
    void goesOnWhereNothingCanBeKept();
    void refusesWhatCannotBe_data();
    void refusesWhatCannotBe();
    void phones();
    void refusesWhileItSendsTones();
    void refusesAsOfonoDoes_data();
    void refusesAsOfonoDoes();
    void sendsAMessage();
    void losesTheNetwork();
    void answersAtThePaceOfTheModem();
    void refusesWhatTheNetworkCannot_data();
    void refusesWhatTheNetworkCannot();
    void refusesOtherSignatures();

    void received(const QDBusMessage &message);

private:
    bool does(const QString &method, const QVariantList &arguments) const;
    QString acts(const QString &method, const QVariantList &arguments) const;
    QString asks(const QString &interface, const QString &method,
                 const QVariantList &arguments) const;
    void follow(const QStringList &interfaces);
    QStringList heard();
    QVariantMap propertiesOf(const QString &path, const QString &interface) const;
    OfonoObjects modems() const;
    SimsByModem sims() const;
    Rules rules(const QString &filter) const;

    std::unique_ptr<ServiceUnderTest> m_stack;
    QStringList m_heard;
};

void TestTelephony::initTestCase()
{
    qputenv("LC_ALL", "ar_EG.UTF-8"); // It has digits of its own, which are not for a bus.
    registerSimTypes();
    registerFilterRuleTypes();
    qDBusRegisterMetaType<OfonoObject>();
    qDBusRegisterMetaType<OfonoObjects>();
}

void TestTelephony::init()
{
    m_stack = std::make_unique<ServiceUnderTest>(ServiceUnderTest::Place{
        u"telephony"_s, ServiceUnderTest::Bus::System, u"org.ofono"_s, u"/"_s, {}});
    QVERIFY(m_stack->start());
    // This gets all signals of these interfaces from all paths.
    for (const QString &interface : {control, manager, modemInterface, simManager, filterInterface})
        QVERIFY(m_stack->bus().connect(u"org.ofono"_s, QString(), interface, QString(), this,
                                       SLOT(received(QDBusMessage))));
}

/// The service still runs and has logged nothing unexpected.
void TestTelephony::cleanup()
{
    QVERIFY(m_stack->isRunning());
    QCOMPARE(m_stack->call(control, u"ListSims"_s).signature(), u"a{s(sb)}"_s);
    QCOMPARE(heard(), QStringList());
    QCOMPARE(m_stack->takeLog(), QStringList());
    m_stack.reset();
}

void TestTelephony::received(const QDBusMessage &message)
{
    QStringList words{message.path(),
                      message.interface().section(u'.', -1) + u"."_s + message.member()};
    const QVariantList arguments = message.arguments();
    for (const QVariant &argument : arguments)
        words.append(describe(argument));
    m_heard.append(words.join(u' '));
}

/// Calls a method of the control. Returns whether it succeeds.
bool TestTelephony::does(const QString &method, const QVariantList &arguments) const
{
    const QDBusMessage reply = m_stack->call(control, method, arguments);
    if (reply.type() != QDBusMessage::ReplyMessage)
        qWarning("%s", qUtf8Printable(reply.errorMessage()));
    return reply.type() == QDBusMessage::ReplyMessage;
}

/// Acts as the network. Returns why that is refused, or nothing if it is not.
QString TestTelephony::acts(const QString &method, const QVariantList &arguments) const
{
    return m_stack->call(networkControl, method, arguments).errorMessage();
}

/// Asks the first modem for something. Returns the path in the reply, if any, or the error.
QString TestTelephony::asks(const QString &interface, const QString &method,
                            const QVariantList &arguments) const
{
    const QDBusMessage reply = m_stack->callAt(u"/ril_0"_s, interface, method, arguments);
    return reply.type() == QDBusMessage::ErrorMessage
        ? reply.errorName()
        : reply.arguments().value(0).value<QDBusObjectPath>().path();
}

/// Hears only the signals of these interfaces from now on.
void TestTelephony::follow(const QStringList &interfaces)
{
    for (const QString &interface : {control, manager, modemInterface, simManager, filterInterface})
        m_stack->bus().disconnect(u"org.ofono"_s, QString(), interface, QString(), this,
                                  SLOT(received(QDBusMessage)));
    for (const QString &interface : interfaces)
        QVERIFY(m_stack->bus().connect(u"org.ofono"_s, QString(), interface, QString(), this,
                                       SLOT(received(QDBusMessage))));
    heard();
}

/// Returns the signals since the last call. Signals that were sent before a reply that has been
/// received have arrived and only have to be delivered.
QStringList TestTelephony::heard()
{
    QCoreApplication::processEvents();
    return std::exchange(m_heard, {});
}

QVariantMap TestTelephony::propertiesOf(const QString &path, const QString &interface) const
{
    const QDBusMessage reply = m_stack->callAt(path, interface, u"GetProperties"_s);
    return reply.signature() == u"a{sv}"_s ? qdbus_cast<QVariantMap>(reply.arguments().at(0))
                                           : QVariantMap{{reply.errorName(), QVariant()}};
}

OfonoObjects TestTelephony::modems() const
{
    const QDBusMessage reply = m_stack->call(manager, u"GetModems"_s);
    return reply.signature() == u"a(oa{sv})"_s ? qdbus_cast<OfonoObjects>(reply.arguments().at(0))
                                               : OfonoObjects();
}

SimsByModem TestTelephony::sims() const
{
    const QDBusMessage reply = m_stack->call(control, u"ListSims"_s);
    return reply.signature() == u"a{s(sb)}"_s ? qdbus_cast<SimsByModem>(reply.arguments().at(0))
                                              : SimsByModem();
}

Rules TestTelephony::rules(const QString &filter) const
{
    const QDBusMessage reply =
        m_stack->callAt(u"/mdm/parleyfilter/"_s + filter, filterInterface, u"GetAll"_s);
    if (reply.signature() != u"uua(su)"_s)
        return {reply.signature(), 0, 0, {}};
    const QVariantList values = reply.arguments();
    return {reply.signature(), values.at(0).toUInt(), values.at(1).toUInt(),
            qdbus_cast<FilterRules>(values.at(2))};
}

void TestTelephony::offersItsInterfaces_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QStringList>("members");

    QTest::newRow("manager") << u"/"_s << manager
                             << QStringList{u".GetModems method - a(oa{sv}) -"_s,
                                            u".ModemAdded signal oa{sv} - -"_s,
                                            u".ModemRemoved signal o - -"_s};
    const QStringList modem{u".GetProperties method - a{sv} -"_s, u".SetProperty method sv - -"_s,
                            u".PropertyChanged signal sv - -"_s};
    const QStringList sim{u".GetProperties method - a{sv} -"_s,
                          u".PropertyChanged signal sv - -"_s};
    QTest::newRow("first modem") << u"/ril_0"_s << modemInterface << modem;
    QTest::newRow("second modem") << u"/ril_1"_s << modemInterface << modem;
    QTest::newRow("first SIM") << u"/ril_0"_s << simManager << sim;
    QTest::newRow("second SIM") << u"/ril_1"_s << simManager << sim;
    const QStringList filter{
        u".GetAll method - uua(su) -"_s, u".DefaultActionChanged signal u - -"_s,
        u".RuleAdded signal su - -"_s,   u".RuleChanged signal su - -"_s,
        u".RuleRemoved signal s - -"_s,  u".RulesChanged signal a(su) - -"_s};
    QTest::newRow("dial filter") << u"/mdm/parleyfilter/dial"_s << filterInterface << filter;
    QTest::newRow("incoming filter")
        << u"/mdm/parleyfilter/incoming"_s << filterInterface << filter;
    const QStringList calls{
        u".CreateMultiparty method - ao -"_s, u".Dial method ss o -"_s,
        u".GetCalls method - a(oa{sv}) -"_s,  u".GetProperties method - a{sv} -"_s,
        u".HangupAll method - - -"_s,         u".HangupMultiparty method - - -"_s,
        u".HoldAndAnswer method - - -"_s,     u".PrivateChat method o ao -"_s,
        u".ReleaseAndAnswer method - - -"_s,  u".ReleaseAndSwap method - - -"_s,
        u".SendTones method s - -"_s,         u".SwapCalls method - - -"_s,
        u".Transfer method - - -"_s,          u".CallAdded signal oa{sv} - -"_s,
        u".CallRemoved signal o - -"_s,       u".PropertyChanged signal sv - -"_s};
    QTest::newRow("calls") << u"/ril_0"_s << callsInterface << calls;
    QTest::newRow("messages") << u"/ril_0"_s << messagesInterface
                              << QStringList{u".GetMessages method - a(oa{sv}) -"_s,
                                             u".GetProperties method - a{sv} -"_s,
                                             u".SendMessage method ss o -"_s,
                                             u".MessageAdded signal oa{sv} - -"_s,
                                             u".MessageRemoved signal o - -"_s};
    QTest::newRow("network") << u"/ril_0"_s << networkInterface
                             << QStringList{u".GetProperties method - a{sv} -"_s,
                                            u".PropertyChanged signal sv - -"_s};
    QTest::newRow("services") << u"/ril_0"_s << servicesInterface
                              << QStringList{u".Cancel method - - -"_s,
                                             u".GetProperties method - a{sv} -"_s,
                                             u".Initiate method s sv -"_s,
                                             u".Respond method s s -"_s,
                                             u".PropertyChanged signal sv - -"_s};
    QTest::newRow("network control") << u"/"_s << networkControl
                                     << QStringList{u".ListCalls method - a(sss) -"_s,
                                                    u".Remote method ss - -"_s,
                                                    u".Ring method ss s -"_s,
                                                    u".SetNetwork method ss - -"_s,
                                                    u".CallChanged signal sss - -"_s,
                                                    u".CallEnded signal sss - -"_s,
                                                    u".Dialled signal ss - -"_s,
                                                    u".MessageSent signal sss - -"_s,
                                                    u".NetworkChanged signal ss - -"_s,
                                                    u".Ready signal s - -"_s,
                                                    u".ServiceRequested signal ss - -"_s,
                                                    u".TonesSent signal ss - -"_s};
    QTest::newRow("control")
        << u"/"_s << control
        << QStringList{u".InsertSim method ss s -"_s,        u".ListSims method - a{s(sb)} -"_s,
                       u".LockSim method s - -"_s,           u".RemoveModem method s - -"_s,
                       u".RemoveRule method ss - -"_s,       u".RemoveSim method s - -"_s,
                       u".SetDefaultAction method su - -"_s, u".SetRule method ssu - -"_s,
                       u".SetRules method sa(su) - -"_s,     u".UnlockSim method s - -"_s,
                       u".DefaultActionSet signal su - -"_s, u".ModemAdded signal s - -"_s,
                       u".ModemRemoved signal s - -"_s,      u".RuleRemoved signal ss - -"_s,
                       u".RuleSet signal ssu - -"_s,         u".RulesSet signal sa(su) - -"_s,
                       u".SimInserted signal ss - -"_s,      u".SimLocked signal s - -"_s,
                       u".SimRemoved signal s - -"_s,        u".SimUnlocked signal s - -"_s};
}

void TestTelephony::offersItsInterfaces()
{
    QFETCH(QString, path);
    QFETCH(QString, interface);
    QFETCH(QStringList, members);

    QCOMPARE(m_stack->busctlAt(path, u"introspect"_s, {interface}),
             QStringList(u"NAME TYPE SIGNATURE RESULT/VALUE FLAGS"_s) + members);
}

void TestTelephony::servesAnotherClient()
{
    const QString dial = u"/mdm/parleyfilter/dial"_s;
    QCOMPARE(m_stack->busctlAt(dial, u"call"_s, {filterInterface, u"GetAll"_s}),
             QStringList(u"uua(su) 1 2 0"_s));
    QCOMPARE(m_stack->busctl(u"call"_s,
                             {control, u"SetRule"_s, u"ssu"_s, u"dial"_s, u"26201"_s, u"3"_s}),
             QStringList(QString()));
    QCOMPARE(m_stack->busctlAt(dial, u"call"_s, {filterInterface, u"GetAll"_s}),
             QStringList(u"uua(su) 1 2 1 \"26201\" 3"_s));
    QCOMPARE(m_stack->busctlAt(u"/ril_0"_s, u"call"_s, {simManager, u"GetProperties"_s}),
             QStringList(u"a{sv} 1 \"Present\" b false"_s));
    const QStringList paths{u"/"_s, dial, u"/ril_0"_s};
    for (const QString &path : paths)
        QCOMPARE(m_stack->busctlAt(path, u"call"_s, {u"org.ofono.Bogus"_s, u"Bogus"_s}).size(), 1);
    rules(u"dial"_s);
    QCOMPARE(heard(),
             QStringList({u"/mdm/parleyfilter/dial ParleyFilter.RuleAdded 26201 3"_s,
                          u"/ Telephony.RuleSet dial 26201 3"_s}));
}

void TestTelephony::hasTwoModemsAtFirst()
{
    const OfonoObjects entries = modems();
    QCOMPARE(entries.size(), 2);
    QCOMPARE(entries.at(0).path.path(), u"/ril_0"_s);
    QCOMPARE(entries.at(0).properties, modemProperties(u"ril_0"_s, false));
    QCOMPARE(entries.at(1).path.path(), u"/ril_1"_s);
    QCOMPARE(entries.at(1).properties, modemProperties(u"ril_1"_s, false));
    for (const QString &path : {u"/ril_0"_s, u"/ril_1"_s}) {
        QCOMPARE(propertiesOf(path, modemInterface), modemProperties(path.mid(1), false));
        QCOMPARE(propertiesOf(path, simManager), noSim);
    }
    QCOMPARE(sims(), SimsByModem({{u"/ril_0"_s, {}}, {u"/ril_1"_s, {}}}));
    QCOMPARE(rules(u"dial"_s), rulesWith(2));
    QCOMPARE(rules(u"incoming"_s), rulesWith(2));
}

void TestTelephony::insertsASim()
{
    const QDBusMessage reply = m_stack->call(control, u"InsertSim"_s, {imsi, u"/ril_1"_s});
    QCOMPARE(reply.arguments(), QVariantList{u"/ril_1"_s});
    QCOMPARE(heard(),
             QStringList({u"/ril_1 SimManager.PropertyChanged Present true"_s,
                          u"/ril_1 SimManager.PropertyChanged CardIdentifier "_s + card,
                          u"/ril_1 SimManager.PropertyChanged PinRequired none"_s,
                          u"/ril_1 SimManager.PropertyChanged SubscriberIdentity "_s + imsi,
                          u"/ril_1 SimManager.PropertyChanged MobileCountryCode 262"_s,
                          u"/ril_1 SimManager.PropertyChanged MobileNetworkCode 01"_s})
                 + switched(u"/ril_1"_s, true)
                 + QStringList(u"/ Telephony.SimInserted /ril_1 "_s + imsi));
    QCOMPARE(propertiesOf(u"/ril_1"_s, simManager), readableSim);
    QCOMPARE(propertiesOf(u"/ril_0"_s, simManager), noSim);
    QCOMPARE(propertiesOf(u"/ril_1"_s, modemInterface), modemProperties(u"ril_1"_s, true));
    QCOMPARE(sims(), SimsByModem({{u"/ril_0"_s, {}}, {u"/ril_1"_s, {imsi, false}}}));
}

void TestTelephony::insertsIntoTheFirstEmptyModem()
{
    for (const QString &path : {u"/ril_0"_s, u"/ril_1"_s}) {
        const QDBusMessage reply = m_stack->call(control, u"InsertSim"_s, {imsi, QString()});
        QCOMPARE(reply.arguments(), QVariantList{path});
        QCOMPARE(heard().constLast(), u"/ Telephony.SimInserted "_s + path + u" "_s + imsi);
    }
    QCOMPARE(m_stack->call(control, u"InsertSim"_s, {imsi, QString()}).errorMessage(),
             u"there is no modem without a SIM"_s);
    QVERIFY(does(u"RemoveSim"_s, {u"/ril_0"_s}));
    QVERIFY(does(u"InsertSim"_s, {u"26202"_s, QString()}));
    QCOMPARE(sims(),
             SimsByModem({{u"/ril_0"_s, {u"26202"_s, false}}, {u"/ril_1"_s, {imsi, false}}}));
    heard();
}

void TestTelephony::addsAModemForASim_data()
{
    QTest::addColumn<QString>("modem");
    QTest::addColumn<QString>("path");

    QTest::newRow("with a slash") << u"/Modem_2"_s << u"/Modem_2"_s;
    QTest::newRow("without one") << u"Modem_2"_s << u"/Modem_2"_s;
    QTest::newRow("above the filters") << u"/mdm"_s << u"/mdm"_s;
}

void TestTelephony::addsAModemForASim()
{
    QFETCH(QString, modem);
    QFETCH(QString, path);

    const QDBusMessage reply = m_stack->call(control, u"InsertSim"_s, {imsi, modem});
    QCOMPARE(reply.arguments(), QVariantList{path});
    const QStringList all = heard();
    QCOMPARE(all.size(), 11);
    QCOMPARE(all.at(0),
             u"/ Manager.ModemAdded "_s + path
                 + u" [Emergency,Features,Interfaces,Lockdown,Manufacturer,Model,Online,Powered,"_s
                 + u"Revision,Serial,Type]"_s);
    QCOMPARE(all.at(1), u"/ Telephony.ModemAdded "_s + path);
    QCOMPARE(all.at(2), path + u" SimManager.PropertyChanged Present true"_s);
    QCOMPARE(propertiesOf(path, modemInterface), modemProperties(path.mid(1), true));
    QCOMPARE(propertiesOf(path, simManager), readableSim);
    QCOMPARE(rules(u"dial"_s), rulesWith(2));
    QCOMPARE(modems().size(), 3);
}

void TestTelephony::readsACodeOnlyFromALongIdentity()
{
    QVERIFY(does(u"InsertSim"_s, {u"2620"_s, u"ril_0"_s}));
    QVERIFY(does(u"InsertSim"_s, {u"26203"_s, u"ril_1"_s}));
    QCOMPARE(propertiesOf(u"/ril_0"_s, simManager),
             QVariantMap({{u"Present"_s, true},
                          {u"CardIdentifier"_s, u"8900000000000002620"_s},
                          {u"PinRequired"_s, u"none"_s},
                          {u"SubscriberIdentity"_s, u"2620"_s}}));
    QCOMPARE(propertiesOf(u"/ril_1"_s, simManager).value(u"MobileCountryCode"_s), u"262"_s);
    QCOMPARE(propertiesOf(u"/ril_1"_s, simManager).value(u"MobileNetworkCode"_s), u"03"_s);
    QCOMPARE(heard().size(), 7 + 9);
}

void TestTelephony::removesASim()
{
    QVERIFY(does(u"InsertSim"_s, {imsi, u"/ril_0"_s}));
    heard();
    QVERIFY(does(u"RemoveSim"_s, {u"ril_0"_s}));
    QCOMPARE(heard(),
             QStringList(u"/ril_0 SimManager.PropertyChanged Present false"_s)
                 + switched(u"/ril_0"_s, false) + QStringList(u"/ Telephony.SimRemoved /ril_0"_s));
    QCOMPARE(propertiesOf(u"/ril_0"_s, simManager), noSim);
    QCOMPARE(modems().size(), 2);
}

void TestTelephony::locksAndUnlocksASim()
{
    QVERIFY(does(u"InsertSim"_s, {imsi, u"/ril_0"_s}));
    heard();
    QVERIFY(does(u"LockSim"_s, {u"ril_0"_s}));
    QCOMPARE(heard(),
             QStringList(u"/ril_0 SimManager.PropertyChanged Present false"_s)
                 + switched(u"/ril_0"_s, false)
                 + QStringList({u"/ril_0 SimManager.PropertyChanged Present true"_s,
                                u"/ril_0 SimManager.PropertyChanged CardIdentifier "_s + card,
                                u"/ril_0 SimManager.PropertyChanged PinRequired pin"_s,
                                u"/ Telephony.SimLocked /ril_0"_s}));
    QCOMPARE(propertiesOf(u"/ril_0"_s, simManager), lockedSim);
    QCOMPARE(sims().value(u"/ril_0"_s), (Sim{imsi, true}));

    QVERIFY(does(u"UnlockSim"_s, {u"/ril_0"_s}));
    QCOMPARE(heard(),
             QStringList({u"/ril_0 SimManager.PropertyChanged PinRequired none"_s,
                          u"/ril_0 SimManager.PropertyChanged SubscriberIdentity "_s + imsi,
                          u"/ril_0 SimManager.PropertyChanged MobileCountryCode 262"_s,
                          u"/ril_0 SimManager.PropertyChanged MobileNetworkCode 01"_s})
                 + switched(u"/ril_0"_s, true) + QStringList(u"/ Telephony.SimUnlocked /ril_0"_s));
    QCOMPARE(propertiesOf(u"/ril_0"_s, simManager), readableSim);
}

void TestTelephony::removesAModem()
{
    QVERIFY(does(u"InsertSim"_s, {imsi, u"/ril_0"_s}));
    heard();
    QVERIFY(does(u"RemoveModem"_s, {u"ril_0"_s}));
    QCOMPARE(
        heard(),
        QStringList({u"/ Manager.ModemRemoved /ril_0"_s, u"/ Telephony.ModemRemoved /ril_0"_s}));
    QCOMPARE(m_stack->callAt(u"/ril_0"_s, simManager, u"GetProperties"_s).errorName(),
             u"org.freedesktop.DBus.Error.UnknownObject"_s);
    QCOMPARE(sims().keys(), QStringList(u"/ril_1"_s));

    QVERIFY(does(u"InsertSim"_s, {imsi, u"/ril_0"_s}));
    QCOMPARE(propertiesOf(u"/ril_0"_s, simManager), readableSim);
    QCOMPARE(heard().size(), 11);
}

void TestTelephony::switchesAModem()
{
    const auto set = [this](const QString &property, bool on) {
        return m_stack
            ->callAt(u"/ril_0"_s, modemInterface, u"SetProperty"_s,
                     {property, QVariant::fromValue(QDBusVariant(on))})
            .errorName();
    };
    const QString changed = u"/ril_0 Modem.PropertyChanged "_s;
    QVERIFY(does(u"InsertSim"_s, {imsi, u"/ril_0"_s}));
    heard();

    QCOMPARE(set(u"Powered"_s, false), QString());
    QCOMPARE(set(u"Powered"_s, false), QString());
    QCOMPARE(heard(),
             QStringList({changed + u"Powered false"_s, changed + u"Online false"_s,
                          changed + u"Interfaces []"_s, changed + u"Features []"_s}));
    QCOMPARE(propertiesOf(u"/ril_0"_s, modemInterface).value(u"Interfaces"_s), QStringList());
    QCOMPARE(propertiesOf(u"/ril_0"_s, simManager).keys(),
             QStringList(u"org.freedesktop.DBus.Error.UnknownMethod"_s));
    QCOMPARE(set(u"Online"_s, true), u"org.ofono.Error.NotAvailable"_s);

    // No signal tells that the SIM is absent.
    QVERIFY(does(u"RemoveSim"_s, {u"/ril_0"_s}));
    QVERIFY(does(u"InsertSim"_s, {imsi, u"/ril_0"_s}));
    QCOMPARE(heard(),
             QStringList({u"/ Telephony.SimRemoved /ril_0"_s,
                          u"/ Telephony.SimInserted /ril_0 "_s + imsi}));

    QCOMPARE(set(u"Powered"_s, true), QString());
    QCOMPARE(set(u"Online"_s, true), QString());
    QCOMPARE(set(u"Online"_s, true), QString());
    QCOMPARE(heard(),
             QStringList(changed + u"Powered true"_s) + switched(u"/ril_0"_s, false)
                 + QStringList(changed + u"Online true"_s) + switched(u"/ril_0"_s, true));
    QCOMPARE(propertiesOf(u"/ril_0"_s, modemInterface), modemProperties(u"ril_0"_s, true));
    QCOMPARE(propertiesOf(u"/ril_0"_s, simManager), readableSim);
}

void TestTelephony::refusesOtherProperties_data()
{
    QTest::addColumn<QString>("property");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("error");

    const QString invalid = u"org.ofono.Error.InvalidArguments"_s;
    QTest::newRow("unknown") << u"Bogus"_s << QVariant(true) << invalid;
    QTest::newRow("read only") << u"Type"_s << QVariant(u"test"_s) << invalid;
    QTest::newRow("power as text") << u"Powered"_s << QVariant(u"false"_s) << invalid;
    QTest::newRow("online as number") << u"Online"_s << QVariant(0) << invalid;
    QTest::newRow("power as list") << u"Powered"_s << QVariant(QVariantList{false}) << invalid;
    QTest::newRow("lockdown") << u"Lockdown"_s << QVariant(true)
                              << u"org.ofono.Error.NotImplemented"_s;
}

void TestTelephony::refusesOtherProperties()
{
    QFETCH(QString, property);
    QFETCH(QVariant, value);
    QFETCH(QString, error);

    const QDBusMessage reply =
        m_stack->callAt(u"/ril_0"_s, modemInterface, u"SetProperty"_s,
                        {property, QVariant::fromValue(QDBusVariant(value))});
    QCOMPARE(reply.errorName(), error);
    QCOMPARE(propertiesOf(u"/ril_0"_s, modemInterface), modemProperties(u"ril_0"_s, false));
}

void TestTelephony::changesRules_data()
{
    QTest::addColumn<QString>("filter");
    QTest::addColumn<QString>("other");

    QTest::newRow("dial") << u"dial"_s << u"incoming"_s;
    QTest::newRow("incoming") << u"incoming"_s << u"dial"_s;
}

void TestTelephony::changesRules()
{
    QFETCH(QString, filter);
    QFETCH(QString, other);

    const QString filterSays = u"/mdm/parleyfilter/"_s + filter + u" ParleyFilter."_s;
    const QString controlSays = u"/ Telephony."_s;
    QVERIFY(does(u"SetRule"_s, {filter, u"26202"_s, 1U}));
    QVERIFY(does(u"SetRule"_s, {filter, u"26201"_s, 4294967295U}));
    QCOMPARE(heard(),
             QStringList({filterSays + u"RuleAdded 26202 1"_s,
                          controlSays + u"RuleSet "_s + filter + u" 26202 1"_s,
                          filterSays + u"RuleAdded 26201 4294967295"_s,
                          controlSays + u"RuleSet "_s + filter + u" 26201 4294967295"_s}));
    QCOMPARE(rules(filter), rulesWith(2, {{u"26202"_s, 1}, {u"26201"_s, 4294967295}}));
    QCOMPARE(rules(other), rulesWith(2));

    QVERIFY(does(u"SetRule"_s, {filter, u"26202"_s, 3U}));
    QVERIFY(does(u"SetRule"_s, {filter, u"26202"_s, 3U})); // This changes nothing.
    QCOMPARE(heard(),
             QStringList({filterSays + u"RuleChanged 26202 3"_s,
                          controlSays + u"RuleSet "_s + filter + u" 26202 3"_s,
                          controlSays + u"RuleSet "_s + filter + u" 26202 3"_s}));
    QCOMPARE(rules(filter), rulesWith(2, {{u"26202"_s, 3}, {u"26201"_s, 4294967295}}));

    QVERIFY(does(u"RemoveRule"_s, {filter, u"26202"_s}));
    QCOMPARE(heard(),
             QStringList({filterSays + u"RuleRemoved 26202"_s,
                          controlSays + u"RuleRemoved "_s + filter + u" 26202"_s}));
    QCOMPARE(rules(filter), rulesWith(2, {{u"26201"_s, 4294967295}}));
    QCOMPARE(m_stack->call(control, u"RemoveRule"_s, {filter, u"26202"_s}).errorMessage(),
             u"there is no "_s + filter + u" rule for 26202"_s);
    QCOMPARE(m_stack->call(control, u"RemoveRule"_s, {other, u"26201"_s}).errorMessage(),
             u"there is no "_s + other + u" rule for 26201"_s);
}

void TestTelephony::replacesRules()
{
    const FilterRules several{{u"2"_s, 1}, {u"1"_s, 2}, {u"2"_s, 3}};
    const QVariant value = QVariant::fromValue(several);
    QVERIFY(does(u"SetRules"_s, {u"incoming"_s, value}));
    QVERIFY(does(u"SetRules"_s, {u"incoming"_s, value})); // This changes nothing.
    QCOMPARE(heard(),
             QStringList({u"/mdm/parleyfilter/incoming ParleyFilter.RulesChanged [2=1,1=2,2=3]"_s,
                          u"/ Telephony.RulesSet incoming [2=1,1=2,2=3]"_s,
                          u"/ Telephony.RulesSet incoming [2=1,1=2,2=3]"_s}));
    QCOMPARE(rules(u"incoming"_s), rulesWith(2, several));
    QCOMPARE(rules(u"dial"_s), rulesWith(2));

    // The first rule counts. Removing the rules removes all of them.
    QVERIFY(does(u"SetRule"_s, {u"incoming"_s, u"2"_s, 7U}));
    QCOMPARE(rules(u"incoming"_s), rulesWith(2, {{u"2"_s, 7}, {u"1"_s, 2}, {u"2"_s, 3}}));
    QVERIFY(does(u"RemoveRule"_s, {u"incoming"_s, u"2"_s}));
    QCOMPARE(rules(u"incoming"_s), rulesWith(2, {{u"1"_s, 2}}));
    heard();

    QVERIFY(does(u"SetRules"_s, {u"incoming"_s, QVariant::fromValue(FilterRules())}));
    QCOMPARE(heard(),
             QStringList({u"/mdm/parleyfilter/incoming ParleyFilter.RulesChanged []"_s,
                          u"/ Telephony.RulesSet incoming []"_s}));
    QCOMPARE(rules(u"incoming"_s), rulesWith(2));
}

void TestTelephony::changesTheDefaultAction()
{
    QVERIFY(does(u"SetDefaultAction"_s, {u"dial"_s, 1U}));
    QVERIFY(does(u"SetDefaultAction"_s, {u"dial"_s, 1U})); // This changes nothing.
    QCOMPARE(heard(),
             QStringList({u"/mdm/parleyfilter/dial ParleyFilter.DefaultActionChanged 1"_s,
                          u"/ Telephony.DefaultActionSet dial 1"_s,
                          u"/ Telephony.DefaultActionSet dial 1"_s}));
    QCOMPARE(rules(u"dial"_s), rulesWith(1));
    QCOMPARE(rules(u"incoming"_s), rulesWith(2));
}

void TestTelephony::outlivesItsProcess_data()
{
    QTest::addColumn<int>("signal");

    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGKILL") << SIGKILL;
}

void TestTelephony::outlivesItsProcess()
{
    QFETCH(int, signal);

    QVERIFY(does(u"InsertSim"_s, {imsi, u"new"_s}));
    QVERIFY(does(u"LockSim"_s, {u"new"_s}));
    QVERIFY(does(u"InsertSim"_s, {u"1"_s, u"ril_1"_s}));
    QVERIFY(does(u"RemoveModem"_s, {u"ril_0"_s}));
    QVERIFY(does(u"SetDefaultAction"_s, {u"incoming"_s, 4294967295U}));
    const FilterRules several{{u"2"_s, 1}, {u"1"_s, 2}, {u"2"_s, 4294967295}};
    QVERIFY(does(u"SetRules"_s, {u"dial"_s, QVariant::fromValue(several)}));
    heard();

    QVERIFY(m_stack->end(signal));
    QVERIFY(m_stack->start());
    QCOMPARE(sims(), SimsByModem({{u"/new"_s, {imsi, true}}, {u"/ril_1"_s, {u"1"_s, false}}}));
    QCOMPARE(modems().size(), 2);
    QCOMPARE(propertiesOf(u"/new"_s, simManager), lockedSim);
    QCOMPARE(rules(u"dial"_s), rulesWith(2, several));
    QCOMPARE(rules(u"incoming"_s), rulesWith(4294967295));

    QVERIFY(does(u"UnlockSim"_s, {u"new"_s}));
    QCOMPARE(heard().constFirst(), u"/new SimManager.PropertyChanged PinRequired none"_s);
    QVERIFY(does(u"RemoveSim"_s, {u"new"_s}));
    QVERIFY(m_stack->end(signal));
    QVERIFY(m_stack->start());
    QCOMPARE(sims(), SimsByModem({{u"/new"_s, {}}, {u"/ril_1"_s, {u"1"_s, false}}}));
    heard();
}

void TestTelephony::keepsEachChange_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariantList>("arguments");

    const QVariant one = QVariant::fromValue(FilterRules{{u"1"_s, 3}});
    QTest::newRow("insert") << u"InsertSim"_s << QVariantList{u"1"_s, QString()};
    QTest::newRow("remove") << u"RemoveSim"_s << QVariantList{u"a"_s};
    QTest::newRow("lock") << u"LockSim"_s << QVariantList{u"a"_s};
    QTest::newRow("unlock") << u"UnlockSim"_s << QVariantList{u"b"_s};
    QTest::newRow("remove modem") << u"RemoveModem"_s << QVariantList{u"b"_s};
    QTest::newRow("add rule") << u"SetRule"_s << QVariantList{u"dial"_s, u"1"_s, 1U};
    QTest::newRow("change rule") << u"SetRule"_s << QVariantList{u"dial"_s, u"2"_s, 1U};
    QTest::newRow("remove rule") << u"RemoveRule"_s << QVariantList{u"dial"_s, u"2"_s};
    QTest::newRow("replace rules") << u"SetRules"_s << QVariantList{u"incoming"_s, one};
    QTest::newRow("default") << u"SetDefaultAction"_s << QVariantList{u"incoming"_s, 1U};
}

void TestTelephony::keepsEachChange()
{
    QFETCH(QString, method);
    QFETCH(QVariantList, arguments);

    QVERIFY(does(u"InsertSim"_s, {imsi, u"a"_s}));
    QVERIFY(does(u"InsertSim"_s, {imsi, u"b"_s}));
    QVERIFY(does(u"LockSim"_s, {u"b"_s}));
    QVERIFY(does(u"SetRule"_s, {u"dial"_s, u"2"_s, 3U}));
    const SimsByModem simsBefore = sims();
    const QList<Rules> rulesBefore{rules(u"dial"_s), rules(u"incoming"_s)};

    QVERIFY(does(method, arguments));
    const SimsByModem simsNow = sims();
    const QList<Rules> rulesNow{rules(u"dial"_s), rules(u"incoming"_s)};
    QVERIFY(simsNow != simsBefore || !(rulesNow == rulesBefore));
    QVERIFY(m_stack->end(SIGKILL));
    QVERIFY(m_stack->start());
    QCOMPARE(sims(), simsNow);
    QCOMPARE(rules(u"dial"_s), rulesNow.at(0));
    QCOMPARE(rules(u"incoming"_s), rulesNow.at(1));
    heard();
}

void TestTelephony::putsABrokenFileAside_data()
{
    QTest::addColumn<QByteArray>("content");

    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no JSON") << QByteArray("\x00\xff{", 3);
    QTest::newRow("cut off") << QByteArray(R"({"modems": {"/ril_0": {"imsi")");
    QTest::newRow("a list") << QByteArray("[]");
    QTest::newRow("nothing") << QByteArray("{}");

    const QByteArray filter = R"({"defaultAction": 2, "rules": []})";
    QTest::newRow("no modems") << QByteArray(R"({"dial": %, "incoming": %})").replace('%', filter);
    QTest::newRow("no incoming filter")
        << QByteArray(R"({"modems": {}, "dial": %})").replace('%', filter);
    const QByteArray modems = R"({"modems": {%}, "dial": #, "incoming": #})";
    for (const char *broken :
         {R"("/ril_0": 5)", R"("/ril_0": {"imsi": 5, "locked": false})",
          R"("/ril_0": {"imsi": "5"})", R"("/ril_0": {"imsi": "5", "locked": 1})",
          R"("/ril_0": {"imsi": "5a", "locked": false})",
          R"("/ril_0": {"imsi": "1234567890123456", "locked": false})",
          R"("/ril_0": {"imsi": "", "locked": true})", R"("ril_0": {"imsi": "5", "locked": false})",
          R"("/": {"imsi": "5", "locked": false})", R"("/a/b": {"imsi": "5", "locked": false})"})
        QTest::newRow(broken) << QByteArray(modems).replace('%', broken).replace('#', filter);
    const QByteArray filters = R"({"modems": {}, "dial": #, "incoming": %})";
    for (const char *broken :
         {R"(5)", R"({"rules": []})", R"({"defaultAction": 2})",
          R"({"defaultAction": -1, "rules": []})", R"({"defaultAction": 4294967296, "rules": []})",
          R"({"defaultAction": "2", "rules": []})", R"({"defaultAction": 2, "rules": {}})",
          R"({"defaultAction": 2, "rules": [5]})",
          R"({"defaultAction": 2, "rules": [{"imsi": "5"}]})",
          R"({"defaultAction": 2, "rules": [{"action": 1}]})",
          R"({"defaultAction": 2, "rules": [{"imsi": "5", "action": 1.5}]})",
          R"({"defaultAction": 2, "rules": [{"imsi": "x", "action": 1}]})"})
        QTest::newRow(broken) << QByteArray(filters).replace('%', broken).replace('#', filter);
}

void TestTelephony::putsABrokenFileAside()
{
    QFETCH(QByteArray, content);

    QVERIFY(m_stack->end(SIGTERM));
    QVERIFY(m_stack->writeState(u"telephony.json"_s, content));
    QVERIFY(m_stack->start());
    QVERIFY(m_stack->logs(u"The SIMs and filter rules cannot be read from "_s));
    QCOMPARE(sims(), SimsByModem({{u"/ril_0"_s, {}}, {u"/ril_1"_s, {}}}));
    QCOMPARE(rules(u"dial"_s), rulesWith(2));
    QCOMPARE(rules(u"incoming"_s), rulesWith(2));
    QFile aside(m_stack->stateFolder() + u"/telephony.json.broken"_s);
    QVERIFY(aside.open(QIODevice::ReadOnly));
    QCOMPARE(aside.readAll(), content);

    QVERIFY(does(u"InsertSim"_s, {imsi, QString()}));
    QVERIFY(m_stack->end(SIGTERM));
    QVERIFY(m_stack->start());
    QCOMPARE(sims().value(u"/ril_0"_s), (Sim{imsi, false}));
    heard();
}

void TestTelephony::goesOnWhereNothingCanBeKept()
{
    QFile inTheWay(m_stack->stateFolder());
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    QVERIFY(does(u"InsertSim"_s, {imsi, QString()}));
    QVERIFY(m_stack->logs(u"The SIMs and filter rules cannot be kept in "_s));
    QCOMPARE(sims().value(u"/ril_0"_s), (Sim{imsi, false}));
    QCOMPARE(heard().size(), 9);
}

void TestTelephony::refusesWhatCannotBe_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QString>("complaint");

    const QStringList noImsis{
        QString(), u"12a"_s, u"-1"_s, u" 1"_s, u"1\n"_s, u"1234567890123456"_s, u"٢٦٢"_s};
    for (const QString &text : noImsis) {
        const QString complaint = u"\""_s + text + u"\" is no IMSI, which is 1 to 15 digits"_s;
        const QByteArray name = text.toUtf8();
        QTest::addRow("insert %s", name.constData())
            << u"InsertSim"_s << QVariantList{text, u"/ril_1"_s} << complaint;
        QTest::addRow("rule for %s", name.constData())
            << u"SetRule"_s << QVariantList{u"dial"_s, text, 1U} << complaint;
        QTest::addRow("no rule for %s", name.constData())
            << u"RemoveRule"_s << QVariantList{u"dial"_s, text} << complaint;
        QTest::addRow("rules for %s", name.constData())
            << u"SetRules"_s
            << QVariantList{u"dial"_s, QVariant::fromValue(FilterRules{{u"1"_s, 1}, {text, 1}})}
            << complaint;
    }
    for (const QString &name : {u"a b"_s, u"/"_s, u"//"_s, u"/a/b"_s, u"a-b"_s, u"/ä"_s})
        QTest::addRow("modem %s", name.toUtf8().constData())
            << u"InsertSim"_s << QVariantList{imsi, name}
            << u"\""_s + name + u"\" cannot be a modem: its name has letters, digits and _"_s;
    QTest::newRow("insert into an occupied modem")
        << u"InsertSim"_s << QVariantList{imsi, u"ril_0"_s}
        << u"there is a SIM in /ril_0 already"_s;
    QTest::newRow("unlock what is not locked")
        << u"UnlockSim"_s << QVariantList{u"ril_0"_s} << u"the SIM in /ril_0 is not locked"_s;
    QTest::newRow("lock what is locked")
        << u"LockSim"_s << QVariantList{u"/locked"_s} << u"the SIM in /locked is locked"_s;
    for (const QString &method : {u"RemoveSim"_s, u"LockSim"_s, u"UnlockSim"_s}) {
        const QByteArray name = method.toUtf8();
        QTest::addRow("%s of an empty modem", name.constData())
            << method << QVariantList{u"ril_1"_s} << u"there is no SIM in /ril_1"_s;
        QTest::addRow("%s of no modem", name.constData())
            << method << QVariantList{u"/ril_7"_s} << u"there is no modem /ril_7"_s;
        QTest::addRow("%s of nothing", name.constData())
            << method << QVariantList{QString()} << u"there is no modem /"_s;
    }
    QTest::newRow("remove no modem")
        << u"RemoveModem"_s << QVariantList{u"ril_7"_s} << u"there is no modem /ril_7"_s;

    const QString noFilter = u"there is no filter \"both\", only dial and incoming"_s;
    QTest::newRow("rule of no filter")
        << u"SetRule"_s << QVariantList{u"both"_s, imsi, 1U} << noFilter;
    QTest::newRow("no rule of no filter")
        << u"RemoveRule"_s << QVariantList{u"both"_s, imsi} << noFilter;
    QTest::newRow("rules of no filter")
        << u"SetRules"_s << QVariantList{u"both"_s, QVariant::fromValue(FilterRules())} << noFilter;
    QTest::newRow("default of no filter")
        << u"SetDefaultAction"_s << QVariantList{u"both"_s, 1U} << noFilter;
}

void TestTelephony::refusesWhatCannotBe()
{
    QFETCH(QString, method);
    QFETCH(QVariantList, arguments);
    QFETCH(QString, complaint);

    QVERIFY(does(u"InsertSim"_s, {u"5"_s, u"/ril_0"_s}));
    QVERIFY(does(u"InsertSim"_s, {u"6"_s, u"/locked"_s}));
    QVERIFY(does(u"LockSim"_s, {u"/locked"_s}));
    heard();
    const SimsByModem before = sims();

    const QDBusMessage reply = m_stack->call(control, method, arguments);
    QCOMPARE(reply.errorName(), u"org.freedesktop.DBus.Error.InvalidArgs"_s);
    QCOMPARE(reply.errorMessage(), complaint);
    QCOMPARE(sims(), before);
    QCOMPARE(rules(u"dial"_s), rulesWith(2));
    QCOMPARE(rules(u"incoming"_s), rulesWith(2));
}

/// A call on the bus, from Dial to its end.
void TestTelephony::phones()
{
    QVERIFY(does(u"InsertSim"_s, {imsi, QString()}));
    follow({callsInterface, callInterface});
    QCOMPARE(asks(callsInterface, u"Dial"_s, {u"5551234"_s, QString()}), u"/ril_0/voicecall01"_s);
    QCOMPARE(propertiesOf(u"/ril_0/voicecall01"_s, callInterface),
             QVariantMap({{u"State"_s, u"dialing"_s},
                          {u"LineIdentification"_s, u"5551234"_s},
                          {u"Name"_s, QString()},
                          {u"Multiparty"_s, false},
                          {u"RemoteHeld"_s, false},
                          {u"RemoteMultiparty"_s, false},
                          {u"Emergency"_s, false}}));
    QTRY_VERIFY(m_heard.contains(u"/ril_0/voicecall01 VoiceCall.PropertyChanged State alerting"_s));
    QCOMPARE(acts(u"Remote"_s, {u"answer"_s, QString()}), QString());
    QTRY_VERIFY(m_heard.contains(u"/ril_0/voicecall01 VoiceCall.PropertyChanged State active"_s));
    const QString start =
        propertiesOf(u"/ril_0/voicecall01"_s, callInterface).value(u"StartTime"_s).toString();
    const QRegularExpression form(
        u"^[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\+0000$"_s);
    QVERIFY2(form.match(start).hasMatch(), qUtf8Printable(start));
    QCOMPARE(asks(callsInterface, u"SendTones"_s, {u"1"_s}), QString());
    QCOMPARE(m_stack->callAt(u"/ril_0/voicecall01"_s, callInterface, u"Hangup"_s).type(),
             QDBusMessage::ReplyMessage);
    QTRY_COMPARE(m_heard.constLast(), u"/ril_0 VoiceCallManager.CallRemoved /ril_0/voicecall01"_s);
    const QStringList all = heard();
    QCOMPARE(all.mid(all.size() - 3),
             QStringList({u"/ril_0/voicecall01 VoiceCall.DisconnectReason local"_s,
                          u"/ril_0/voicecall01 VoiceCall.PropertyChanged State disconnected"_s,
                          u"/ril_0 VoiceCallManager.CallRemoved /ril_0/voicecall01"_s}));
    QCOMPARE(m_stack->callAt(u"/ril_0/voicecall01"_s, callInterface, u"Hangup"_s).errorName(),
             u"org.freedesktop.DBus.Error.UnknownObject"_s);
}

/// A tone takes a second. When nobody hears the rest, it is over.
void TestTelephony::refusesWhileItSendsTones()
{
    QVERIFY(does(u"InsertSim"_s, {imsi, QString()}));
    QCOMPARE(asks(callsInterface, u"Dial"_s, {u"5551234"_s, QString()}), u"/ril_0/voicecall01"_s);
    QCOMPARE(acts(u"Remote"_s, {u"answer"_s, QString()}), QString());
    QDBusMessage sendTones =
        QDBusMessage::createMethodCall(u"org.ofono"_s, u"/ril_0"_s, callsInterface, u"SendTones"_s);
    sendTones.setArguments({QString(u'1').repeated(60)});
    const QDBusPendingCall tones = m_stack->bus().asyncCall(sendTones);
    const QString refusal = u"org.ofono.Error.InProgress"_s;
    QCOMPARE(asks(callsInterface, u"SendTones"_s, {u"2"_s}), refusal);
    QCOMPARE(asks(callsInterface, u"HangupAll"_s, {}), refusal);
    QCOMPARE(asks(callsInterface, u"CreateMultiparty"_s, {}), refusal);
    QCOMPARE(asks(callsInterface, u"Dial"_s, {u"112"_s, QString()}), refusal);
    QCOMPARE(m_stack->callAt(u"/ril_0/voicecall01"_s, callInterface, u"Hangup"_s).errorName(),
             refusal);
    QVERIFY(!tones.isFinished());
    QCOMPARE(acts(u"Remote"_s, {u"hangup"_s, QString()}), QString());
    QTRY_VERIFY(tones.isFinished());
    QCOMPARE(tones.error().name(), u"org.ofono.Error.Failed"_s);
    QCOMPARE(asks(callsInterface, u"HangupAll"_s, {}), QString());
    heard();
}

void TestTelephony::refusesAsOfonoDoes_data()
{
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QString>("error");

    const auto row = [](const char *name, const QString &interface, const QString &method,
                        const QVariantList &arguments, const QString &error) {
        QTest::newRow(name) << interface << method << arguments << error;
    };
    const QString call = u"/ril_0/voicecall01"_s;
    const QVariant path = QVariant::fromValue(QDBusObjectPath(call));
    row("no number", callsInterface, u"Dial"_s, {u"55a"_s, QString()}, u"InvalidFormat"_s);
    row("empty number", callsInterface, u"Dial"_s, {QString(), QString()}, u"InvalidFormat"_s);
    row("request", callsInterface, u"Dial"_s, {u"*100#"_s, QString()}, u"InvalidFormat"_s);
    row("own number", callsInterface, u"Dial"_s, {u"555"_s, u"bogus"_s}, u"InvalidFormat"_s);
    for (const QString &method : {u"SwapCalls"_s, u"ReleaseAndAnswer"_s, u"HoldAndAnswer"_s,
                                  u"ReleaseAndSwap"_s, u"CreateMultiparty"_s, u"Transfer"_s})
        row(qPrintable(method), callsInterface, method, {}, u"Failed"_s);
    row("no such call", callsInterface, u"PrivateChat"_s, {path}, u"NotFound"_s);
    row("tones without a call", callsInterface, u"SendTones"_s, {u"1"_s}, u"Failed"_s);
    row("no tones", callsInterface, u"SendTones"_s, {u"x"_s}, u"InvalidFormat"_s);
    row("message to nobody", messagesInterface, u"SendMessage"_s, {u"me"_s, u"Hi"_s},
        u"InvalidFormat"_s);
    row("no request", servicesInterface, u"Initiate"_s, {u"100"_s}, u"InvalidFormat"_s);
    row("unknown request", servicesInterface, u"Initiate"_s, {u"*109#"_s}, u"NotSupported"_s);
    row("reply to nothing", servicesInterface, u"Respond"_s, {u"1"_s}, u"NotActive"_s);
    row("end of nothing", servicesInterface, u"Cancel"_s, {}, u"NotActive"_s);
}

void TestTelephony::refusesAsOfonoDoes()
{
    QFETCH(QString, interface);
    QFETCH(QString, method);
    QFETCH(QVariantList, arguments);
    QFETCH(QString, error);

    QVERIFY(does(u"InsertSim"_s, {imsi, QString()}));
    heard();
    QCOMPARE(asks(interface, method, arguments), u"org.ofono.Error."_s + error);
}

void TestTelephony::sendsAMessage()
{
    QVERIFY(does(u"InsertSim"_s, {imsi, QString()}));
    follow({messagesInterface, messageInterface, networkControl});
    QCOMPARE(asks(messagesInterface, u"SendMessage"_s, {u"5551234"_s, u"On my way"_s}),
             u"/ril_0/message_1"_s);
    QCOMPARE(propertiesOf(u"/ril_0/message_1"_s, messageInterface),
             QVariantMap({{u"State"_s, u"pending"_s}}));
    const QString removed = u"/ril_0 MessageManager.MessageRemoved "_s;
    QTRY_VERIFY(m_heard.contains(removed + u"/ril_0/message_1"_s));
    QCOMPARE(heard(),
             QStringList({u"/ril_0 MessageManager.MessageAdded /ril_0/message_1 [State]"_s,
                          u"/ Network.MessageSent /ril_0 5551234 On my way"_s,
                          u"/ril_0/message_1 Message.PropertyChanged State sent"_s,
                          removed + u"/ril_0/message_1"_s}));

    // One that waits for the network can be taken back.
    QCOMPARE(acts(u"SetNetwork"_s, {u"lost"_s, QString()}), QString());
    QCOMPARE(asks(messagesInterface, u"SendMessage"_s, {u"5551234"_s, u"Later"_s}),
             u"/ril_0/message_2"_s);
    QCOMPARE(m_stack->callAt(u"/ril_0/message_2"_s, messageInterface, u"Cancel"_s).type(),
             QDBusMessage::ReplyMessage);
    QTRY_VERIFY(m_heard.contains(removed + u"/ril_0/message_2"_s));
    QVERIFY(heard().contains(u"/ril_0/message_2 Message.PropertyChanged State failed"_s));
}

void TestTelephony::losesTheNetwork()
{
    QVERIFY(does(u"InsertSim"_s, {imsi, QString()}));
    const QVariantMap registered = propertiesOf(u"/ril_0"_s, networkInterface);
    QCOMPARE(registered.value(u"Status"_s), u"registered"_s);
    QCOMPARE(registered.value(u"Name"_s), u"Nimbo Mobile"_s);
    QCOMPARE(acts(u"Ring"_s, {u"5551234"_s, QString()}), QString());
    follow({networkInterface, callInterface});
    QCOMPARE(acts(u"SetNetwork"_s, {u"lost"_s, u"ril_0"_s}), QString());
    QTRY_VERIFY(m_heard.contains(u"/ril_0/voicecall01 VoiceCall.DisconnectReason network"_s));
    QTRY_VERIFY(m_heard.contains(u"/ril_0 NetworkRegistration.PropertyChanged Status searching"_s));
    QCOMPARE(asks(callsInterface, u"Dial"_s, {u"5551234"_s, QString()}),
             u"org.ofono.Error.Failed"_s);
    QCOMPARE(asks(callsInterface, u"Dial"_s, {u"112"_s, QString()}), u"/ril_0/voicecall01"_s);
    QCOMPARE(propertiesOf(u"/ril_0/voicecall01"_s, callInterface).value(u"Emergency"_s), true);
    QCOMPARE(asks(callsInterface, u"HangupAll"_s, {}), QString());
    heard();
}

/// A slow modem answers, and one that hangs does so when it is mended.
void TestTelephony::answersAtThePaceOfTheModem()
{
    QVERIFY(does(u"InsertSim"_s, {imsi, QString()}));
    QCOMPARE(acts(u"SetNetwork"_s, {u"slow"_s, QString()}), QString());
    QCOMPARE(asks(callsInterface, u"Dial"_s, {u"5551234"_s, QString()}), u"/ril_0/voicecall01"_s);
    QCOMPARE(acts(u"SetNetwork"_s, {u"hang"_s, QString()}), QString());
    const QDBusMessage hangUp =
        QDBusMessage::createMethodCall(u"org.ofono"_s, u"/ril_0"_s, callsInterface, u"HangupAll"_s);
    const QDBusPendingCall pending = m_stack->bus().asyncCall(hangUp);
    QCOMPARE(propertiesOf(u"/ril_0/voicecall01"_s, callInterface).isEmpty(), false);
    QVERIFY(!pending.isFinished());
    QCOMPARE(acts(u"SetNetwork"_s, {u"back"_s, QString()}), QString());
    QTRY_VERIFY(pending.isFinished());
    QVERIFY(!pending.isError());
    heard();
}

void TestTelephony::refusesWhatTheNetworkCannot_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QString>("complaint");

    const auto row = [](const char *name, const QString &method, const QVariantList &arguments,
                        const QString &complaint) {
        QTest::newRow(name) << method << arguments << complaint;
    };
    const QString none;
    row("ring no number", u"Ring"_s, {u"me"_s, none},
        u"\"me\" is no number; withheld stands for none"_s);
    row("ring no modem", u"Ring"_s, {u"5551234"_s, u"ril_7"_s}, u"there is no modem /ril_7"_s);
    row("ring without a SIM", u"Ring"_s, {u"5551234"_s, u"ril_1"_s},
        u"/ril_1 is not in the network"_s);
    row("ring twice", u"Ring"_s, {u"5551234"_s, none}, u"/ril_0 takes no call now"_s);
    row("answer what comes in", u"Remote"_s, {u"answer"_s, none},
        u"there is no call for which the other side can answer"_s);
    row("hang up another", u"Remote"_s, {u"hangup"_s, u"5551234"_s},
        u"there is no call for which the other side can hangup"_s);
    row("no action", u"Remote"_s, {u"sing"_s, none},
        u"the other side can answer, be busy, hangup, hold and resume"_s);
    row("no condition", u"SetNetwork"_s, {u"fine"_s, none},
        u"the network can be lost, refuse and be back; a modem can be slow, hang and be gone"_s);
    row("network of no modem", u"SetNetwork"_s, {u"lost"_s, u"ril_7"_s},
        u"there is no modem /ril_7"_s);
}

void TestTelephony::refusesWhatTheNetworkCannot()
{
    QFETCH(QString, method);
    QFETCH(QVariantList, arguments);
    QFETCH(QString, complaint);

    QVERIFY(does(u"InsertSim"_s, {imsi, u"ril_0"_s}));
    QCOMPARE(acts(u"Ring"_s, {u"withheld"_s, QString()}), QString());
    QCOMPARE(acts(method, arguments), complaint);
    QCOMPARE(m_stack->call(networkControl, u"ListCalls"_s).signature(), u"a(sss)"_s);
    heard();
}

void TestTelephony::refusesOtherSignatures()
{
    const auto fails = [](const QDBusMessage &reply) {
        return reply.type() == QDBusMessage::ErrorMessage;
    };
    QVERIFY(fails(m_stack->call(control, u"InsertSim"_s, {imsi})));
    QVERIFY(fails(m_stack->call(control, u"InsertSim"_s, {1U, u"ril_0"_s})));
    QVERIFY(fails(m_stack->call(control, u"SetRule"_s, {u"dial"_s, imsi, -1})));
    QVERIFY(fails(m_stack->call(control, u"SetRules"_s, {u"dial"_s, QStringList(imsi)})));
    QVERIFY(fails(m_stack->callAt(u"/mdm/parleyfilter/dial"_s, filterInterface, u"GetAll"_s, {1})));
    QVERIFY(fails(m_stack->callAt(u"/ril_0"_s, modemInterface, u"SetProperty"_s, {u"Online"_s})));
    QVERIFY(fails(
        m_stack->callAt(u"/ril_0"_s, modemInterface, u"SetProperty"_s, {u"Powered"_s, false})));
    QVERIFY(fails(m_stack->call(manager, u"GetModems"_s, {u"all"_s})));
    QCOMPARE(sims(), SimsByModem({{u"/ril_0"_s, {}}, {u"/ril_1"_s, {}}}));
}

QTEST_GUILESS_MAIN(TestTelephony)

#include "tst_telephony.moc"
