// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "childprocess.h"
#include "literals.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>

#include <csignal>
#include <memory>

namespace {

constexpr int patience = 30000;

/// They say in which colour they are visible, and what they are asked for.
const QByteArray screens = R"(
import QtQuick 2.15
import com.nimbo.parley 1.0

Item {
    readonly property bool isVisible: __window.visible

    Component.onCompleted: console.info("loaded as red")
    onIsVisibleChanged: console.info("red: " + (isVisible ? "visible" : "hidden"))

    ParleyUiAdaptor {
        onShow: function(args) { __window.showFullScreen(); }
        onDial: function(number) { console.info("red calls " + number); __window.show(); }
    }
}
)";

} // namespace

/// What an author of screens does with the handset.
class TestScreens : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void saysAtOnceThatScreensAreMissing();
    void saysAtOnceThatScreensOfferNoService();
    void quitsBeforeTheServiceIsOffered();
    void saysThatScreensHaveGone();
    void keepsWhatWasVisible_data();
    void keepsWhatWasVisible();
    void replaysTheLastRequest();
    void neverLoadsTheKit();
    void printsTheFolderOfTheKit();
    void runsTests();
    void failsWithAFailedTest();
    void failsWithoutATest();
    void failsWithoutAReport();
    void endsItsTestWithItself();

private:
    bool write(const QString &name, const QByteArray &content) const;
    void start(const QStringList &arguments, const QMap<QString, QString> &variables = {});
    bool says(const QString &pattern);
    bool ends(int status);

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<ChildProcess> m_handset;
    QString m_output;
};

void TestScreens::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid() && QDir(m_folder->path()).mkdir(u"tmp"_s));
    m_output.clear();
    m_handset = std::make_unique<ChildProcess>();
}

/// The handset leaves nothing behind.
void TestScreens::cleanup()
{
    m_handset.reset();
    QCOMPARE(QDir(m_folder->filePath(u"tmp"_s)).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList());
}

bool TestScreens::write(const QString &name, const QByteArray &content) const
{
    QFile file(m_folder->filePath(name));
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

void TestScreens::start(const QStringList &arguments, const QMap<QString, QString> &variables)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &name : {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s})
        environment.remove(name);
    environment.insert(u"TMPDIR"_s, m_folder->filePath(u"tmp"_s));
    for (auto it = variables.cbegin(); it != variables.cend(); ++it)
        environment.insert(it.key(), it.value());
    m_handset->setProcessEnvironment(environment);
    m_handset->setProcessChannelMode(QProcess::MergedChannels);
    connect(m_handset.get(), &QProcess::readyRead, this,
            [this] { m_output += QString::fromUtf8(m_handset->readAll()); });
    m_handset->start(qEnvironmentVariable("PARLEY_HANDSET"), arguments, QIODevice::ReadWrite);
    QVERIFY(m_handset->waitForStarted());
}

/// Waits for a line that matches \a pattern.
bool TestScreens::says(const QString &pattern)
{
    const QRegularExpression line(u"^ *"_s + pattern + u"$"_s, QRegularExpression::MultilineOption);
    return QTest::qWaitFor([&] { return line.match(m_output).hasMatch(); }, patience);
}

bool TestScreens::ends(int status)
{
    const bool ended =
        QTest::qWaitFor([this] { return m_handset->state() == QProcess::NotRunning; }, patience);
    return ended && m_handset->exitStatus() == QProcess::NormalExit
        && m_handset->exitCode() == status;
}

void TestScreens::saysAtOnceThatScreensAreMissing()
{
    start({u"--qml"_s, m_folder->filePath(u"none.qml"_s)});
    QVERIFY(ends(1));
    QCOMPARE(m_output,
             u"parley-handset: There is no file %1.\n"_s.arg(m_folder->filePath(u"none.qml"_s)));
}

/// The handset knows when the screens are loaded, and does not wait for its patience to end.
void TestScreens::saysAtOnceThatScreensOfferNoService()
{
    QVERIFY(write(u"main.qml"_s, "import QtQuick 2.15\nItem {}\n"));
    QElapsedTimer timer;
    timer.start();
    start({u"--qml"_s, m_folder->filePath(u"main.qml"_s)});
    QVERIFY2(
        says(u"The call UI is not on the bus yet; its screens may lack a ParleyUiAdaptor\\."_s),
        qUtf8Printable(m_output));
    QVERIFY2(timer.elapsed() < 25000, qUtf8Printable(QString::number(timer.elapsed())));
    m_handset->closeWriteChannel();
    QVERIFY(ends(0));
}

void TestScreens::quitsBeforeTheServiceIsOffered()
{
    QVERIFY(write(u"main.qml"_s, "import QtQuick 2.15\nItem {}\n"));
    start({u"--qml"_s, m_folder->filePath(u"main.qml"_s)});
    m_handset->write("quit\n");
    QVERIFY(ends(0));
    QVERIFY2(!m_output.contains(u"not on the bus"_s), qUtf8Printable(m_output));
}

void TestScreens::saysThatScreensHaveGone()
{
    QVERIFY(write(u"main.qml"_s, screens));
    start({u"--qml"_s, m_folder->filePath(u"main.qml"_s)});
    QVERIFY(says(u"The call UI is on the bus after .*"_s));
    QVERIFY(QFile::remove(m_folder->filePath(u"main.qml"_s)));
    m_handset->write("restart\n");
    QVERIFY2(says(u"failed: There is no file .*/main\\.qml"_s), qUtf8Printable(m_output));
    m_handset->closeWriteChannel();
    QVERIFY(ends(0));
}

void TestScreens::keepsWhatWasVisible_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::addColumn<bool>("isVisible");

    QTest::newRow("visible") << QByteArray("show\n") << true;
    QTest::newRow("hidden") << QByteArray("contact 1\n") << false;
}

/// No request is sent again.
void TestScreens::keepsWhatWasVisible()
{
    QFETCH(QByteArray, request);
    QFETCH(bool, isVisible);

    QVERIFY(write(u"main.qml"_s, screens));
    start({u"--qml"_s, m_folder->filePath(u"main.qml"_s), u"--watch"_s});
    QVERIFY(says(u"The call UI is on the bus after .*"_s));
    m_handset->write(request);
    QVERIFY(says(u"reply: done .*"_s));
    QVERIFY(write(u"main.qml"_s, QByteArray(screens).replace("red", "green")));
    QVERIFY2(says(u"reply: The call UI is on the bus after .*"_s), qUtf8Printable(m_output));
    m_handset->write("dial 5\n"); // What comes with the start has come before the reply.
    QVERIFY(says(u"ui: green calls 5"_s));
    QVERIFY(says(u"reply: true .*"_s));
    const auto loaded = m_output.indexOf(u"loaded as green"_s);
    const auto shown = m_output.indexOf(u"green: visible"_s);
    const auto called = m_output.indexOf(u"green calls 5"_s);
    QVERIFY2(loaded >= 0 && shown > loaded && (shown < called) == isVisible,
             qUtf8Printable(m_output));
    QVERIFY(!m_output.contains(u"> replay"_s));
    m_handset->closeWriteChannel();
    QVERIFY(ends(0));
}

void TestScreens::replaysTheLastRequest()
{
    QVERIFY(write(u"main.qml"_s, screens));
    start({u"--qml"_s, m_folder->filePath(u"main.qml"_s), u"--watch"_s, u"--replay"_s});
    QVERIFY(says(u"The call UI is on the bus after .*"_s));
    m_handset->write("replay\n");
    QVERIFY(says(u"failed: there was no request yet"_s));
    m_handset->write("dial \"+1 555\"\n");
    QVERIFY(says(u"ui: red calls \\+1 555"_s));
    QVERIFY(write(u"main.qml"_s, QByteArray(screens).replace("red", "green")));
    QVERIFY2(says(u"ui: green calls \\+1 555"_s), qUtf8Printable(m_output));
    m_handset->closeWriteChannel();
    QVERIFY(ends(0));
}

/// Whoever tests screens with tools as well has the folder in the environment.
void TestScreens::neverLoadsTheKit()
{
    QVERIFY(write(u"main.qml"_s,
                  QByteArray(screens).replace("\"loaded as red\"", "typeof __kit, __window")));
    QVERIFY(write(u"one.script"_s, "show\nexpect red: visible\n"));
    start({u"--kit"_s});
    QVERIFY2(ends(0), qUtf8Printable(m_output));
    const QString kit = m_output.trimmed();
    m_output.clear();
    const QMap<QString, QString> variables{{u"QML2_IMPORT_PATH"_s, u"/nonexistent:"_s + kit},
                                           {u"QML_IMPORT_TRACE"_s, u"1"_s}};
    start({u"--qml"_s, m_folder->filePath(u"main.qml"_s), u"--script"_s,
           m_folder->filePath(u"one.script"_s)},
          variables);
    QVERIFY2(ends(0), qUtf8Printable(m_output));
    QVERIFY2(says(u"ui: undefined QQuickView\\(.*"_s), qUtf8Printable(m_output));
    QVERIFY(m_output.contains(u"/nonexistent"_s)); // The trace tells where Qt looks.
    QVERIFY2(!m_output.contains(kit), qUtf8Printable(m_output));
}

void TestScreens::printsTheFolderOfTheKit()
{
    start({u"--kit"_s});
    QVERIFY(ends(0));
    QVERIFY2(QFile::exists(m_output.trimmed() + u"/com/nimbo/parley/qmldir"_s),
             qUtf8Printable(m_output));
}

void TestScreens::runsTests()
{
    QVERIFY(write(u"main.qml"_s, screens));
    QVERIFY(write(u"b.script"_s, "dial 5\nexpect red calls 5\n"));
    QVERIFY(write(u"a.script"_s, "show\nexpect red: visible\n"));
    QVERIFY(write(u"notes.txt"_s, "bogus\n"));
    start({u"--qml"_s, m_folder->filePath(u"main.qml"_s), u"--tests"_s, m_folder->path()});
    QVERIFY2(ends(0), qUtf8Printable(m_output));
    const QRegularExpression form(
        u"^pass  a \\(\\d+\\.\\d s\\)\npass  b \\(\\d+\\.\\d s\\)\n2 passed, 0 failed\n$"_s);
    QVERIFY2(form.match(m_output).hasMatch(), qUtf8Printable(m_output));
}

void TestScreens::failsWithAFailedTest()
{
    QVERIFY(write(u"main.qml"_s, screens));
    QVERIFY(write(u"a.script"_s, "bogus <&> \x1b\n"));
    QVERIFY(write(u"b.script"_s, "dial 5\nexpect red calls 5\n"));
    const QString report = m_folder->filePath(u"report.xml"_s);
    start({u"--qml"_s, m_folder->filePath(u"main.qml"_s), u"--tests"_s, m_folder->path(),
           u"--junit"_s, report});
    QVERIFY2(ends(1), qUtf8Printable(m_output));
    QVERIFY2(says(u"FAIL  a \\(.*"_s) && says(u"pass  b \\(.*"_s) && says(u"1 passed, 1 failed"_s),
             qUtf8Printable(m_output));
    QVERIFY(says(u"failed: there is no command \"bogus <&> .*"_s));

    QFile file(report);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QXmlStreamReader xml(&file);
    QStringList read;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QXmlStreamAttributes attributes = xml.attributes();
        const QString name = xml.name().toString();
        if (name == u"testsuite"_s)
            read << attributes.value(u"tests"_s).toString()
                 << attributes.value(u"failures"_s).toString();
        else if (name == u"testcase"_s)
            read << attributes.value(u"name"_s).toString();
        else if (name == u"failure"_s)
            read << attributes.value(u"message"_s).toString();
    }
    QVERIFY2(!xml.hasError(), qUtf8Printable(xml.errorString()));
    QCOMPARE(read,
             QStringList({u"2"_s, u"1"_s, u"a"_s,
                          u"there is no command \"bogus <&> ?\"; help lists them"_s, u"b"_s}));
}

void TestScreens::failsWithoutATest()
{
    start({u"--tests"_s, m_folder->path()});
    QVERIFY(ends(1));
    QVERIFY2(says(u"There is no file named \\*\\.script in .*"_s), qUtf8Printable(m_output));
    QVERIFY(says(u"0 passed, 0 failed"_s));
}

void TestScreens::failsWithoutAReport()
{
    QVERIFY(write(u"main.qml"_s, screens));
    QVERIFY(write(u"a.script"_s, "show\n"));
    start({u"--qml"_s, m_folder->filePath(u"main.qml"_s), u"--tests"_s, m_folder->path(),
           u"--junit"_s, u"/nonexistent/report.xml"_s});
    QVERIFY(ends(1));
    QVERIFY2(says(u"/nonexistent/report\\.xml: .+"_s), qUtf8Printable(m_output));
}

/// cleanup() sees what the handset of the test leaves.
void TestScreens::endsItsTestWithItself()
{
    QVERIFY(write(u"main.qml"_s, screens));
    QVERIFY(write(u"a.script"_s, "show\nexpect never\n"));
    start({u"--qml"_s, m_folder->filePath(u"main.qml"_s), u"--tests"_s, m_folder->path()});
    const QDir folder(m_folder->filePath(u"tmp"_s));
    QTRY_VERIFY_WITH_TIMEOUT(!folder.isEmpty(), patience);
    m_handset->terminate();
    QVERIFY(ends(128 + SIGTERM));
}

QTEST_GUILESS_MAIN(TestScreens)

#include "tst_screens.moc"
