// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "childprocess.h"
#include "literals.h"
#include "messagelog.h"
#include "privatebus.h"

#include <qofonosimwatcher.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDebug>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>
#include <utility>

#include <sys/types.h>

namespace {

const QString ofono = u"org.ofono"_s;
const QString one = u"310150000000000"_s;
const QString other = u"310150000000001"_s;

constexpr int patience = 30000;

} // namespace

/// The SIM watcher with the real oFono, which has no modem here, and with a mock of it that others
/// have written and that has as many as a test wants.
class TestOfono : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void knowsThatThereIsNoSim();
    void followsTheDaemon();
    void listsTheSims();
    void followsTheSims();
    void losesTheSimsWithTheirService();

private:
    /// These functions wait until oFono is on the bus, or has left it.
    bool start(const QString &program, const QStringList &arguments);
    bool kill();
    bool startDaemon();
    bool startMock();
    bool isDone(const QString &path, const QString &interface, const QString &method,
                const QVariantList &arguments);
    bool addModem(const QString &name);
    bool changeSim(const QString &path, const QString &name, const QVariant &value);
    void watch();
    QStringList identities() const;
    QStringList takeEvents() { return std::exchange(m_events, {}); }

    QTemporaryDir m_folder;
    PrivateBus m_bus;
    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<ChildProcess> m_process;
    std::unique_ptr<QOfonoSimWatcher> m_watcher;
    QStringList m_events;
};

void TestOfono::initTestCase()
{
    QVERIFY(m_bus.start(m_folder.path(), u"system"_s));
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address().toUtf8());
}

void TestOfono::init()
{
    m_log.reset();
    m_log = std::make_unique<MessageLog>();
    m_events.clear();
}

void TestOfono::cleanup()
{
    m_watcher.reset();
    if (m_process && m_process->state() != QProcess::NotRunning)
        QVERIFY(kill());
    m_process.reset();
    QCOMPARE(m_log->take().join(u'\n'), QString());
}

bool TestOfono::start(const QString &program, const QStringList &arguments)
{
    m_process = std::make_unique<ChildProcess>();
    m_process->start(program, arguments);
    return QTest::qWaitFor(
        [] { return QDBusConnection::systemBus().interface()->isServiceRegistered(ofono).value(); },
        patience);
}

bool TestOfono::kill()
{
    m_process->kill();
    return m_process->waitForFinished(patience)
        && QTest::qWaitFor(
               [] {
                   const auto *bus = QDBusConnection::systemBus().interface();
                   return !bus->isServiceRegistered(ofono).value();
               },
               patience);
}

/// The plugins that look for modems are left out, so that those of this machine are not used.
bool TestOfono::startDaemon()
{
    return start(u"/usr/sbin/ofonod"_s, {u"-n"_s, u"--noplugin=udevng,phonesim"_s});
}

/// Starts the mock with one modem, "/ril_0".
bool TestOfono::startMock()
{
    return start(u"/usr/bin/python3"_s,
                 {u"-m"_s, u"dbusmock"_s, u"--system"_s, u"--template"_s, u"ofono"_s});
}

bool TestOfono::isDone(const QString &path, const QString &interface, const QString &method,
                       const QVariantList &arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(ofono, path, interface, method);
    call.setArguments(arguments);
    const QDBusMessage reply = QDBusConnection::systemBus().call(call, QDBus::Block, patience);
    if (reply.type() == QDBusMessage::ReplyMessage)
        return true;
    qWarning() << method << reply.errorName() << reply.errorMessage();
    return false;
}

bool TestOfono::addModem(const QString &name)
{
    return isDone(u"/"_s, u"org.freedesktop.DBus.Mock"_s, u"AddModem"_s, {name, QVariantMap()});
}

bool TestOfono::changeSim(const QString &path, const QString &name, const QVariant &value)
{
    return isDone(path, u"org.ofono.SimManager"_s, u"SetProperty"_s,
                  {name, QVariant::fromValue(QDBusVariant(value))});
}

void TestOfono::watch()
{
    m_watcher = std::make_unique<QOfonoSimWatcher>();
    m_watcher->setRequireSubscriberIdentity(true);
    connect(m_watcher.get(), &QOfonoSimWatcher::validChanged, this,
            [this] { m_events.append(m_watcher->isValid() ? u"valid"_s : u"invalid"_s); });
    connect(m_watcher.get(), &QOfonoSimWatcher::presentSimListChanged, this,
            [this] { m_events.append(u"sims: "_s + identities().join(u' ')); });
}

QStringList TestOfono::identities() const
{
    QStringList all;
    const auto sims = m_watcher->presentSimList();
    for (const auto &sim : sims)
        all.append(sim->subscriberIdentity());
    return all;
}

void TestOfono::knowsThatThereIsNoSim()
{
    QVERIFY(startDaemon());
    watch();
    QVERIFY(!m_watcher->isValid());
    QTRY_VERIFY(m_watcher->isValid());
    QCOMPARE(m_watcher->presentSimCount(), 0);
    QCOMPARE(takeEvents(), QStringList(u"valid"_s));
}

void TestOfono::followsTheDaemon()
{
    QVERIFY(startDaemon());
    watch();
    QTRY_VERIFY(m_watcher->isValid());
    QVERIFY(kill());
    QTRY_VERIFY(!m_watcher->isValid());
    QVERIFY(startDaemon());
    QTRY_VERIFY(m_watcher->isValid());
    QCOMPARE(takeEvents(), QStringList({u"valid"_s, u"invalid"_s, u"valid"_s}));
}

void TestOfono::listsTheSims()
{
    QVERIFY(startMock());
    QVERIFY(addModem(u"ril_1"_s));
    watch();
    QTRY_VERIFY(m_watcher->isValid());
    QCOMPARE(m_watcher->presentSimCount(), 2);
    QCOMPARE(identities(), QStringList({one, other}));
}

void TestOfono::followsTheSims()
{
    QVERIFY(startMock());
    watch();
    QTRY_VERIFY(m_watcher->isValid());
    QVERIFY(addModem(u"ril_1"_s));
    QTRY_COMPARE(identities(), QStringList({one, other}));
    QVERIFY(changeSim(u"/ril_0"_s, u"Present"_s, false));
    QTRY_COMPARE(identities(), QStringList(other));
    QVERIFY(changeSim(u"/ril_0"_s, u"Present"_s, true));
    QTRY_COMPARE(identities(), QStringList({one, other}));
    QVERIFY(changeSim(u"/ril_1"_s, u"SubscriberIdentity"_s, u"310150999999999"_s));
    QTRY_COMPARE(identities(), QStringList({one, u"310150999999999"_s}));
    QStringList events = takeEvents();
    QVERIFY(events.removeOne(u"valid"_s));
    QCOMPARE(
        events,
        QStringList({u"sims: "_s + one, u"sims: %1 %2"_s.arg(one, other), u"sims: "_s + other,
                     u"sims: %1 %2"_s.arg(one, other), u"sims: %1 310150999999999"_s.arg(one)}));
    QVERIFY(m_watcher->isValid());
}

void TestOfono::losesTheSimsWithTheirService()
{
    QVERIFY(startMock());
    watch();
    QTRY_COMPARE(identities(), QStringList(one));
    takeEvents();
    QVERIFY(kill());
    QTRY_VERIFY(!m_watcher->isValid());
    QTRY_COMPARE(m_events.size(), 2);
    QCOMPARE(takeEvents(), QStringList({u"invalid"_s, u"sims: "_s}));
    QVERIFY(startDaemon());
    QTRY_VERIFY(m_watcher->isValid());
    QCOMPARE(takeEvents(), QStringList(u"valid"_s));
}

QTEST_GUILESS_MAIN(TestOfono)

#include "tst_ofono.moc"
