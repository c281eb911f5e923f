// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "literals.h"
#include "patience.h"
#include "uiundertest.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QFile>
#include <QProcess>
#include <QTest>

#include <csignal>
#include <memory>

#include <sys/types.h>
#include <unistd.h>

namespace {

const QString service = u"com.nimbo.parley.ui"_s;
const QString canopy = u"com.nimbo.canopy"_s;
const QString toggled = u"qml: toggleCall []"_s;

// Every system has these two accounts, so that the bus admits them. The groups belong to this test.
const QString ordinaryUser = u"65534"_s;
const QString ordinaryUserName = u"nobody"_s;
const QString otherUser = u"1"_s;
const QString rootUser = u"0"_s;
const QString ordinaryGroup = u"71000"_s;
const QString privilegedGroup = u"71001"_s;
const QString capitalsGroup = u"71002"_s;
const QString namelessGroup = u"71003"_s;

struct Answer
{
    QStringList results; ///< The result of each step.
    qint64 processId = 0;
};

QString refusal(qint64 processId)
{
    return u"org.freedesktop.DBus.Error.AccessDenied: PID %1 is not in privileged group"_s.arg(
        processId);
}

QString warning(qint64 processId, const QString &userAndGroup)
{
    return u"A call to com.nimbo.parley.ui.toggleCall from pid %1 %2 was rejected"_s.arg(processId)
        .arg(userAndGroup);
}

} // namespace

class TestCallerCheck : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void decidesByUserAndGroup_data();
    void decidesByUserAndGroup();
    void decidesForRealClients();
    void admitsTheHomeScreen();
    void admitsTheHomeScreenOnlyWhileItHasTheName();
    void doesNotTakeAnotherForTheHomeScreen();
    void rejectsACallerThatHasGone_data();
    void rejectsACallerThatHasGone();
    void believesTheBusDaemonAlone();
    void guardsTogglingAlone();

private:
    bool start();
    Answer callAs(const QString &user, const QString &group, const QStringList &steps);

    std::unique_ptr<UiUnderTest> m_ui;
};

void TestCallerCheck::init()
{
    if (geteuid() != 0)
        QSKIP("needs root, to call as other users");
    m_ui = std::make_unique<UiUnderTest>();
    QVERIFY(m_ui->isValid());
}

void TestCallerCheck::cleanup()
{
    if (!m_ui)
        return;
    m_ui->stop();
    QCOMPARE(m_ui->takeLog().join(u'\n'), QString());
    m_ui.reset();
}

/// Starts the process as root, with groups that this machine does not have.
bool TestCallerCheck::start()
{
    QFile groups(u"/etc/group"_s);
    if (!groups.open(QIODevice::ReadOnly))
        return false;
    const QByteArray ours = "ordinary:x:71000:\nprivileged:x:71001:\nPrivileged:x:71002:\n";
    m_ui->sandbox().place(u"/etc/group"_s, m_ui->writeFile(u"group"_s, groups.readAll() + ours));
    return m_ui->startProbe({u"-prestart"_s});
}

/// Runs a process of that user and group, which takes these steps.
Answer TestCallerCheck::callAs(const QString &user, const QString &group, const QStringList &steps)
{
    QProcess process;
    process.start(QStringLiteral(PARLEY_CALLER),
                  QStringList{m_ui->sessionBus().address(), user, group} + steps);
    process.waitForStarted();
    const qint64 processId = process.processId();
    process.waitForFinished(patience());
    return {QString::fromUtf8(process.readAll()).trimmed().split(u'\n'), processId};
}

void TestCallerCheck::decidesByUserAndGroup_data()
{
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("group");
    QTest::addColumn<QString>("rejectedAs");

    QTest::newRow("root") << rootUser << rootUser << QString();
    QTest::newRow("root in an ordinary group") << rootUser << ordinaryGroup << QString();
    QTest::newRow("ordinary user in group privileged")
        << ordinaryUser << privilegedGroup << QString();
    QTest::newRow("another user in group privileged") << otherUser << privilegedGroup << QString();
    QTest::newRow("ordinary user and group")
        << ordinaryUser << ordinaryGroup << u"user nobody group ordinary"_s;
    QTest::newRow("ordinary user in group root")
        << ordinaryUser << rootUser << u"user nobody group root"_s;
    QTest::newRow("capitals") << ordinaryUser << capitalsGroup << u"user nobody group Privileged"_s;
    QTest::newRow("group without a name")
        << ordinaryUser << namelessGroup << u"user nobody group "_s;
}

void TestCallerCheck::decidesByUserAndGroup()
{
    QFETCH(QString, user);
    QFETCH(QString, group);
    QFETCH(QString, rejectedAs);

    QVERIFY(start());
    const Answer answer = callAs(user, group, {u"toggle"_s});
    if (rejectedAs.isNull()) {
        QCOMPARE(answer.results, QStringList(u"admitted"_s));
        QCOMPARE(m_ui->takeLog(), QStringList(toggled));
    } else {
        QCOMPARE(answer.results, QStringList(refusal(answer.processId)));
        QCOMPARE(m_ui->takeLog(), QStringList(warning(answer.processId, rejectedAs)));
    }
}

void TestCallerCheck::decidesForRealClients()
{
    QVERIFY(start());
    QProcess client;
    client.setProcessChannelMode(QProcess::MergedChannels);
    client.start(u"setpriv"_s,
                 {u"--reuid"_s, ordinaryUser, u"--regid"_s, ordinaryGroup, u"--clear-groups"_s,
                  u"dbus-send"_s, u"--bus="_s + m_ui->sessionBus().address(),
                  u"--print-reply=literal"_s, u"--dest="_s + service, u"/"_s,
                  service + u".toggleCall"_s});
    QVERIFY(client.waitForStarted());
    const qint64 processId = client.processId(); // setpriv turns into the client.
    QVERIFY(client.waitForFinished());
    QCOMPARE(QString::fromUtf8(client.readAll()).trimmed(), u"Error "_s + refusal(processId));
    QCOMPARE(m_ui->takeLog(), QStringList(warning(processId, u"user nobody group ordinary"_s)));
}

void TestCallerCheck::admitsTheHomeScreen()
{
    QVERIFY(start());
    const Answer answer =
        callAs(ordinaryUser, ordinaryGroup, {u"own"_s, canopy, u"toggle"_s, u"toggle-elsewhere"_s});
    QCOMPARE(answer.results, QStringList({u"done"_s, u"admitted"_s, u"admitted"_s}));
    QCOMPARE(m_ui->takeLog(), QStringList({toggled, toggled}));
}

void TestCallerCheck::admitsTheHomeScreenOnlyWhileItHasTheName()
{
    QVERIFY(start());
    const Answer answer =
        callAs(ordinaryUser, ordinaryGroup,
               {u"toggle"_s, u"own"_s, canopy, u"toggle"_s, u"release"_s, canopy, u"toggle"_s});
    const QString refused = refusal(answer.processId);
    QCOMPARE(answer.results, QStringList({refused, u"done"_s, u"admitted"_s, u"done"_s, refused}));
    const QString warned = warning(answer.processId, u"user nobody group ordinary"_s);
    QCOMPARE(m_ui->takeLog(), QStringList({warned, toggled, warned}));
}

void TestCallerCheck::doesNotTakeAnotherForTheHomeScreen()
{
    QVERIFY(start());
    QVERIFY(m_ui->session().registerService(canopy));
    const Answer answer = callAs(ordinaryUser, ordinaryGroup, {u"own"_s, canopy, u"toggle"_s});
    QCOMPARE(answer.results, QStringList({u"taken"_s, refusal(answer.processId)}));
    QCOMPARE(m_ui->takeLog(),
             QStringList(warning(answer.processId, u"user nobody group ordinary"_s)));
}

void TestCallerCheck::rejectsACallerThatHasGone_data()
{
    QTest::addColumn<QString>("user");
    QTest::addColumn<bool>("homeScreenIsThere");

    QTest::newRow("ordinary") << ordinaryUser << true;
    QTest::newRow("ordinary, and nobody is the home screen") << ordinaryUser << false;
    QTest::newRow("root") << rootUser << true;
}

void TestCallerCheck::rejectsACallerThatHasGone()
{
    QFETCH(QString, user);
    QFETCH(bool, homeScreenIsThere);

    QVERIFY(start());
    if (homeScreenIsThere)
        QVERIFY(m_ui->session().registerService(canopy));
    const auto uiProcess = static_cast<pid_t>(m_ui->processId());
    QVERIFY(uiProcess > 0);
    QCOMPARE(kill(uiProcess, SIGSTOP), 0);
    const Answer answer = callAs(user, ordinaryGroup, {u"send"_s});
    QDBusConnectionInterface *bus = m_ui->session().interface();
    QVERIFY(answer.results.constFirst().startsWith(u':'));
    QTRY_VERIFY(!bus->isServiceRegistered(answer.results.constFirst()));
    QCOMPARE(kill(uiProcess, SIGCONT), 0);
    QVERIFY(m_ui->logs(warning(0, u"user  group "_s)));
}

/// If a forged answer comes before the daemon's, there is no valid answer. It never admits a
/// caller.
void TestCallerCheck::believesTheBusDaemonAlone()
{
    QVERIFY(start());
    constexpr int tries = 40;
    QStringList steps;
    QStringList refused;
    for (int i = 0; i < tries; ++i) {
        steps << u"forge"_s;
        refused << u"refused"_s;
    }
    const Answer answer = callAs(ordinaryUser, ordinaryGroup, steps);
    QCOMPARE(answer.results, refused);
    QStringList log = m_ui->takeLog();
    QCOMPARE(log.removeAll(u"qml: dial \"1\""_s), tries);
    const auto deceived = log.removeAll(warning(0, u"user  group "_s));
    const auto undeceived =
        log.removeAll(warning(answer.processId, u"user nobody group ordinary"_s));
    QCOMPARE(deceived + undeceived, tries);
    QVERIFY(deceived > 0);
    QCOMPARE(log, QStringList());
}

void TestCallerCheck::guardsTogglingAlone()
{
    QVERIFY(start());
    for (const QString &method : {u"showOngoing"_s, u"showCellularErrorDialog"_s}) {
        QProcess client;
        client.start(u"setpriv"_s,
                     {u"--reuid"_s, ordinaryUser, u"--regid"_s, ordinaryGroup, u"--clear-groups"_s,
                      u"dbus-send"_s, u"--bus="_s + m_ui->sessionBus().address(),
                      u"--print-reply=literal"_s, u"--dest="_s + service, u"/"_s,
                      service + u'.' + method});
        QVERIFY(client.waitForFinished());
        QCOMPARE(client.exitCode(), 0);
        QCOMPARE(m_ui->takeLog(), QStringList(u"qml: "_s + method + u" []"_s));
    }
}

QTEST_GUILESS_MAIN(TestCallerCheck)

#include "tst_callercheck.moc"
