// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "filterrule.h"
#include "literals.h"
#include "runningprogram.h"
#include "scriptedservice.h"
#include "words.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QRegularExpression>
#include <QSaveFile>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <csignal>
#include <iterator>
#include <memory>
#include <utility>

#include <sys/types.h>
#include <unistd.h>

namespace {

/// Returns the processes that have \a mark in their environment: the handset and its children.
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

/// Returns the value of a variable in the environment with which \a process was started.
QString environmentOf(pid_t process, const QByteArray &variable)
{
    QFile file(u"/proc/%1/environ"_s.arg(process));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray beginning = variable + '=';
    const QList<QByteArray> entries = file.readAll().split('\0');
    for (const QByteArray &entry : entries) {
        if (entry.startsWith(beginning))
            return QString::fromUtf8(entry.mid(beginning.size()));
    }
    return {};
}

/// The answer that a command needs.
struct Answer
{
    QByteArray command;
    QString method;
    QString form; ///< Its D-Bus signature.
};

} // namespace

Q_DECLARE_METATYPE(QVector<Answer>)

class TestHandset : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void playsTheTour();
    void runsCommandsFromStandardInput();
    void runsAScript();
    void runsATranscript();
    void hasControlGroups();
    void controlsTheServices();
    void takesNumbersOnly();
    void controlsTheTelephony();
    void tellsWhatOthersDoToTheTelephony();
    void saysWhyTheTelephonyRefuses();
    void keepsAlarmsInAFolder();
    void keepsSimsAndRulesInAFolder();
    void failsWhereAnAnswerIsOfAnotherForm_data();
    void failsWhereAnAnswerIsOfAnotherForm();
    void goesOnWithoutAService();
    void keepsAJournal();
    void tellsARefusalInTheJournal();
    void togglesAsNobodyElseWhereThereIsNone();
    void goesOnWithoutTheUi();
    void endsAScriptWithoutTheUi();
    void opensAPanelWhereThereIsADisplay_data();
    void opensAPanelWhereThereIsADisplay();
    void opensNoPanelWhereItMayNot();
    void startsTheUiAgainWhenAScreenChanges();
    void goesOnWithAScreenThatHasAnError();
    void showsAndWritesQuickReplies();
    void opensQuickRepliesInAnEditor();
    void saysWhyAnEditorDoesNotOpen();
    void saysThatAnEditorHasFailed();
    void endsAScriptAtItsFirstFailure();
    void ignoresTheUsersOwnWorld();
    void listsItsCommands();
    void listsItsOptions();
    void tellsItsVersion();
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
    void setVariable(const QString &name, const QString &value);
    pid_t processNamed(const QByteArray &command);
    void killTheUi();
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
    QFile::setPermissions(m_folder->path(),
                          QFile::Permissions(0x7111)); // Another user calls as well.
    m_output.clear();
    m_mark = "PARLEY_TEST_MARK=" + m_folder->path().toUtf8();

    m_handset = std::make_unique<QProcess>();
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"PARLEY_TEST_MARK"_s, m_folder->path());
    environment.insert(u"TMPDIR"_s, m_folder->path());
    environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
    environment.remove(u"LANGUAGE"_s);
    environment.remove(u"DISPLAY"_s);
    environment.remove(u"WAYLAND_DISPLAY"_s);
    environment.remove(u"QT_QPA_PLATFORM"_s);
    m_handset->setProcessEnvironment(environment);
    m_handset->setProcessChannelMode(QProcess::MergedChannels);
}

/// No process and no file is left, whether the test has passed or not.
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

/// Waits for a line that matches \a pattern.
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

/// Sets a variable in the environment of the handset.
void TestHandset::setVariable(const QString &name, const QString &value)
{
    QProcessEnvironment environment = m_handset->processEnvironment();
    environment.insert(name, value);
    m_handset->setProcessEnvironment(environment);
}

/// Returns the process whose command line has \a command in it, or 0.
pid_t TestHandset::processNamed(const QByteArray &command)
{
    const QList<pid_t> processes = processesMarked(m_mark);
    for (const pid_t process : processes) {
        if (commandOf(process).contains(command))
            return process;
    }
    return 0;
}

/// Kills the process itself, which runs within the sandbox.
void TestHandset::killTheUi()
{
    const QList<pid_t> processes = processesMarked(m_mark);
    const QString program = QFileInfo(qEnvironmentVariable("PARLEY_UI")).canonicalFilePath();
    const auto isUi = [&program](pid_t process) { return runsProgram(process, program); };
    const auto ui = std::find_if(processes.cbegin(), processes.cend(), isUi);
    QVERIFY(ui != processes.cend());
    QCOMPARE(kill(*ui, SIGKILL), 0);
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
    setVariable(u"LC_ALL"_s, u"de_DE.UTF-8"_s); // It checks texts in English all the same.
    start({u"--tour"_s});
    QVERIFY2(ends(0), qUtf8Printable(m_output));
    QVERIFY(says(u"ui: screen: ongoing \\+49301234567"_s));
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
    m_handset->write("toggle"); // The last line has no newline.
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
                       "sim insert 26201\nexpect /ril_0 is ready\n"
                       "dial-via /ril_0 \"+1 555\"\nexpect screen: calling +1555 via /ril_0\n"
                       "expect /ril_0 dials +1555\n"
                       "ongoing\nerror-dialog\nexpect screen: cellular error\n"
                       "contact 555\nexpect screen: contact 555\n"
                       "ongoing\nexpect screen: calling +1555 via /ril_0\n"
                       "toggle\nexpect screen: dial pad\n"
                       "toggle\nexpect screen: dial pad: No call to answer or end\n")});
    QVERIFY2(ends(0), qUtf8Printable(m_output));
}

/// A saved session, with all that was printed, is a script.
void TestHandset::runsATranscript()
{
    const QByteArray commands =
        "sim insert 26201\nexpect /ril_0 is ready\n"
        "dial \"+1 555\"\nexpect screen: calling +1555\nexpect /ril_0 dials +1555\nremote answer\n"
        "expect \"screen: ongoing *\"\ntoggle\n# Then\nshow\n";
    start({u"--script"_s, writeScript(commands)});
    QVERIFY2(ends(0), qUtf8Printable(m_output));
    const QByteArray transcript = m_output.toUtf8();
    m_output.clear();
    start({u"--script"_s, writeScript(transcript)});
    QVERIFY2(ends(0), qUtf8Printable(m_output));
    const QRegularExpression command(u"^(?:> |(?=#))(.*)\n"_s, QRegularExpression::MultilineOption);
    QString run;
    for (auto it = command.globalMatch(m_output); it.hasNext();)
        run += it.next().captured(1) + u'\n';
    QCOMPARE(run, QString::fromUtf8(commands));
    QCOMPARE(m_output.count(u"  as expected: "_s), 4);
}

/// The lines about control groups come from a machine without those of a handset.
void TestHandset::hasControlGroups()
{
    start({u"--script"_s, writeScript("show\nexpect screen: dial pad\n")});
    QVERIFY2(ends(0), qUtf8Printable(m_output));
    QVERIFY2(!m_output.contains(u"disabling caching"_s), qUtf8Printable(m_output));
}

void TestHandset::controlsTheServices()
{
    // These screens have no reminders, so the call UI does not use the services.
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

void TestHandset::takesNumbersOnly()
{
    start({});
    for (const QByteArray &command : {QByteArrayLiteral("fire"), QByteArrayLiteral("cancel"),
                                      QByteArrayLiteral("click"), QByteArrayLiteral("dismiss")}) {
        for (const QByteArray &word : {QByteArrayLiteral("abc"), QByteArrayLiteral("-1"),
                                       QByteArrayLiteral("1x"), QByteArrayLiteral("4294967296")}) {
            m_output.clear();
            m_handset->write(command + ' ' + word + '\n');
            QVERIFY2(says(u"failed: \"%1\" is no number"_s.arg(QString::fromUtf8(word))),
                     qUtf8Printable(m_output));
        }
        m_handset->write(command + " 7\n");
        QVERIFY2(says(u"failed: .*\\b7\\b.*"_s), qUtf8Printable(m_output));
    }
}

void TestHandset::controlsTheTelephony()
{
    start({u"--script"_s,
           writeScript("sims\nexpect /ril_0, no SIM\nexpect /ril_1, no SIM\n"
                       "sim insert 262011234567890\nexpect SIM 262011234567890 is in /ril_0\n"
                       "sim insert 26202 ril_7\nexpect modem /ril_7 is added\n"
                       "expect SIM 26202 is in /ril_7\n"
                       "sim lock ril_0\nexpect the SIM in /ril_0 is locked\n"
                       "sims\nexpect /ril_0, 262011234567890, locked\nexpect /ril_1, no SIM\n"
                       "expect /ril_7, 26202\n"
                       "sim unlock /ril_0\nexpect the SIM in /ril_0 is unlocked\n"
                       "sim remove /ril_7\nexpect no SIM is in /ril_7\n"
                       "sims\nexpect /ril_0, 262011234567890\nexpect /ril_7, no SIM\n"
                       "rules\nexpect dial default: allow\nexpect incoming default: allow\n"
                       "rule dial 26201 ignore\nexpect dial rule for 26201: block\n"
                       "rule dial 26202 Hangup\nexpect dial rule for 26202: hangup\n"
                       "rule incoming 26202 BLOCK\nexpect incoming rule for 26202: block\n"
                       "rule incoming 26202 4294967295\n"
                       "expect incoming rule for 26202: 4294967295\n"
                       "rule dial 26201 None\nexpect no dial rule for 26201\n"
                       "default dial block\nexpect dial default: block\n"
                       "default incoming 0\nexpect incoming default: 0\n"
                       "default incoming Allow\nexpect incoming default: allow\n"
                       "telephony stop\nexpect stopped\ntelephony start\nexpect started\n"
                       "sims\nexpect /ril_0, 262011234567890\nexpect /ril_7, no SIM\n"
                       "rules\nexpect dial default: block\nexpect dial rule for 26202: hangup\n"
                       "expect incoming default: allow\n"
                       "expect incoming rule for 26202: 4294967295\n"
                       "telephony hang\ntelephony continue\n"
                       "sim insert 1 ril_1\nexpect SIM 1 is in /ril_1\n")});
    QVERIFY2(ends(0), qUtf8Printable(m_output));
}

void TestHandset::tellsWhatOthersDoToTheTelephony()
{
    start({});
    QVERIFY(says(u"The call UI is on the bus after .*"_s));
    registerFilterRuleTypes();
    const QString name = u"other"_s;
    const QDBusConnection bus = QDBusConnection::connectToBus(
        environmentOf(serviceNamed("telephony"), "DBUS_SYSTEM_BUS_ADDRESS"), name);
    const auto call = [&bus](const QString &method, const QVariantList &arguments) {
        QDBusMessage message = QDBusMessage::createMethodCall(
            u"org.ofono"_s, u"/"_s, u"com.nimbo.simulator.Telephony"_s, method);
        message.setArguments(arguments);
        return bus.call(message).type() == QDBusMessage::ReplyMessage;
    };
    const FilterRules rules{{u"1"_s, 1}, {u"1"_s, 2}};
    QVERIFY(call(u"SetRules"_s, {u"dial"_s, QVariant::fromValue(rules)}));
    QVERIFY(says(u"rules: the dial rules are replaced"_s));
    QVERIFY(call(u"RemoveModem"_s, {u"ril_1"_s}));
    QVERIFY(says(u"sims: modem /ril_1 is removed"_s));
    QDBusConnection::disconnectFromBus(name);
}

/// Each command fails, and nothing else happens.
void TestHandset::saysWhyTheTelephonyRefuses()
{
    const QByteArray noSim = "there is no SIM in /ril_1";
    const QByteArray noModem = "there is no modem /ril_7";
    const QByteArray noFilter = "there is no filter \"both\", only dial and incoming";
    const QByteArray noAction = "\"deny\" is no action: block, ignore, allow, hangup or a number";
    const std::pair<const char *, QByteArray> refusals[] = {
        {"sim", "there is no command \"sim\"; help lists them"},
        {"sim insert", "usage: sim insert IMSI [MODEM] *"},
        {"sim insert 1 ril_1 x", "usage: sim insert IMSI [MODEM] *"},
        {"sim insert 12a", "\"12a\" is no IMSI, which is 1 to 15 digits"},
        {"sim insert \"\"", "\"\" is no IMSI, which is 1 to 15 digits"},
        {"sim insert 1 ril_0", "there is a SIM in /ril_0 already"},
        {"sim insert 1 a/b", "\"a/b\" cannot be a modem: *"},
        {"sim remove ril_1", noSim},
        {"sim lock /ril_1", noSim},
        {"sim unlock ril_1", noSim},
        {"sim unlock ril_0", "the SIM in /ril_0 is not locked"},
        {"sim remove ril_7", noModem},
        {"sim lock ril_7", noModem},
        {"sim unlock \"/ril_7\"", noModem},
        {"rule dial 1", "usage: rule dial|incoming IMSI ACTION *"},
        {"rule both 1 block", noFilter},
        {"rule both 1 none", noFilter},
        {"rule dial x block", "\"x\" is no IMSI, which is 1 to 15 digits"},
        {"rule dial 1 deny", noAction + ", or none"},
        {"rule dial 1 -1", "\"-1\" is no action: *"},
        {"rule dial 1 4294967296", "\"4294967296\" is no action: *"},
        {"rule dial 1 \"\"", "\"\" is no action: *"},
        {"rule dial 1 none", "there is no dial rule for 1"},
        {"default dial", "usage: default dial|incoming ACTION *"},
        {"default both block", noFilter},
        {"default dial deny", noAction},
        {"default dial none", "\"none\" is no action: *"},
    };

    start({});
    m_handset->write("sim insert 5 ril_0\n");
    for (const auto &[command, complaint] : refusals)
        m_handset->write(command + QByteArray("\nexpect ")
                         + joinWords({QString::fromUtf8(complaint)}).toUtf8() + '\n');
    m_handset->write("sims\nexpect /ril_0, 5\nexpect /ril_1, no SIM\nrules\n");
    m_handset->closeWriteChannel();
    QVERIFY2(ends(0), qUtf8Printable(m_output));
    // The call UI may log its start anywhere in between.
    const QString said = QString(m_output).remove(QRegularExpression(u"  ui: [^\n]*\n"_s));
    for (const auto &[command, complaint] : refusals) {
        const QString step = said.section(u"> %1\n"_s.arg(QString::fromUtf8(command)), 1)
                                 .section(u"\n> "_s, 0, 1); // The expectation is the second.
        QVERIFY2(step.startsWith(u"  failed: "_s)
                     && step.endsWith(u"  as expected: "_s + QString::fromUtf8(complaint)),
                 qUtf8Printable(QLatin1String(command) + u": "_s + step));
    }
    QCOMPARE(m_output.count(u"  failed: "_s), static_cast<int>(std::size(refusals)));
    QCOMPARE(m_output.count(u"default: allow"_s), 2);
    // A complaint says that there is no such rule, and its expectation says so twice.
    QCOMPARE(m_output.count(u" rule for "_s), 3);
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

void TestHandset::keepsSimsAndRulesInAFolder()
{
    const QString folder = m_folder->filePath(u"kept"_s);
    start({u"--state"_s, folder, u"--script"_s,
           writeScript("sim insert 26201 ril_1\nsim lock ril_1\nrule incoming 26201 hangup\n"
                       "default dial block\n")});
    QVERIFY2(ends(0), qUtf8Printable(m_output));
    start({u"--state"_s, folder, u"--script"_s,
           writeScript("sims\nexpect /ril_0, no SIM\nexpect /ril_1, 26201, locked\n"
                       "rules\nexpect dial default: block\nexpect incoming default: allow\n"
                       "expect incoming rule for 26201: hangup\n")});
    QVERIFY2(ends(0), qUtf8Printable(m_output));
    QVERIFY(QDir(folder).removeRecursively());
}

void TestHandset::failsWhereAnAnswerIsOfAnotherForm_data()
{
    QTest::addColumn<QByteArray>("bus");
    QTest::addColumn<QString>("service");
    QTest::addColumn<QVector<Answer>>("answers");

    QTest::newRow("time-daemon") << QByteArrayLiteral("DBUS_SYSTEM_BUS_ADDRESS")
                                 << u"com.nimbo.timed"_s
                                 << QVector<Answer>{{"alarms", u"List"_s, u"a{u(uxa{ss})}"_s},
                                                    {"fire 1", u"Fire"_s, QString()},
                                                    {"cancel 1", u"cancel"_s, u"b"_s},
                                                    {"remind 1 1000", u"add_event"_s, u"u"_s}};
    QTest::newRow("notification-service")
        << QByteArrayLiteral("DBUS_SESSION_BUS_ADDRESS") << u"org.freedesktop.Notifications"_s
        << QVector<Answer>{{"notifications", u"List"_s, u"a(susssasa{sv}i)"_s},
                           {"dismiss 1", u"Dismiss"_s, QString()}};
    QTest::newRow("telephony") << QByteArrayLiteral("DBUS_SYSTEM_BUS_ADDRESS") << u"org.ofono"_s
                               << QVector<Answer>{
                                      {"sims", u"ListSims"_s, u"a{s(sb)}"_s},
                                      {"sim insert 1", u"InsertSim"_s, u"s"_s},
                                      {"sim lock ril_0", u"LockSim"_s, QString()},
                                      {"rules", u"GetAll"_s, u"uua(su)"_s},
                                      {"rule dial 1 block", u"SetRule"_s, QString()},
                                      {"default dial block", u"SetDefaultAction"_s, QString()}};
}

void TestHandset::failsWhereAnAnswerIsOfAnotherForm()
{
    QFETCH(QByteArray, bus);
    QFETCH(QString, service);
    QFETCH(QVector<Answer>, answers);

    start({});
    QVERIFY(says(u"The call UI is on the bus after .*"_s));
    const QByteArray process = QTest::currentDataTag();
    const QString address = environmentOf(serviceNamed(process), bus);
    m_handset->write("alarm-service stop\n"); // It would ask the time daemon as well.
    QVERIFY(says(u"reply: stopped"_s));
    m_output.clear();
    m_handset->write(process + " stop\n");
    QVERIFY(says(u"reply: stopped"_s));

    ScriptedService other(address, service, u"/"_s);
    for (const Answer &answer : std::as_const(answers)) {
        m_output.clear();
        m_handset->write(answer.command + '\n');
        QDBusMessage call = other.next();
        while (call.type() == QDBusMessage::MethodCallMessage && call.member() != answer.method)
            call = other.next(); // The call UI asks as well.
        QCOMPARE(call.member(), answer.method);
        other.reply(call, {QVariant(QVariantList{QStringList(u"x"_s)})});
        QVERIFY2(says(u"failed: the answer is of the form \"av\", not \"%1\""_s.arg(
                     QRegularExpression::escape(answer.form))),
                 qUtf8Printable(m_output));
    }
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

void TestHandset::keepsAJournal()
{
    start(
        {u"--script"_s,
         writeScript(
             "sim insert 26201 ril_0\nexpect /ril_0 is ready\n"
             "dial 5551234\nexpect /ril_0 dials 5551234\nalarms\nsims\njournal 100\n"
             "expect \"*:*:*.* session -> dial(\\\"5551234\\\") = true, *.* ms\"\n"
             "open remind:5550100?seconds=1000\n"
             "expect screen: contact 5550100 (reminder)\nexpect 1 shown: *\n"
             "alarms\nnotifications\n" // The replies to earlier calls come first.
             "journal 100\n"
             "expect \"* session -> openUrl([\\\"remind:5550100?seconds=1000\\\"]) = done, * ms\"\n"
             "expect \"* system <- add_event((*\\\"phoneNumber\\\": \\\"5550100\\\"*)) at * = 1, * "
             "ms\"\n"
             "expect \"* session <- Notify(\\\"Phone\\\", 0, *) at * = 1, * ms\"\n"
             "expect * system -> alarm_triggers_changed({1: *}) at *\n"
             "sim insert 26202 ril_1\nexpect sims: 2\njournal 100\n"
             "expect \"* system -> PropertyChanged(\\\"Present\\\", true) at /ril_1\"\n"
             "expect * system <- GetProperties() at /ril_0 = {*}, * ms\n"
             "toggle\nexpect 5551234 on /ril_0 has ended (local)\n"
             "restart\njournal clear\ndial 77\njournal 100\n"
             "expect \"* session -> dial(\\\"77\\\") = true, * ms\"\n")});
    QVERIFY2(ends(0), qUtf8Printable(m_output.right(800)));
    for (const QString &control :
         {u" List("_s, u" ListSims("_s, u" GetNameOwner("_s, u" AddMatch("_s})
        QVERIFY2(!m_output.contains(control), qUtf8Printable(m_output.right(800)));
    QVERIFY(!m_output.mid(m_output.indexOf(u"> journal clear"_s)).contains(u"5551234"_s));
}

void TestHandset::tellsARefusalInTheJournal()
{
    if (geteuid() != 0)
        QSKIP("only root can act as another user");
    start({u"--script"_s,
           writeScript("toggle-as 65534 65534\njournal 100\n" // The call UI is still starting.
                       "expect * session -> toggleCall() = "
                       "org.freedesktop.DBus.Error.AccessDenied: PID * is not in privileged "
                       "group, * ms\n")});
    QVERIFY2(ends(0), qUtf8Printable(m_output.right(800)));
}

/// The number 4294967295 stands for no user, and keeps the one that a process has.
void TestHandset::togglesAsNobodyElseWhereThereIsNone()
{
    if (geteuid() != 0)
        QSKIP("only root can act as another user");
    start({});
    for (const char *user : {"4294967295 0", "0 4294967295", "no-such-user 0"})
        m_handset->write(QByteArray("toggle-as ") + user + "\nexpect there is no user *\n");
    m_handset->closeWriteChannel();
    QVERIFY(ends(0));
    QVERIFY2(m_output.count(u"  failed: there is no user "_s) == 3
                 && m_output.count(u"  as expected: "_s) == 3,
             qUtf8Printable(m_output));
}

void TestHandset::goesOnWithoutTheUi()
{
    start({});
    QVERIFY(says(u"The call UI is on the bus after .*"_s));
    killTheUi();
    QVERIFY2(says(u"The call UI was ended by signal 9"_s), qUtf8Printable(m_output));
    QVERIFY(says(u"The command \"restart\" starts it again\\."_s));
    m_handset->write("sims\nrestart\ndial 5551234\n");
    QVERIFY(says(u"sims: /ril_0, no SIM"_s));
    QVERIFY2(says(u"ui: screen: calling 5551234"_s), qUtf8Printable(m_output));
    killTheUi();
    m_handset->write("dial 5\nquit\n");
    QVERIFY(ends(0));
    QVERIFY2(says(u"failed: org.freedesktop.DBus.Error.*"_s), qUtf8Printable(m_output));
}

void TestHandset::endsAScriptWithoutTheUi()
{
    start({u"--script"_s, writeScript("show\nexpect never\n")});
    QVERIFY(says(u"ui: screen: dial pad"_s));
    QVERIFY(says(u"reply: done .*"_s)); // Otherwise "show" fails, and that ends the script.
    killTheUi();
    QVERIFY2(ends(1), qUtf8Printable(m_output));
    QVERIFY(says(u"The call UI was ended by signal 9"_s));
}

void TestHandset::opensAPanelWhereThereIsADisplay_data()
{
    QTest::addColumn<bool>("killsTheUi");
    QTest::addColumn<int>("signal");

    QTest::newRow("SIGINT") << false << SIGINT;
    QTest::newRow("SIGTERM") << false << SIGTERM;
    QTest::newRow("SIGHUP") << false << SIGHUP;
    QTest::newRow("SIGINT after the UI was killed") << true << SIGINT;
}

/// With a display, the handset shows the call UI and does not end with standard input.
void TestHandset::opensAPanelWhereThereIsADisplay()
{
    QFETCH(bool, killsTheUi);
    QFETCH(int, signal);

    const QTemporaryDir runtimeFolder; // A session with a display has one.
    setVariable(u"XDG_RUNTIME_DIR"_s, runtimeFolder.path());
    setVariable(u"LSAN_OPTIONS"_s, QStringLiteral(PARLEY_OFFSCREEN_LEAKS));
    setVariable(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    start({});
    m_handset->closeWriteChannel();
    QVERIFY(says(u"> show"_s));
    QVERIFY2(says(u"ui: screen: dial pad"_s), qUtf8Printable(m_output));
    if (killsTheUi) {
        killTheUi();
        QVERIFY(says(u"The command \"restart\" starts it again\\."_s));
    }
    QCOMPARE(kill(static_cast<pid_t>(m_handset->processId()), signal), 0);
    QVERIFY2(ends(128 + signal), qUtf8Printable(m_output));
    QVERIFY2(!m_output.contains(u"qrc:"_s), qUtf8Printable(m_output));
}

void TestHandset::opensNoPanelWhereItMayNot()
{
    setVariable(u"QT_QPA_PLATFORM"_s, u"nonexistent"_s);
    start({u"--no-panel"_s});
    QVERIFY(says(u"The call UI is on the bus after .*"_s));
    m_handset->closeWriteChannel();
    QVERIFY(ends(0));
    QVERIFY(!m_output.contains(u"> show"_s));
}

void TestHandset::startsTheUiAgainWhenAScreenChanges()
{
    QDir folder(m_folder->filePath(u"screens"_s));
    QVERIFY(folder.mkpath(u"deeper"_s));
    const auto write = [&folder](const QString &name, const QByteArray &content) {
        QSaveFile file(folder.filePath(name));
        return file.open(QIODevice::WriteOnly) && file.write(content) > 0 && file.commit();
    };
    const QByteArray screens = "import QtQuick 2.15\nimport com.nimbo.parley 1.0\n"
                               "Item { Loader { source: 'deeper/Part.qml' } ParleyUiAdaptor {} }\n";
    QVERIFY(write(u"main.qml"_s, screens));
    QVERIFY(write(u"deeper/Part.qml"_s,
                  "import QtQml 2.15\nQtObject { Component.onCompleted: console.info('one') }\n"));
    start({u"--qml"_s, folder.filePath(u"main.qml"_s), u"--watch"_s});
    QVERIFY(says(u"ui: one"_s));
    QVERIFY(says(u"The call UI is on the bus after .*"_s));

    QVERIFY(write(u"notes.txt"_s, "no code"));
    QVERIFY(write(u"deeper/Part.qml"_s,
                  "import QtQml 2.15\nQtObject { Component.onCompleted: console.info('two') }\n"));
    QVERIFY2(says(u"ui: two"_s), qUtf8Printable(m_output));
    // Again, because the file that replaced a watched file must be watched, too.
    QVERIFY(
        write(u"deeper/Part.qml"_s,
              "import QtQml 2.15\nQtObject { Component.onCompleted: console.info('three') }\n"));
    QVERIFY2(says(u"ui: three"_s), qUtf8Printable(m_output));
    QTRY_COMPARE_WITH_TIMEOUT(m_output.count(u"reply: The call UI is on the bus"_s), 2, 30000);

    // Add and remove files in a folder that did not exist at the start.
    QVERIFY(folder.mkpath(u"new"_s));
    QVERIFY(write(u"new/More.js"_s, "var more = 1;\n"));
    QTRY_COMPARE_WITH_TIMEOUT(m_output.count(u"reply: The call UI is on the bus"_s), 3, 30000);
    QVERIFY(folder.remove(u"new/More.js"_s));
    QTRY_COMPARE_WITH_TIMEOUT(m_output.count(u"reply: The call UI is on the bus"_s), 4, 30000);
    QCOMPARE(m_output.count(u"> restart"_s), 4);
    m_handset->closeWriteChannel();
    const bool succeeded = ends(0);
    QVERIFY(folder.removeRecursively());
    QVERIFY2(succeeded, qUtf8Printable(m_output));
}

/// The call UI does not start, and does when the error is corrected.
void TestHandset::goesOnWithAScreenThatHasAnError()
{
    QDir folder(m_folder->filePath(u"screens"_s));
    QVERIFY(folder.mkpath(u"."_s));
    QFile screens(folder.filePath(u"main.qml"_s));
    const auto write = [&screens](const QByteArray &content) {
        return screens.open(QIODevice::WriteOnly) && screens.write(content) == content.size()
            && (screens.close(), true);
    };
    QVERIFY(write("import QtQuick 2.15\nItem { bogus }\n"));
    start({u"--qml"_s, screens.fileName(), u"--watch"_s});
    QVERIFY2(says(u"The call UI is not on the bus yet; .*"_s), qUtf8Printable(m_output));
    QVERIFY(says(u"ui log: file://.*/main\\.qml:2:\\d+: .*"_s));
    QVERIFY(write("import QtQuick 2.15\nimport com.nimbo.parley 1.0\n"
                  "Item { ParleyUiAdaptor {} }\n"));
    QVERIFY2(says(u"reply: The call UI is on the bus after .*"_s), qUtf8Printable(m_output));
    m_handset->closeWriteChannel();
    const bool succeeded = ends(0);
    QVERIFY(folder.removeRecursively());
    QVERIFY2(succeeded, qUtf8Printable(m_output));
}

void TestHandset::showsAndWritesQuickReplies()
{
    start({u"--script"_s,
           writeScript(
               "replies\nexpect */home/.local/share/system/privileged/Phone/quick-replies.json\n"
               "expect there is no such file; the defaults are shown\n"
               "replies write \"On my way\" \"Who is \\\"Ada\\\"?\" \"\"\n"
               "replies\nexpect \"*\\\"On my way\\\",\"\nexpect \"*\\\"Who is "
               "\\\\\\\"Ada\\\\\\\"?\\\",\"\n"
               "expect \"*\\\"\\\"\"\nreplies write\nreplies\nexpect [\nexpect ]\n")});
    QVERIFY2(ends(0), qUtf8Printable(m_output));
}

/// The editor in this test is a program that copies the file to the folder of the test.
void TestHandset::opensQuickRepliesInAnEditor()
{
    setVariable(u"VISUAL"_s, u"cp -t %1"_s.arg(m_folder->path()));
    setVariable(u"EDITOR"_s, u"/nonexistent"_s);
    start({});
    QVERIFY(says(u"The call UI is on the bus after .*"_s));
    m_handset->write("replies edit\n");
    QVERIFY2(says(u"reply: opened with cp"_s), qUtf8Printable(m_output));
    QFile edited(m_folder->filePath(u"quick-replies.json"_s));
    QTRY_VERIFY(edited.size() > 0);
    QVERIFY(edited.open(QIODevice::ReadOnly));
    QTRY_COMPARE(
        QJsonDocument::fromJson((edited.seek(0), edited.readAll())).array(),
        QJsonArray({u"parley-me-please_call_later"_s, u"parley-me-cant_talk_at_the_moment"_s,
                    u"parley-me-will_call_back"_s}));
    QVERIFY(edited.remove());
    m_handset->closeWriteChannel();
    QVERIFY(ends(0));
}

void TestHandset::saysWhyAnEditorDoesNotOpen()
{
    setVariable(u"VISUAL"_s, QString());
    setVariable(u"EDITOR"_s, u"/nonexistent --wait"_s);
    start({u"--script"_s, writeScript("replies edit\n")});
    QVERIFY(ends(1));
    QVERIFY2(says(u"failed: /nonexistent cannot be started; VISUAL or EDITOR names an editor with "
                  "a window of its own"_s),
             qUtf8Printable(m_output));
}

void TestHandset::saysThatAnEditorHasFailed()
{
    setVariable(u"VISUAL"_s, u"sh -c \"exit 3\""_s);
    start({});
    QVERIFY(says(u"The call UI is on the bus after .*"_s));
    m_handset->write("replies edit\n");
    QVERIFY2(says(u"failed: sh has ended with status 3"_s), qUtf8Printable(m_output));
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
    for (const QString &command :
         {u"show \\[ARGUMENT\\.\\.\\.\\]"_s,
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
          u"sims"_s,
          u"sim insert IMSI \\[MODEM\\]"_s,
          u"sim remove MODEM"_s,
          u"sim lock MODEM"_s,
          u"sim unlock MODEM"_s,
          u"calls"_s,
          u"ring NUMBER \\[MODEM\\]"_s,
          u"remote answer\\|busy\\|hangup\\|hold\\|resume \\[CALL\\]"_s,
          u"network lost\\|refuse\\|slow\\|hang\\|gone\\|back \\[MODEM\\]"_s,
          u"rules"_s,
          u"rule dial\\|incoming IMSI ACTION"_s,
          u"default dial\\|incoming ACTION"_s,
          u"replies"_s,
          u"replies edit"_s,
          u"replies write \\[TEXT\\.\\.\\.\\]"_s,
          u"journal clear"_s,
          u"journal \\[COUNT\\]"_s,
          u"restart"_s,
          u"time-daemon stop\\|start\\|hang\\|continue"_s,
          u"notification-service stop\\|start\\|hang\\|continue"_s,
          u"alarm-service stop\\|start\\|hang\\|continue"_s,
          u"telephony stop\\|start\\|hang\\|continue"_s,
          u"help \\[COMMAND\\.\\.\\.\\]"_s,
          u"quit"_s,
          u"exit"_s,
          u"expect TEXT\\.\\.\\."_s})
        QVERIFY2(says(command + u"( {2,}|\n {32})\\S.*"_s), qUtf8Printable(command));
}

/// This needs no display, even if there seems to be one.
void TestHandset::listsItsOptions()
{
    setVariable(u"DISPLAY"_s, u":nonexistent"_s);
    start({u"--help"_s});
    QVERIFY2(ends(0), qUtf8Printable(m_output));
    QVERIFY2(says(u"Usage: \\S*parley-handset \\[options\\]"_s), qUtf8Printable(m_output));
    for (const QString &option :
         {u"--help"_s, u"--ui <program>"_s, u"--qml <file>"_s, u"--watch"_s, u"--script <file>"_s,
          u"--tour"_s, u"--ofono"_s, u"--state <folder>"_s, u"--no-panel"_s, u"--version"_s})
        QVERIFY2(says(u"(-h, )?"_s + option + u" +\\S.*"_s), qUtf8Printable(m_output));
    QVERIFY(!m_output.contains(u"--service"_s));
}

void TestHandset::tellsItsVersion()
{
    start({u"--version"_s});
    QVERIFY2(ends(0), qUtf8Printable(m_output));
    QCOMPARE(m_output, u"parley-handset " PARLEY_VERSION "\n"_s);
}

void TestHandset::refusesBadArguments_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("complaint");

    QTest::newRow("unknown option")
        << QStringList(u"--bogus"_s) << u"(parley-handset: )?Unknown option 'bogus'\\."_s;
    QTest::newRow("surplus argument") << QStringList{u"--no-panel"_s, u"surplus"_s}
                                      << u"parley-handset: Unexpected argument 'surplus'\\."_s;
    QTest::newRow("a report of no tests") << QStringList{u"--junit"_s, u"/nonexistent"_s}
                                          << u"parley-handset: --junit needs --tests\\."_s;
    QTest::newRow("a request again without watching")
        << QStringList{u"--replay"_s} << u"parley-handset: --replay needs --watch\\."_s;
    QTest::newRow("tests that keep something")
        << QStringList{u"--tests"_s, u"/"_s, u"--state"_s, u"/nonexistent"_s}
        << u"parley-handset: --tests and --state cannot be combined\\."_s;
    QTest::newRow("tour with oFono")
        << QStringList{u"--tour"_s, u"--ofono"_s}
        << u"parley-handset: The tour needs filter rules, which oFono does not have\\."_s;
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
    QVERIFY2(says(u"ui log: .*/nonexistent: No such file or directory"_s),
             qUtf8Printable(m_output));
    QVERIFY2(says(u"The call UI has ended with status 1"_s), qUtf8Printable(m_output));
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

/// Only the folder is left, because no process was left to remove it.
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
