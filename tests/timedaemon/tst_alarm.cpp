// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "alarmprocess.h"
#include "alarmscene.h"
#include "literals.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDateTime>
#include <QFile>
#include <QLocale>
#include <QTest>

#include <csignal>
#include <memory>
#include <utility>

namespace {

const QString name = u"com.nimbo.parley.alarm"_s;
const QString nowhere = u"unix:path=/nowhere"_s;

} // namespace

/// The program as other processes see it.
class TestAlarm : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void callsWhomItShows_data();
    void callsWhomItShows();
    void dismissesWhatWasClosed();
    void closesItsNotificationsWhenItEnds_data();
    void closesItsNotificationsWhenItEnds();
    void runsOnceInASession();
    void needsBothBuses_data();
    void needsBothBuses();
    void endsWithItsBuses_data();
    void endsWithItsBuses();
    void explainsItself_data();
    void explainsItself();
    void needsNoGui();

private:
    void showOne();

    AlarmScene m_scene;
    std::unique_ptr<AlarmProcess> m_process;
};

void TestAlarm::initTestCase()
{
    QVERIFY(m_scene.start());
}

void TestAlarm::init()
{
    m_scene.begin();
    m_process = std::make_unique<AlarmProcess>(m_scene.sessionBus().address(),
                                               m_scene.systemBus().address());
}

void TestAlarm::cleanup()
{
    const QStringList unexpected = m_scene.end();
    m_process->stop();
    QCOMPARE((unexpected + m_process->takeLog()).join(u'\n'), QString());
    // The program ends a moment after the sandbox that it was started in.
    QTRY_VERIFY(!QDBusConnection::sessionBus().interface()->isServiceRegistered(name).value());
}

/// Starts the process, which shows the alarm with the cookie 1 as the notification 7.
void TestAlarm::showOne()
{
    m_process->start();
    m_scene.answerCapabilities();
    m_scene.list({1});
    m_scene.get(1, AlarmScene::alarm());
    m_scene.show(7);
}

void TestAlarm::callsWhomItShows_data()
{
    QTest::addColumn<QDateTime>("dueTime");
    QTest::addColumn<QStringList>("catalogues");
    QTest::addColumn<QString>("appName");
    QTest::addColumn<QString>("due");
    QTest::addColumn<QStringList>("actions");

    const QDateTime due = QDateTime::currentDateTime().addDays(-2);
    const QLocale locale(QLocale::Finnish, QLocale::Finland);
    const QString time = locale.toString(due, QLocale::ShortFormat);
    QTest::newRow("in engineering English")
        << due << QStringList(u"/parley_eng_en.qm"_s) << u"Phone"_s << u"\nDue since "_s + time
        << QStringList{u"call"_s, u"Call"_s, u"snooze"_s, u"In 10 minutes"_s};
    QTest::newRow("in the user's language")
        << due << QStringList(u"/parley-fi.qm"_s) << u"Puhelin"_s << u"\nMääräaika oli "_s + time
        << QStringList{u"call"_s, u"Soita"_s, u"snooze"_s, u"10 minuutin kuluttua"_s};
    QTest::newRow("without a catalogue")
        << due << QStringList() << u"parley-ap-name"_s << u"\nparley-la-due_since"_s
        << QStringList{u"call"_s, u"parley-bt-call"_s, u"snooze"_s, u"parley-bt-in_10_minutes"_s};
}

void TestAlarm::callsWhomItShows()
{
    QFETCH(QDateTime, dueTime);
    QFETCH(QStringList, catalogues);
    if (!Sandbox::isPossible())
        QSKIP("bwrap cannot make a sandbox here.");

    const QTemporaryDir folder;
    for (const QString &file : std::as_const(catalogues))
        QVERIFY(QFile::copy(QStringLiteral(PARLEY_TRANSLATIONS) + file, folder.path() + file));
    m_process->sandbox().place(u"/usr/share/translations"_s, folder.path());
    m_process->setEnvironment(u"LC_ALL"_s, u"fi_FI.UTF-8"_s);
    m_process->start();
    m_scene.answerCapabilities({u"body-markup"_s});
    m_scene.list({1});
    m_scene.get(1,
                {4,
                 dueTime.toSecsSinceEpoch(),
                 {{u"TITLE"_s, u"Ada"_s}, {u"phoneNumber"_s, u"5551234"_s}}});
    const QDBusMessage notify = m_scene.server().next(u"Notify"_s);
    const QVariantList arguments = notify.arguments();
    QCOMPARE(arguments.size(), 8);
    QTEST(arguments.at(0).toString(), "appName");
    QCOMPARE(arguments.at(3), u"Ada"_s);
    QVERIFY(arguments.at(4).toString().startsWith(u"5551234"_s));
    QTEST(arguments.at(4).toString().mid(7), "due");
    QTEST(arguments.at(5).toStringList(), "actions");
    m_scene.server().reply(notify, {7U});
    m_scene.settle();

    m_scene.invoked(7, u"call"_s);
    m_scene.callUi().reply(m_scene.takeDial(), {true});
    m_scene.takeClose(7);
    m_scene.dismiss(1);
    m_scene.change();
    m_scene.list({});
}

/// The delay that is waited for an action is that of the program.
void TestAlarm::dismissesWhatWasClosed()
{
    showOne();
    m_scene.closed(7, 2);
    m_scene.answerInformation();
    m_scene.dismiss(1);
}

void TestAlarm::closesItsNotificationsWhenItEnds_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void TestAlarm::closesItsNotificationsWhenItEnds()
{
    QFETCH(int, signal);

    showOne();
    // Once it reads the next list, it has the number of its notification.
    m_scene.change();
    m_scene.list({1});
    ::kill(static_cast<pid_t>(m_process->processId()), signal);
    m_scene.takeClose(7);
    QCOMPARE(m_process->waitForEnd(), EXIT_SUCCESS);
    m_scene.settle();
    QCOMPARE(m_scene.daemon().waiting(), 0); // The alarm is still due.
}

void TestAlarm::runsOnceInASession()
{
    showOne();
    AlarmProcess second(m_scene.sessionBus().address(), m_scene.systemBus().address());
    second.start();
    QCOMPARE(second.waitForEnd(), EXIT_SUCCESS);
    QCOMPARE(second.takeLog(), QStringList(name + u" runs in this session already."_s));
    QCOMPARE(m_process->state(), QProcess::Running);
    // Another session is independent.
    PrivateBus session;
    const QTemporaryDir folder;
    QVERIFY(session.start(folder.path(), u"other"_s));
    AlarmProcess other(session.address(), m_scene.systemBus().address());
    other.start();
    m_scene.list({});
}

void TestAlarm::needsBothBuses_data()
{
    QTest::addColumn<bool>("hasSession");
    QTest::addColumn<QString>("line");
    QTest::newRow("session") << false << u"There is no session bus: "_s;
    QTest::newRow("system") << true << u"There is no system bus: "_s;
}

void TestAlarm::needsBothBuses()
{
    QFETCH(bool, hasSession);
    QFETCH(QString, line);

    m_process =
        std::make_unique<AlarmProcess>(hasSession ? m_scene.sessionBus().address() : nowhere,
                                       hasSession ? nowhere : m_scene.systemBus().address());
    m_process->start();
    QCOMPARE(m_process->waitForEnd(), EXIT_FAILURE);
    QVERIFY(m_process->logs(line));
}

void TestAlarm::endsWithItsBuses_data()
{
    QTest::addColumn<bool>("isSession");
    QTest::newRow("session") << true;
    QTest::newRow("system") << false;
}

/// QtDBus does not connect again. The service manager starts the program again.
void TestAlarm::endsWithItsBuses()
{
    QFETCH(bool, isSession);

    const QTemporaryDir folder;
    PrivateBus session;
    PrivateBus system;
    QVERIFY(session.start(folder.path(), u"session"_s));
    QVERIFY(system.start(folder.path(), u"system"_s));
    m_process = std::make_unique<AlarmProcess>(session.address(), system.address());
    m_process->start();
    QVERIFY(m_process->logs(u"The due alarms cannot be listed: "_s));
    (isSession ? session : system).stop();
    QCOMPARE(m_process->waitForEnd(), EXIT_FAILURE);
    QVERIFY(m_process->logs(isSession ? u"The session bus has ended."_s
                                      : u"The system bus has ended."_s));
}

void TestAlarm::explainsItself_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("line");
    QTest::newRow("--help") << u"--help"_s << EXIT_SUCCESS << u"Usage: "_s;
    QTest::newRow("--version") << u"--version"_s << EXIT_SUCCESS << u"parley-alarm "_s;
    QTest::newRow("an option") << u"--nonsense"_s << EXIT_FAILURE
                               << u"parley-alarm: Unknown option 'nonsense'."_s;
    QTest::newRow("a word") << u"word"_s << EXIT_FAILURE
                            << u"parley-alarm: Unexpected argument 'word'."_s;
}

void TestAlarm::explainsItself()
{
    QFETCH(QString, argument);
    QFETCH(int, status);
    QFETCH(QString, line);

    m_process = std::make_unique<AlarmProcess>(nowhere, nowhere);
    m_process->start({argument});
    QCOMPARE(m_process->waitForEnd(), status);
    QVERIFY(m_process->logs(line));
    const QStringList others = m_process->takeLog();
    QCOMPARE(others.isEmpty(), argument != u"--help"_s);
}

void TestAlarm::needsNoGui()
{
    showOne();
    QFile maps(u"/proc/%1/maps"_s.arg(m_process->processId()));
    QVERIFY(maps.open(QIODevice::ReadOnly));
    const QByteArray libraries = maps.readAll();
    QVERIFY(libraries.contains("DBus.so"));
    QVERIFY(!libraries.contains("Gui.so"));
}

QTEST_GUILESS_MAIN(TestAlarm)

#include "tst_alarm.moc"
