// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "childprocess.h"
#include "literals.h"
#include "terminalscreen.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSocketNotifier>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace {

constexpr int patience = 30000;

const QByteArray up = "\x1b[A";
const QByteArray down = "\x1b[B";
const QByteArray left = "\x1b[D";

/// A process whose terminal is the one with the descriptor \a terminal.
class TerminalProcess : public ChildProcess
{
public:
    explicit TerminalProcess(int terminal)
        : m_terminal(terminal)
    {
    }

protected:
    void prepare() override
    {
        setsid(); // First, because the leader of a group cannot begin a session.
        ChildProcess::prepare();
        ioctl(m_terminal, TIOCSCTTY, 0);
        for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            dup2(m_terminal, descriptor);
    }

private:
    const int m_terminal;
};

} // namespace

/// The handset on a terminal.
class TestPrompt : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void editsTheLine();
    void recallsEarlierLines();
    void takesCharactersOfAnyLength();
    void completesWords();
    void leavesTheLineAloneWhenOutputArrives_data();
    void leavesTheLineAloneWhenOutputArrives();
    void followsTheSizeOfTheTerminal();
    void takesAPastedTranscript();
    void waitsForTheRestOfAKey();
    void endsWithTheInput();
    void givesTheTerminalBack_data();
    void givesTheTerminalBack();
    void comesBackAfterAStop();
    void coloursFailures_data();
    void coloursFailures();
    void editsNothingOnADumbTerminal();

private:
    bool start(const QStringList &arguments = {});
    void type(const QByteArray &keys);
    void read();
    bool shows(const QString &row);
    bool ends(int status);
    bool killService(const QByteArray &name);
    bool resize(unsigned short columns) const;
    QString lastRow() const;
    QByteArray mode() const;

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<ChildProcess> m_handset;
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::unique_ptr<TerminalScreen> m_screen;
    QProcessEnvironment m_environment;
    QByteArray m_output;
    int m_user = -1; ///< The user's side of the terminal.
    int m_terminal = -1;
};

void TestPrompt::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    QFile screens(m_folder->filePath(u"screens.qml"_s));
    QVERIFY(screens.open(QIODevice::WriteOnly));
    screens.write(
        "import QtQuick 2.15\nimport com.nimbo.parley 1.0\n"
        "Item { ParleyUiAdaptor { onDial: function(number) { console.info('dial', number) } } }\n");

    m_user = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    QVERIFY(m_user >= 0 && grantpt(m_user) == 0 && unlockpt(m_user) == 0);
    std::array<char, 64> name{};
    QCOMPARE(ptsname_r(m_user, name.data(), name.size()), 0);
    m_terminal = open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    QVERIFY(m_terminal >= 0);
    QVERIFY(resize(80));
    m_screen = std::make_unique<TerminalScreen>();
    m_output.clear();
    m_notifier = std::make_unique<QSocketNotifier>(m_user, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &TestPrompt::read);

    m_environment = QProcessEnvironment::systemEnvironment();
    for (const QString &variable :
         {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s, u"NO_COLOR"_s})
        m_environment.remove(variable);
    m_environment.insert(u"TERM"_s, u"xterm"_s);
    m_environment.insert(u"LC_ALL"_s, u"C.UTF-8"_s);
    m_environment.insert(u"HOME"_s, m_folder->path());
    m_environment.insert(u"TMPDIR"_s, m_folder->path());
    m_handset = std::make_unique<TerminalProcess>(m_terminal);
}

void TestPrompt::cleanup()
{
    m_handset.reset();
    m_notifier.reset();
    close(m_terminal);
    close(m_user);
    QCOMPARE(m_screen->problems(), QStringList());
}

/// Waits until the call UI is on the bus and the prompt is below that line.
bool TestPrompt::start(const QStringList &arguments)
{
    m_handset->setProcessEnvironment(m_environment);
    m_handset->start(qEnvironmentVariable("PARLEY_HANDSET"),
                     QStringList{u"--qml"_s, m_folder->filePath(u"screens.qml"_s)} + arguments);
    return shows(u"The call UI is on the bus after \\d+ ms\\."_s);
}

void TestPrompt::type(const QByteArray &keys)
{
    QCOMPARE(::write(m_user, keys.constData(), static_cast<std::size_t>(keys.size())),
             static_cast<ssize_t>(keys.size()));
}

void TestPrompt::read()
{
    std::array<char, 4096> buffer{};
    const ssize_t size = ::read(m_user, buffer.data(), buffer.size());
    if (size <= 0) {
        m_notifier->setEnabled(false);
        return;
    }
    const QByteArray output(buffer.data(), static_cast<int>(size));
    m_output += output;
    m_screen->write(output);
}

/// Waits for a row that matches \a row.
bool TestPrompt::shows(const QString &row)
{
    const QRegularExpression pattern(QRegularExpression::anchoredPattern(u" *"_s + row));
    const bool isShown =
        QTest::qWaitFor([&] { return m_screen->rows().indexOf(pattern) >= 0; }, patience);
    if (!isShown)
        qWarning().noquote() << m_screen->rows().join(u'\n');
    return isShown;
}

bool TestPrompt::ends(int status)
{
    return QTest::qWaitFor([this] { return m_handset->state() == QProcess::NotRunning; }, patience)
        && m_handset->exitStatus() == QProcess::NormalExit && m_handset->exitCode() == status;
}

/// The handset says that a service was ended.
bool TestPrompt::killService(const QByteArray &name)
{
    const QByteArray folder = m_folder->path().toUtf8();
    const QStringList entries = QDir(u"/proc"_s).entryList({u"[0-9]*"_s}, QDir::Dirs);
    for (const QString &entry : entries) {
        QFile environment(u"/proc/"_s + entry + u"/environ"_s);
        QFile command(u"/proc/"_s + entry + u"/cmdline"_s);
        if (environment.open(QIODevice::ReadOnly) && command.open(QIODevice::ReadOnly)
            && environment.readAll().contains(folder)
            && command.readAll().split('\0').contains(name))
            return kill(entry.toInt(), SIGKILL) == 0;
    }
    return false;
}

bool TestPrompt::resize(unsigned short columns) const
{
    winsize size{};
    size.ws_col = columns;
    size.ws_row = 24;
    return ioctl(m_user, TIOCSWINSZ, &size) == 0;
}

QString TestPrompt::lastRow() const
{
    return m_screen->rows().constLast();
}

/// Returns the mode of the terminal.
QByteArray TestPrompt::mode() const
{
    termios mode{};
    tcgetattr(m_terminal, &mode);
    return QByteArray(reinterpret_cast<const char *>(&mode.c_lflag), sizeof mode.c_lflag)
        + QByteArray(reinterpret_cast<const char *>(&mode.c_iflag), sizeof mode.c_iflag)
        + QByteArray(reinterpret_cast<const char *>(&mode.c_oflag), sizeof mode.c_oflag);
}

void TestPrompt::editsTheLine()
{
    QVERIFY(start());
    QTRY_COMPARE(lastRow(), u">"_s);
    type("dial 5545");
    QTRY_COMPARE(lastRow(), u"> dial 5545"_s);
    type(left + left + "12" + "\x7f");
    QTRY_COMPARE(lastRow(), u"> dial 55145"_s);
    QTRY_COMPARE(m_screen->beforeCursor(), u"> dial 551"_s);
    type("\x01#\x05!\r"); // To the beginning, and to the end.
    QVERIFY(shows(u"#dial 55145!"_s));
    type("dial 1\x15"
         "dial 2\r"); // Ctrl-U clears the line.
    QVERIFY(shows(u"ui: dial 2"_s));
    QTRY_COMPARE(lastRow(), u">"_s);
    // The line is there once, and not where it was typed as well.
    QCOMPARE(m_screen->rows().count(u"> dial 2"_s), 1);
    QCOMPARE(m_screen->rows().filter(u"dial 1"_s), QStringList());
}

void TestPrompt::recallsEarlierLines()
{
    QVERIFY(start());
    type("dial 111\rdial 222\r");
    QVERIFY(shows(u"ui: dial 222"_s));
    type("begun" + up);
    QTRY_COMPARE(lastRow(), u"> dial 222"_s);
    type(up);
    QTRY_COMPARE(lastRow(), u"> dial 111"_s);
    type(down + down);
    QTRY_COMPARE(lastRow(), u"> begun"_s);
    type(up + up + "3\r");
    QVERIFY(shows(u"ui: dial 1113"_s));
    type(up);
    QTRY_COMPARE(lastRow(), u"> dial 1113"_s);
    type("\x15"
         "dial 2\x12"); // Ctrl-R searches for the line that begins so.
    QTRY_COMPARE(lastRow(), u"> dial 222"_s);
}

void TestPrompt::takesCharactersOfAnyLength()
{
    QVERIFY(start());
    const QString text = u"# äß €"_s;
    type(text.toUtf8() + "x\x7f");
    QTRY_COMPARE(lastRow(), u"> "_s + text);
    type("\r");
    QVERIFY(shows(text));
}

void TestPrompt::completesWords()
{
    QVERIFY(start());
    type("dial-\t");
    QTRY_COMPARE(m_screen->beforeCursor(), u"> dial-via "_s);
    type("\x15"
         "time-daemon \t");
    QVERIFY(shows(u"continue  hang +start +stop"_s));
    QTRY_COMPARE(m_screen->beforeCursor(), u"> time-daemon "_s);
    type("h\t\r");
    QVERIFY(shows(u"> time-daemon hang"_s));
    type("time-daemon continue\r");
    QVERIFY(shows(u"> time-daemon continue"_s));
    type("remind 555 1000\r");
    QVERIFY(shows(u"alarms: alarm 1 is set"_s));
    QVERIFY(shows(u"reply: alarm 1, notification 1"_s));
    // The lists are asked for when something changes.
    QTRY_VERIFY_WITH_TIMEOUT((type("\x15"
                                   "cancel \t"),
                              lastRow() == u"> cancel 1"_s),
                             patience);
    type("\x15rule dial 26201 h\t");
    QTRY_COMPARE(m_screen->beforeCursor(), u"> rule dial 26201 hangup "_s);
    type("\x15nothing-like-it\t");
    QTRY_COMPARE(m_screen->beforeCursor(), u"> nothing-like-it"_s);
    QTRY_VERIFY(m_output.endsWith('\a'));
}

void TestPrompt::leavesTheLineAloneWhenOutputArrives_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<int>("back");

    QTest::newRow("empty") << QByteArray() << 0;
    QTest::newRow("short") << QByteArray("dial 1234") << 0;
    QTest::newRow("cursor inside") << QByteArray("dial 1234") << 3;
    QTest::newRow("as wide as the terminal") << "# " + QByteArray(76, 'x') << 0;
    QTest::newRow("two rows") << "# " + QByteArray(100, 'x') << 0;
    QTest::newRow("three rows, cursor in the first") << "# " + QByteArray(200, 'x') << 180;
}

void TestPrompt::leavesTheLineAloneWhenOutputArrives()
{
    QFETCH(QByteArray, line);
    QFETCH(int, back);

    QVERIFY(start());
    QTRY_COMPARE(lastRow(), u">"_s);
    const auto before = m_screen->rows().size();
    type(line);
    const QString shown = u"> "_s + QString::fromUtf8(line);
    const auto typed = [&](auto first) {
        return m_screen->rows().mid(first).join(QString()) == (line.isEmpty() ? u">"_s : shown);
    };
    QTRY_VERIFY(typed(before - 1));
    for (int i = 0; i < back; ++i)
        type(left);
    const auto width = shown.size() - back;
    QTRY_COMPARE(m_screen->beforeCursor().size(), width % 80);
    QVERIFY(killService("time-daemon"));
    QVERIFY(shows(u"time daemon: was ended by signal 9"_s));
    QTRY_VERIFY2(typed(m_screen->rows().indexOf(u"  time daemon: was ended by signal 9"_s) + 1),
                 qUtf8Printable(m_screen->rows().join(u'\n')));
    QTRY_COMPARE(m_screen->beforeCursor().size(), width % 80);
    QCOMPARE(m_screen->rows().filter(u"> "_s).size(), line.isEmpty() ? 0 : 1);
    type("\x05!\r");
    QVERIFY(m_screen->rows().size() >= before);
    if (!line.isEmpty())
        QTRY_VERIFY(m_screen->rows().join(QString()).contains(QString::fromUtf8(line) + u'!'));
}

void TestPrompt::followsTheSizeOfTheTerminal()
{
    QVERIFY(start());
    QTRY_COMPARE(lastRow(), u">"_s);
    m_screen->setColumns(40);
    QVERIFY(resize(40));
    // Output is drawn in place of the line only if its rows have been counted with the new width.
    type("# " + QByteArray(60, 'x'));
    QTRY_COMPARE(lastRow(), QString(24, u'x'));
    QVERIFY(killService("time-daemon"));
    QVERIFY(shows(u"time daemon: was ended by signal 9"_s));
    QTRY_COMPARE(lastRow(), QString(24, u'x'));
    QCOMPARE(m_screen->rows().filter(u"> #"_s).size(), 1);
}

void TestPrompt::takesAPastedTranscript()
{
    QVERIFY(start());
    type("> dial 5551234\n  ui: dial 5551234\n  reply: true (0.8 ms)\n> show\n  reply: done\n"
         "dial 77\n");
    QVERIFY(shows(u"ui: dial 77"_s));
    QVERIFY(m_screen->rows().contains(u"> dial 5551234"_s));
    QVERIFY(m_screen->rows().contains(u"> show"_s));
    QCOMPARE(m_screen->rows().filter(u"failed"_s), QStringList());
}

/// The handset goes on meanwhile.
void TestPrompt::waitsForTheRestOfAKey()
{
    QVERIFY(start());
    type("dial 12\x1b");
    QTRY_COMPARE(lastRow(), u"> dial 12"_s);
    QVERIFY(killService("time-daemon"));
    QVERIFY(shows(u"time daemon: was ended by signal 9"_s));
    type("[");
    type("D3\r");
    QVERIFY(shows(u"ui: dial 132"_s));
}

void TestPrompt::endsWithTheInput()
{
    QVERIFY(start());
    type("dial 12" + left + "\x04\x04"); // It deletes a character where there is one.
    QTRY_COMPARE(lastRow(), u"> dial 1"_s);
    type("\x15\x04");
    QVERIFY(ends(0));
}

void TestPrompt::givesTheTerminalBack_data()
{
    QTest::addColumn<QByteArray>("keys");
    QTest::addColumn<int>("status");

    QTest::newRow("exit") << QByteArray("exit\r") << 0;
    QTest::newRow("quit") << QByteArray("quit\r") << 0;
    QTest::newRow("Ctrl-D") << QByteArray("\x04") << 0;
    QTest::newRow("Ctrl-C") << QByteArray("dial 1\x03") << 128 + SIGINT;
}

void TestPrompt::givesTheTerminalBack()
{
    QFETCH(QByteArray, keys);
    QFETCH(int, status);

    const QByteArray before = mode();
    QVERIFY(start());
    QVERIFY(mode() != before);
    QTRY_COMPARE(lastRow(), u">"_s);
    type(keys);
    QVERIFY2(ends(status), m_output.constData());
    QCOMPARE(mode(), before);
    QTRY_COMPARE(lastRow(), QString()); // The prompt is gone.
}

/// A shell gives the terminal another mode when it stops a program.
void TestPrompt::comesBackAfterAStop()
{
    termios ofAShell{};
    QCOMPARE(tcgetattr(m_terminal, &ofAShell), 0);
    QVERIFY(start());
    type("dial 12");
    QTRY_COMPARE(lastRow(), u"> dial 12"_s);
    const QByteArray whileEditing = mode();
    const auto process = static_cast<pid_t>(m_handset->processId());
    QCOMPARE(kill(process, SIGSTOP), 0);
    QCOMPARE(tcsetattr(m_terminal, TCSANOW, &ofAShell), 0);
    QVERIFY(mode() != whileEditing);
    m_output.clear();
    QCOMPARE(kill(process, SIGCONT), 0);
    QTRY_VERIFY(m_output.contains("> dial 12"));
    QTRY_COMPARE(mode(), whileEditing);
    type("3\r");
    QVERIFY(shows(u"ui: dial 123"_s));
}

void TestPrompt::coloursFailures_data()
{
    QTest::addColumn<QString>("noColor");
    QTest::addColumn<bool>("isScript");
    QTest::addColumn<bool>("isRed");

    QTest::newRow("typed") << QString() << false << true;
    QTest::newRow("typed, NO_COLOR") << u"1"_s << false << false;
    QTest::newRow("in a script") << QString() << true << true;
    QTest::newRow("in a script, NO_COLOR") << u"1"_s << true << false;
}

void TestPrompt::coloursFailures()
{
    QFETCH(QString, noColor);
    QFETCH(bool, isScript);
    QFETCH(bool, isRed);

    QFile script(m_folder->filePath(u"script"_s));
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write("bogus\n");
    script.close();
    m_environment.insert(u"NO_COLOR"_s, noColor); // Without a value it is as if it were not set.
    QVERIFY(start(isScript ? QStringList{u"--script"_s, script.fileName()} : QStringList()));
    if (!isScript)
        type("bogus\r");
    QVERIFY(shows(u"failed: there is no command \"bogus\"; help lists them"_s));
    QCOMPARE(m_output.contains("\x1b[31m  failed: "), isRed);
    QCOMPARE(m_output.contains("\x1b[3"), isRed);
}

void TestPrompt::editsNothingOnADumbTerminal()
{
    m_environment.insert(u"TERM"_s, u"dumb"_s);
    QVERIFY(start());
    type("bogus\n");
    QVERIFY(shows(u"failed: there is no command \"bogus\"; help lists them"_s));
    QVERIFY2(!m_output.contains('\x1b'), m_output.constData());
    QVERIFY(!m_screen->rows().contains(u">"_s));
}

QTEST_GUILESS_MAIN(TestPrompt)

#include "tst_prompt.moc"
