// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "literals.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>

#include <sys/types.h>
#include <unistd.h>

namespace {

/// The processes that carry \a mark in their environment: what a handset has started, and itself.
QList<pid_t> processesMarked(const QByteArray &mark)
{
    QList<pid_t> found;
    const QStringList entries = QDir(u"/proc"_s).entryList({u"[0-9]*"_s}, QDir::Dirs);
    for (const QString &entry : entries) {
        QFile environment(u"/proc/"_s + entry + u"/environ"_s);
        if (environment.open(QIODevice::ReadOnly)
            && environment.readAll().split('\0').contains(mark))
            found << entry.toInt();
    }
    return found;
}

QByteArray commandOf(pid_t process)
{
    QFile line(u"/proc/%1/cmdline"_s.arg(process));
    return line.open(QIODevice::ReadOnly) ? line.readAll() : QByteArray();
}

} // namespace

class TestHandset : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void playsTheTour();
    void runsCommandsFromStandardInput();
    void runsAScript();
    void controlsTheServices();
    void keepsAlarmsInAFolder();
    void goesOnWithoutAService();
    void endsAScriptAtItsFirstFailure();
    void ignoresTheUsersOwnWorld();
    void listsItsCommands();
    void refusesBadArguments_data();
    void refusesBadArguments();
    void saysWhyTheUiDoesNotStart();
    void leavesNothingBehind_data();
    void leavesNothingBehind();
    void takesAHangingUiDown();
    void leavesNoProcessWhenItIsKilled();
    void leavesNoFrozenServiceWhenItIsKilled();

private:
    void start(const QStringList &arguments);
    bool says(const QString &pattern);
    bool ends(int status);
    QString writeScript(const QByteArray &commands);
    pid_t processNamed(const QByteArray &command);
    pid_t serviceNamed(const QByteArray &service);
    void hasLeftAFolderOnly();

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<QProcess> m_handset;
    QString m_output;
    QByteArray m_mark;
};

void TestHandset::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    QFile::setPermissions(m_folder->path(), QFile::Permissions(0x7111)); // another user calls, too
    m_output.clear();
    m_mark = "PARLEY_TEST_MARK=" + m_folder->path().toUtf8();

    m_handset = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"PARLEY_TEST_MARK"_s, m_folder->path());
    environment.insert(u"TMPDIR"_s, m_folder->path());
    environment.remove(u"DISPLAY"_s);
    environment.remove(u"WAYLAND_DISPLAY"_s);
    m_handset->setProcessEnvironment(environment);
    m_handset->setProcessChannelMode(QProcess::MergedChannels);
}

/// However it went, nothing is left: no process, no file.
void TestHandset::cleanup()
{
    if (m_handset->state() != QProcess::NotRunning) {
        m_handset->terminate();
        QVERIFY(m_handset->waitForFinished());
    }
    QTRY_COMPARE(processesMarked(m_mark), QList<pid_t>());
    QFile::remove(m_folder->filePath(u"script"_s));
    QCOMPARE(
        QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
        QStringList());
}

void TestHandset::start(const QStringList &arguments)
{
    connect(m_handset.get(), &QProcess::readyRead, this,
            [this] { m_output += QString::fromUtf8(m_handset->readAll()); });
    m_handset->start(qEnvironmentVariable("PARLEY_HANDSET"), arguments);
    QVERIFY(m_handset->waitForStarted());
}

/// Waits for a line that reads \a pattern.
bool TestHandset::says(const QString &pattern)
{
    const QRegularExpression line(u"^ *"_s + pattern + u"$"_s, QRegularExpression::MultilineOption);
    return QTest::qWaitFor([&] { return line.match(m_output).hasMatch(); }, 30000);
}

bool TestHandset::ends(int status)
{
    const bool ended =
        QTest::qWaitFor([this] { return m_handset->state() == QProcess::NotRunning; }, 30000);
    return ended && m_handset->exitStatus() == QProcess::NormalExit
        && m_handset->exitCode() == status;
}

QString TestHandset::writeScript(const QByteArray &commands)
{
    QFile script(m_folder->filePath(u"script"_s));
    return script.open(QIODevice::WriteOnly) && script.write(commands) == commands.size()
        ? script.fileName()
        : QString();
}

/// The process that was started with \a command, a part of its command line; 0 if there is none.
pid_t TestHandset::processNamed(const QByteArray &command)
{
    const QList<pid_t> processes = processesMarked(m_mark);
    for (const pid_t process : processes) {
        if (commandOf(process).contains(command))
            return process;
    }
    return 0;
}

pid_t TestHandset::serviceNamed(const QByteArray &service)
{
    const QList<pid_t> processes = processesMarked(m_mark);
    for (const pid_t process : processes) {
        QFile command(u"/proc/%1/cmdline"_s.arg(process));
        if (command.open(QIODevice::ReadOnly) && command.readAll().split('\0').contains(service))
            return process;
    }
    return 0;
}

void TestHandset::playsTheTour()
{
    start({u"--tour"_s});
    QVERIFY2(ends(0), qUtf8Printable(m_output));
    QVERIFY(says(u"ui: screen: ongoing \\+49 30 1234567"_s));
    QCOMPARE(m_output.contains(u"skipped: "_s), geteuid() != 0);
}

void TestHandset::runsCommandsFromStandardInput()
{
    start({});
    QVERIFY(says(u"The call UI is on the bus after \\d+ ms\\."_s));
    m_handset->write("show\n");
    QVERIFY(says(u"> show"_s));
    QVERIFY(says(u"reply: done \\(\\d+\\.\\d ms\\)"_s));
    QVERIFY(says(u"ui: screen: dial pad"_s));
    m_handset->write("bogus\ndial 5551234\n");
    QVERIFY(says(u"failed: there is no command \"bogus\"; help lists them"_s));
    QVERIFY(says(u"reply: true \\(\\d+\\.\\d ms\\)"_s));
    QVERIFY(says(u"ui: screen: calling 5551234"_s));
    m_handset->write("toggle"); // a last line without an end
    m_handset->closeWriteChannel();
    QVERIFY(ends(0));
    QVERIFY(says(u"> toggle"_s));
}

void TestHandset::runsAScript()
{
    start({u"--script"_s,
           writeScript("show first second\n"
                       "ongoing\nexpect screen: dial pad: No ongoing call\n"
                       "open\nexpect screen: dial pad\n"
                       "open tel:112\nexpect screen: dial pad 112\n"
                       "open https://example.org https://example.com\n"
                       "expect screen: page https://example.org https://example.com\n"
                       "dial \"\"\nexpect screen: dial pad\n"
                       "dial-via /ril_0 \"+1 555\"\nexpect screen: calling +1 555 via /ril_0\n"
                       "ongoing\nerror-dialog\nexpect screen: cellular error\n"
                       "contact 555\nexpect screen: contact 555\n"
                       "toggle\ntoggle\nexpect screen: dial pad: No call to answer or end\n")});
    QVERIFY2(ends(0), qUtf8Printable(m_output));
}

void TestHandset::controlsTheServices()
{
    // Screens without reminders of their own: the call UI leaves the services alone.
    QFile screens(m_folder->filePath(u"screens.qml"_s));
    QVERIFY(screens.open(QIODevice::WriteOnly));
    screens.write(
        "import QtQuick 2.15\nimport com.nimbo.parley 1.0\nItem { ParleyUiAdaptor {} }\n");
    screens.close();
    start({u"--qml"_s, screens.fileName(), u"--script"_s,
           writeScript("remind \"+49 30 12\" 1000 \"Ada L\"\n"
                       "expect alarm 1 is set\nexpect 1 shown: Call Ada L: +49 30 12\n"
                       "expect alarm 1, notification 1\n"
                       "alarms\nexpect 1, in * s, Ada L, +493012\n"
                       "notifications\nexpect 1, Phone, Call Ada L, +49 30 12, alarm 1\n"
                       "time-daemon stop\nexpect stopped\ntime-daemon start\nexpect started\n"
                       "alarms\nexpect 1, in * s, Ada L, +493012\n"
                       "time-daemon hang\ntime-daemon continue\n"
                       "fire 1\nexpect alarm 1 has fired\nalarms\nexpect no alarms\n"
                       "click 1 app\nexpect 1 chosen: app\nexpect launched with callHistory\n"
                       "expect 1 closed (dismissed)\n"
                       "remind 555 1000\ncancel 2\nexpect alarm 2 is cancelled\n"
                       "dismiss 2\nexpect 2 closed (dismissed)\n"
                       "remind 556 1000\nnotification-service stop\n"
                       "notification-service start\nnotifications\nexpect no notifications\n"
                       "notification-service hang\n")});
    const bool succeeded = ends(0);
    QVERIFY(screens.remove());
    QVERIFY2(succeeded, qUtf8Printable(m_output));
}

void TestHandset::keepsAlarmsInAFolder()
{
    const QString folder = m_folder->filePath(u"kept"_s);
    start({u"--state"_s, folder, u"--script"_s, writeScript("remind 555 1000 Ada\n")});
    QVERIFY2(ends(0), qUtf8Printable(m_output));
    start({u"--state"_s, folder, u"--script"_s,
           writeScript("alarms\nexpect 1, in * s, Ada, 555\nremind 556 1000\n"
                       "expect alarm 2, notification 1\n")});
    QVERIFY2(ends(0), qUtf8Printable(m_output));
    QVERIFY(QDir(folder).removeRecursively());
}

void TestHandset::goesOnWithoutAService()
{
    start({});
    QVERIFY(says(u"The call UI is on the bus after .*"_s));
    const pid_t service = serviceNamed("time-daemon");
    QVERIFY(service > 0);
    QCOMPARE(kill(service, SIGKILL), 0);
    QVERIFY(says(u"time daemon: was ended by signal 9"_s));
    m_handset->write("alarms\ntime-daemon hang\ntime-daemon start\nremind 555 1000\n");
    QVERIFY(says(u"failed: it does not run"_s));
    QVERIFY2(says(u"reply: alarm 1, notification 1"_s), qUtf8Printable(m_output));
    m_handset->closeWriteChannel();
    QVERIFY(ends(0));
}

void TestHandset::endsAScriptAtItsFirstFailure()
{
    start({u"--script"_s, writeScript("show\nbogus\ndial 1\n")});
    QVERIFY(ends(1));
    QVERIFY(!m_output.contains(u"> dial"_s));
}

void TestHandset::ignoresTheUsersOwnWorld()
{
    QProcessEnvironment environment = m_handset->processEnvironment();
    for (const QString &variable : {u"DBUS_SESSION_BUS_ADDRESS"_s, u"DBUS_SYSTEM_BUS_ADDRESS"_s})
        environment.insert(variable, u"unix:path=/nonexistent"_s);
    for (const QString &variable :
         {u"HOME"_s, u"XDG_CONFIG_HOME"_s, u"XDG_RUNTIME_DIR"_s, u"DCONF_PROFILE"_s})
        environment.insert(variable, u"/nonexistent"_s);
    environment.insert(u"QT_MESSAGE_PATTERN"_s, u"%{pid} %{message}"_s);
    environment.insert(u"QT_LOGGING_RULES"_s, u"*=false"_s);
    m_handset->setProcessEnvironment(environment);
    start({u"--script"_s, writeScript("dial 5551234\nexpect screen: calling 5551234\n")});
    QVERIFY2(ends(0), qUtf8Printable(m_output));
}

void TestHandset::listsItsCommands()
{
    start({u"--script"_s, writeScript("help\n")});
    QVERIFY(ends(0));
    for (const QString &command : {u"show \\[ARGUMENT\\.\\.\\.\\]"_s,
                                   u"ongoing"_s,
                                   u"open \\[URL\\.\\.\\.\\]"_s,
                                   u"dial NUMBER"_s,
                                   u"dial-via MODEM NUMBER"_s,
                                   u"error-dialog"_s,
                                   u"contact NUMBER"_s,
                                   u"toggle"_s,
                                   u"toggle-as UID GID"_s,
                                   u"remind NUMBER SECONDS \\[NAME\\]"_s,
                                   u"alarms"_s,
                                   u"fire COOKIE"_s,
                                   u"cancel COOKIE"_s,
                                   u"notifications"_s,
                                   u"click ID \\[ACTION\\]"_s,
                                   u"dismiss ID"_s,
                                   u"restart"_s,
                                   u"time-daemon stop\\|start\\|hang\\|continue"_s,
                                   u"notification-service stop\\|start\\|hang\\|continue"_s,
                                   u"help"_s,
                                   u"quit"_s,
                                   u"expect TEXT"_s})
        QVERIFY2(says(command + u" {2,}\\S.*"_s), qUtf8Printable(command));
}

void TestHandset::refusesBadArguments_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("complaint");

    QTest::newRow("unknown option")
        << QStringList(u"--bogus"_s) << u"(parley-handset: )?Unknown option 'bogus'\\."_s;
    QTest::newRow("no such script") << QStringList{u"--script"_s, u"/nonexistent"_s}
                                    << u"/nonexistent: No such file or directory"_s;
    QTest::newRow("folder as script")
        << QStringList{u"--script"_s, u"/"_s} << u"/: .*directory.*"_s;
}

void TestHandset::refusesBadArguments()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, complaint);

    start(arguments);
    QVERIFY(ends(1));
    QVERIFY2(says(complaint), qUtf8Printable(m_output));
}

void TestHandset::saysWhyTheUiDoesNotStart()
{
    start({u"--ui"_s, u"/nonexistent"_s});
    QVERIFY(ends(1));
    QVERIFY2(says(u"The call UI could not be started: .*"_s), qUtf8Printable(m_output));
}

void TestHandset::leavesNothingBehind_data()
{
    QTest::addColumn<QByteArray>("victim");
    QTest::addColumn<int>("signal");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("said");

    const QByteArray handset = "parley-handset";
    QTest::newRow("SIGINT") << handset << SIGINT << 128 + SIGINT << QString();
    QTest::newRow("SIGTERM") << handset << SIGTERM << 128 + SIGTERM << QString();
    QTest::newRow("SIGQUIT") << handset << SIGQUIT << 128 + SIGQUIT << QString();
    QTest::newRow("SIGHUP") << handset << SIGHUP << 128 + SIGHUP << QString();
    QTest::newRow("the UI killed")
        << QByteArray("parley-ui") << SIGKILL << 1 << u"The call UI was ended by signal 9"_s;
    QTest::newRow("the session bus killed")
        << QByteArray("/session.conf") << SIGKILL << 1 << u"The session bus has ended"_s;
    QTest::newRow("the system bus killed")
        << QByteArray("/system.conf") << SIGKILL << 1 << u"The system bus has ended"_s;
}

void TestHandset::leavesNothingBehind()
{
    QFETCH(QByteArray, victim);
    QFETCH(int, signal);
    QFETCH(int, status);
    QFETCH(QString, said);

    start({});
    QVERIFY(says(u"The call UI is on the bus after .*"_s));
    const pid_t process = victim == "parley-handset" ? static_cast<pid_t>(m_handset->processId())
                                                     : processNamed(victim);
    QVERIFY(process > 0);
    QCOMPARE(kill(process, signal), 0);
    QVERIFY2(ends(status), qUtf8Printable(m_output));
    if (!said.isEmpty())
        QVERIFY2(says(said), qUtf8Printable(m_output));
}

void TestHandset::takesAHangingUiDown()
{
    start({});
    QVERIFY(says(u"The call UI is on the bus after .*"_s));
    const pid_t ui = processNamed("parley-ui");
    QVERIFY(ui > 0);
    QCOMPARE(kill(ui, SIGSTOP), 0);
    m_handset->terminate();
    QVERIFY(ends(128 + SIGTERM));
}

void TestHandset::leavesNoProcessWhenItIsKilled()
{
    start({});
    QVERIFY(says(u"The call UI is on the bus after .*"_s));
    m_handset->kill();
    hasLeftAFolderOnly();
}

void TestHandset::leavesNoFrozenServiceWhenItIsKilled()
{
    start({});
    QVERIFY(says(u"The call UI is on the bus after .*"_s));
    m_handset->write("time-daemon hang\n");
    QVERIFY(says(u"reply: done"_s));
    m_handset->kill();
    hasLeftAFolderOnly();
}

/// Its folder is all that nobody was left to remove.
void TestHandset::hasLeftAFolderOnly()
{
    QVERIFY(m_handset->waitForFinished());
    QTRY_COMPARE(processesMarked(m_mark), QList<pid_t>());
    const QStringList folders =
        QDir(m_folder->path()).entryList({u"parley-handset-*"_s}, QDir::Dirs);
    QCOMPARE(folders.size(), 1);
    QVERIFY(QDir(m_folder->filePath(folders.constFirst())).removeRecursively());
}

QTEST_GUILESS_MAIN(TestHandset)

#include "tst_handset.moc"
