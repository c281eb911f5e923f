// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "literals.h"
#include "scriptedservice.h"
#include "uiundertest.h"

#include <QDBusMessage>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>
#include <QWindow>

#include <memory>

#include <elf.h>
#include <unistd.h>

namespace {

const QString noSwappingTasks = u"/sys/fs/cgroup/memory/noswapping/tasks"_s;
const QString interactiveTasks = u"/sys/fs/cgroup/cpu,cpuacct/interactive/tasks"_s;
const QString screensFolder = u"/usr/share/parley-ui-nimbo"_s;
const QString cataloguesFolder = u"/usr/share/translations"_s;

constexpr uid_t nobody = 65534;

/// Qt logs this when windows are drawn off screen.
const QString cannotRaise = u"This plugin does not support raise()"_s;

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be read");
}

QByteArray screensSaying(const QByteArray &word)
{
    return "import QtQuick 2.15\nItem { Component.onCompleted: console.info('" + word + "') }\n";
}

} // namespace

class TestStartup : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void takesItsStepsInOrder_data();
    void takesItsStepsInOrder();
    void undoesItsStepsInReverse();
    void joinsControlGroups_data();
    void joinsControlGroups();
    void joinsTheOneControlGroupThatIsThere();

    void isNamed();
    void isShownUnlessPrestarted_data();
    void isShownUnlessPrestarted();
    void staysPrestartedOnceShown();
    void loadsTheScreensItIsTold_data();
    void loadsTheScreensItIsTold();
    void takesARelativePathAsItStands();
    void outlivesItsWindow_data();
    void outlivesItsWindow();
    void endsWithItsWindowInDevelopment();
    void staysHiddenWhenAskedToQuitBeforeItIsShown();

    void translatesItsTitle_data();
    void translatesItsTitle();

    void outlivesBadScreens_data();
    void outlivesBadScreens();
    void outlivesScreensThatItMayNotRead();
    void outlivesArgumentsItDoesNotKnow();

    void exportsMain();
    void isPositionIndependent();

private:
    void makeCatalogue(const QString &folder, const QString &name, const QString &text);

    std::unique_ptr<UiUnderTest> m_ui;
};

void TestStartup::init()
{
    m_ui = std::make_unique<UiUnderTest>();
    QVERIFY(m_ui->isValid());
}

void TestStartup::cleanup()
{
    if (m_ui->isRunning())
        m_ui->stop();
    QCOMPARE(m_ui->takeLog().join(u'\n'), QString());
    m_ui.reset();
}

void TestStartup::takesItsStepsInOrder_data()
{
    QTest::addColumn<bool>("prestart");
    QTest::addColumn<bool>("devel");

    QTest::newRow("shown") << false << false;
    QTest::newRow("pre-started") << true << false;
    QTest::newRow("in development") << false << true;
}

void TestStartup::takesItsStepsInOrder()
{
    QFETCH(bool, prestart);
    QFETCH(bool, devel);

    QVERIFY(m_ui->writeSettings({
        {u"/desktop/nimbo/specials/supported"_s, u"['one']"_s},
        {u"/desktop/nimbo/specials/one/sequence"_s, u"'*#1#'"_s},
    }));
    m_ui->hideCatalogues(); // The title is shown as its id.
    m_ui->preload(QStringLiteral(PARLEY_STARTUP_PROBE));
    const QString screens = m_ui->writeFile(u"screens.qml"_s, screensSaying("step: loaded"));
    QStringList arguments{u"-qml"_s, screens};
    if (prestart)
        arguments << u"-prestart"_s;
    if (devel)
        arguments << u"-devel"_s;
    m_ui->start(arguments);
    QVERIFY(m_ui->logs(u"step: exec"_s));

    const QStringList lines = UiUnderTest::startUpLines();
    QStringList expected{
        u"step: open "_s + noSwappingTasks,
        lines.at(0),
        u"step: open "_s + interactiveTasks,
        lines.at(1),
        u"step: setDefaultAlphaBuffer 1"_s,
        u"step: QGuiApplication"_s,
        u"step: QQuickView"_s,
        u"step: setApplicationName parley"_s,
        QStringLiteral("step: setApplicationVersion " PARLEY_VERSION),
        u"step: setOrganizationName com.nimbo"_s,
        u"step: setOrganizationDomain nimbo.com"_s,
    };
    if (!devel)
        expected << u"step: setQuitOnLastWindowClosed 0"_s;
    expected += QStringList{
        u"step: register QuickMessagesModel"_s,
        u"step: register Reminder"_s,
        u"step: register RemindersBase"_s,
        u"step: register ParleyUiAdaptor"_s,
        u"step: QTranslator"_s,
        u"step: load catalogue parley_eng_en from /usr/share/translations"_s,
        u"step: installTranslator"_s,
        u"step: QTranslator"_s,
        u"step: load catalogue of locale parley- from /usr/share/translations"_s,
        u"step: installTranslator"_s,
        u"step: setTitle parley-ap-name"_s,
        u"step: read setting /desktop/nimbo/specials/supported"_s,
        u"step: read setting /desktop/nimbo/specials/one/service"_s,
        u"step: read setting /desktop/nimbo/specials/one/url"_s,
        u"step: read setting /desktop/nimbo/specials/one/sequence"_s,
        u"step: setContextProperty __specials"_s,
        u"step: setContextProperty __window"_s,
        u"step: setContextProperty __prestart"_s,
        lines.at(2),
        u"step: setContextProperty simFiltersHelper"_s,
        u"step: connect quit to 1close()"_s,
        u"step: setSource file://"_s + screens,
        u"qml: step: loaded"_s,
    };
    if (!prestart) {
        expected += QStringList{
            u"step: showFullScreen"_s,
            u"step: requestActivate"_s,
            u"step: raise"_s,
            cannotRaise,
        };
    }
    QCOMPARE(m_ui->takeLog(), expected);
}

void TestStartup::undoesItsStepsInReverse()
{
    m_ui->preload(QStringLiteral(PARLEY_STARTUP_PROBE));
    QVERIFY(m_ui->startProbe({u"-devel"_s}));
    QVERIFY(m_ui->logs(u"step: exec"_s));
    m_ui->takeLog();

    m_ui->evaluate(u"Qt.quit()"_s);
    QCOMPARE(m_ui->waitForEnd(), 0);
    QCOMPARE(m_ui->takeLog(),
             QStringList({
                 u"step: ~QTranslator"_s,
                 u"step: ~QTranslator"_s,
                 u"step: ~QQuickView"_s,
                 u"step: ~QGuiApplication"_s,
                 u"step: ~QFile "_s + interactiveTasks,
                 u"step: ~QFile "_s + noSwappingTasks,
             }));
}

void TestStartup::joinsControlGroups_data()
{
    QTest::addColumn<QStringList>("arguments");

    QTest::newRow("shown") << QStringList();
    QTest::newRow("pre-started") << QStringList(u"-prestart"_s);
}

void TestStartup::joinsControlGroups()
{
    QFETCH(QStringList, arguments);

    const QString noSwapping = m_ui->writeFile(u"no-swapping"_s, "before");
    const QString interactive = m_ui->writeFile(u"interactive"_s, "before");
    m_ui->sandbox().place(noSwappingTasks, noSwapping);
    m_ui->sandbox().place(interactiveTasks, interactive);
    const QString screens = m_ui->writeFile(u"screens.qml"_s, screensSaying("loaded"));
    m_ui->start(arguments + QStringList{u"-qml"_s, screens});
    QVERIFY(m_ui->logs(u"qml: loaded"_s));
    QVERIFY(m_ui->logs(UiUnderTest::startUpLines().at(2)));
    QCOMPARE(contentOf(noSwapping), QByteArray("0"));
    QCOMPARE(contentOf(interactive), QByteArray("0"));
    if (arguments.isEmpty())
        QVERIFY(m_ui->logs(cannotRaise));
}

void TestStartup::joinsTheOneControlGroupThatIsThere()
{
    const QString interactive = m_ui->writeFile(u"interactive"_s, {});
    m_ui->sandbox().place(interactiveTasks, interactive);
    const QString screens = m_ui->writeFile(u"screens.qml"_s, screensSaying("loaded"));
    m_ui->start({u"-prestart"_s, u"-qml"_s, screens});
    QVERIFY(m_ui->logs(u"qml: loaded"_s));
    QVERIFY(m_ui->logs(UiUnderTest::startUpLines().at(0)));
    QVERIFY(m_ui->logs(UiUnderTest::startUpLines().at(2)));
    QCOMPARE(contentOf(interactive), QByteArray("0"));
}

void TestStartup::isNamed()
{
    QVERIFY(m_ui->startProbe({u"-prestart"_s}));
    QCOMPARE(m_ui->evaluate(u"Qt.application.name"_s).toString(), u"parley"_s);
    QCOMPARE(m_ui->evaluate(u"Qt.application.version"_s).toString(),
             QStringLiteral(PARLEY_VERSION));
    QCOMPARE(m_ui->evaluate(u"Qt.application.organization"_s).toString(), u"com.nimbo"_s);
    QCOMPARE(m_ui->evaluate(u"Qt.application.domain"_s).toString(), u"nimbo.com"_s);
}

void TestStartup::isShownUnlessPrestarted_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("prestarted");

    QTest::newRow("plain") << QStringList() << false;
    QTest::newRow("pre-started") << QStringList(u"-prestart"_s) << true;
    QTest::newRow("other case") << QStringList(u"-PreStart"_s) << false;
    QTest::newRow("part of an argument") << QStringList(u"-prestarted"_s) << false;
}

void TestStartup::isShownUnlessPrestarted()
{
    QFETCH(QStringList, arguments);
    QFETCH(bool, prestarted);

    QVERIFY(m_ui->startProbe(arguments));
    QCOMPARE(m_ui->evaluate(u"__prestart"_s), QJsonValue(prestarted));
    QCOMPARE(m_ui->evaluate(u"__window.visible"_s), QJsonValue(!prestarted));
    if (!prestarted) {
        QCOMPARE(m_ui->evaluate(u"__window.visibility"_s), QJsonValue(int(QWindow::FullScreen)));
        QVERIFY(m_ui->logs(cannotRaise));
    }
}

void TestStartup::staysPrestartedOnceShown()
{
    QVERIFY(m_ui->startProbe({u"-prestart"_s}));
    m_ui->evaluate(u"__window.show()"_s);
    QCOMPARE(m_ui->evaluate(u"__window.visible"_s), QJsonValue(true));
    QCOMPARE(m_ui->evaluate(u"__prestart"_s), QJsonValue(true));
}

void TestStartup::loadsTheScreensItIsTold_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("loaded");

    QTest::newRow("none") << QStringList() << u"installed"_s;
    QTest::newRow("one") << QStringList{u"-qml"_s, u"FOLDER/first.qml"_s} << u"first"_s;
    QTest::newRow("no path") << QStringList{u"-prestart"_s, u"-qml"_s} << u"installed"_s;
    QTest::newRow("two") << QStringList{u"-qml"_s, u"FOLDER/first.qml"_s, u"-qml"_s,
                                        u"FOLDER/second.qml"_s}
                         << u"first"_s;
    QTest::newRow("second without path")
        << QStringList{u"-qml"_s, u"FOLDER/first.qml"_s, u"-qml"_s} << u"first"_s;
    QTest::newRow("among others") << QStringList{u"-x"_s, u"-qml"_s, u"FOLDER/first.qml"_s,
                                                 u"-devel"_s}
                                  << u"first"_s;
    QTest::newRow("other case") << QStringList{u"-QML"_s, u"FOLDER/first.qml"_s} << u"installed"_s;
    QTest::newRow("blanks and not ASCII")
        << QStringList{u"-qml"_s, u"FOLDER/\u00e9 %41 #?.qml"_s} << u"odd"_s;
    QTest::newRow("an option as path") << QStringList{u"-qml"_s, u"-prestart"_s} << QString();
}

void TestStartup::loadsTheScreensItIsTold()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, loaded);

    m_ui->writeFile(u"first.qml"_s, screensSaying("first"));
    m_ui->writeFile(u"second.qml"_s, screensSaying("second"));
    m_ui->writeFile(u"\u00e9 %41 #?.qml"_s, screensSaying("odd"));
    // The whole folder: the machine's own may have a compiled form of the screens.
    QVERIFY(QDir(m_ui->folder()).mkdir(u"installed"_s));
    m_ui->writeFile(u"installed/main.qml"_s, screensSaying("installed"));
    m_ui->sandbox().place(screensFolder, m_ui->folder() + u"/installed"_s);
    arguments.replaceInStrings(u"FOLDER"_s, m_ui->folder());
    m_ui->start(arguments);
    if (loaded.isEmpty())
        QVERIFY(m_ui->logs(u"file://"_s + QDir::currentPath()
                           + u"/-prestart: No such file or directory"_s));
    else
        QVERIFY(m_ui->logs(u"qml: "_s + loaded));
    QVERIFY(m_ui->claimStartUpLines());
    if (!arguments.contains(u"-prestart"_s))
        QVERIFY(m_ui->logs(cannotRaise));
}

void TestStartup::takesARelativePathAsItStands()
{
    m_ui->writeFile(u"screens.qml"_s, screensSaying("relative"));
    m_ui->setPrefix({u"env"_s, u"-C"_s, m_ui->folder()});
    m_ui->start({u"-prestart"_s, u"-qml"_s, u"screens.qml"_s});
    QVERIFY(m_ui->logs(u"qml: relative"_s));
    QVERIFY(m_ui->claimStartUpLines());
}

void TestStartup::outlivesItsWindow_data()
{
    QTest::addColumn<QString>("closing");

    QTest::newRow("close") << u"__window.close()"_s;
    QTest::newRow("Qt.quit") << u"Qt.quit()"_s;
}

void TestStartup::outlivesItsWindow()
{
    QFETCH(QString, closing);

    QVERIFY(m_ui->startProbe());
    QVERIFY(m_ui->logs(cannotRaise));
    m_ui->evaluate(closing);
    QTRY_COMPARE(m_ui->evaluate(u"__window.visible"_s), QJsonValue(false));
    m_ui->evaluate(u"__window.show()"_s);
    QCOMPARE(m_ui->evaluate(u"__window.visible"_s), QJsonValue(true));
}

void TestStartup::endsWithItsWindowInDevelopment()
{
    QVERIFY(m_ui->startProbe({u"-devel"_s}));
    QVERIFY(m_ui->logs(cannotRaise));
    m_ui->evaluate(u"__window.close()"_s);
    QCOMPARE(m_ui->waitForEnd(), 0);
}

void TestStartup::staysHiddenWhenAskedToQuitBeforeItIsShown()
{
    QVERIFY(m_ui->startProbe({u"-prestart"_s}));
    m_ui->evaluate(u"Qt.quit()"_s);
    QCOMPARE(m_ui->evaluate(u"__window.visible"_s), QJsonValue(false));
}

void TestStartup::makeCatalogue(const QString &folder, const QString &name, const QString &text)
{
    const QString source = m_ui->writeFile(
        name + u".ts"_s,
        u"<!DOCTYPE TS><TS version=\"2.1\"><context><name></name><message id=\"parley-ap-name\">"
        "<source></source><translation>%1</translation></message></context></TS>"_s.arg(text)
            .toUtf8());
    QProcess::execute(
        u"lrelease"_s,
        {u"-silent"_s, u"-idbased"_s, source, u"-qm"_s, folder + u'/' + name + u".qm"_s});
}

void TestStartup::translatesItsTitle_data()
{
    QTest::addColumn<QStringList>("catalogues");
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("title");

    const QString english = u"parley_eng_en"_s;
    const QString german = u"parley-de"_s;
    const QString fallback = u"parley_eng"_s;
    QTest::newRow("none") << QStringList() << u"de_DE.UTF-8"_s << u"parley-ap-name"_s;
    QTest::newRow("engineering English")
        << QStringList{english} << u"de_DE.UTF-8"_s << u"text of parley_eng_en"_s;
    QTest::newRow("user's language")
        << QStringList{german} << u"de_DE.UTF-8"_s << u"text of parley-de"_s;
    QTest::newRow("both") << QStringList{english, german} << u"de_DE.UTF-8"_s
                          << u"text of parley-de"_s;
    QTest::newRow("both, another language")
        << QStringList{english, german} << u"fr_FR.UTF-8"_s << u"text of parley_eng_en"_s;
    QTest::newRow("country before language")
        << QStringList{german, u"parley-de_DE"_s} << u"de_DE.UTF-8"_s << u"text of parley-de_DE"_s;
    QTest::newRow("nothing is cut off the name")
        << QStringList{fallback, u"parley"_s} << u"C"_s << u"parley-ap-name"_s;
}

void TestStartup::translatesItsTitle()
{
    QFETCH(QStringList, catalogues);
    QFETCH(QString, language);
    QFETCH(QString, title);

    const QString folder = m_ui->folder() + u"/translations"_s;
    QVERIFY(QDir().mkpath(folder));
    for (const QString &name : catalogues) {
        makeCatalogue(folder, name, u"text of "_s + name);
        QVERIFY(QFile::exists(folder + u'/' + name + u".qm"_s));
    }
    m_ui->sandbox().place(cataloguesFolder, folder);
    m_ui->setEnvironment(u"LC_ALL"_s, language);
    QVERIFY(m_ui->startProbe({u"-prestart"_s}));
    QCOMPARE(m_ui->evaluate(u"__window.title"_s).toString(), title);
    QCOMPARE(m_ui->evaluate(u"qsTrId('parley-ap-name')"_s).toString(), title);
}

void TestStartup::outlivesBadScreens_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("complaint");

    QTest::newRow("missing") << u"FOLDER/missing.qml"_s
                             << u"file://FOLDER/missing.qml: No such file or directory"_s;
    QTest::newRow("syntax error") << u"FOLDER/syntax.qml"_s
                                  << u"file://FOLDER/syntax.qml:2:6: Syntax error "_s;
    QTest::newRow("unknown type") << u"FOLDER/unknown.qml"_s
                                  << u"file://FOLDER/unknown.qml:3:1: Reminders is not a type"_s;
    QTest::newRow("not an item")
        << u"FOLDER/object.qml"_s
        << u"QQuickView only supports loading of root objects that derive from QQuickItem"_s;
    QTest::newRow("folder") << u"FOLDER"_s << u"file://FOLDER: file to open is a directory"_s;
    QTest::newRow("dangling link")
        << u"FOLDER/dangling.qml"_s << u"file://FOLDER/dangling.qml: No such file or directory"_s;
    QTest::newRow("empty file") << u"FOLDER/empty.qml"_s
                                << u"file://FOLDER/empty.qml: File is empty"_s;
    QTest::newRow("binary") << u"/bin/true"_s << u"file:///bin/true:1:5: Syntax error "_s;
    QTest::newRow("empty path") << QString() << QString();
}

void TestStartup::outlivesBadScreens()
{
    QFETCH(QString, path);
    QFETCH(QString, complaint);

    m_ui->writeFile(u"syntax.qml"_s, "import QtQuick 2.15\nItem }");
    m_ui->writeFile(u"unknown.qml"_s,
                    "import QtQuick 2.15\nimport com.nimbo.parley 1.0\nReminders { }");
    m_ui->writeFile(u"object.qml"_s, "import QtQml 2.15\nQtObject { }");
    m_ui->writeFile(u"empty.qml"_s, {});
    QVERIFY(QFile::link(u"nowhere"_s, m_ui->folder() + u"/dangling.qml"_s));
    path.replace(u"FOLDER"_s, m_ui->folder());
    complaint.replace(u"FOLDER"_s, m_ui->folder());

    m_ui->start({u"-prestart"_s, u"-qml"_s, path});
    QVERIFY(m_ui->claimStartUpLines());
    if (!complaint.isEmpty())
        QVERIFY(!m_ui->lineBeginning(complaint).isNull());
    // Its event loop runs, because it calls a telephony stack that starts later.
    ScriptedService telephony(m_ui->systemBus().address(), u"org.ofono"_s, u"/"_s);
    QCOMPARE(telephony.next().member(), u"GetModems"_s);
    QVERIFY(m_ui->isRunning());
    m_ui->takeLog(); // Qt may have logged more about the screens.
}

void TestStartup::outlivesScreensThatItMayNotRead()
{
    const QString screens = m_ui->writeFile(u"secret.qml"_s, screensSaying("read"));
    QVERIFY(QFile::setPermissions(screens, {}));
    if (geteuid() == 0) { // Root may read everything, so run as another user.
        const QString home = m_ui->folder() + u"/home"_s;
        QVERIFY(QDir().mkpath(home));
        QCOMPARE(chown(qUtf8Printable(home), nobody, nobody), 0);
        const QString id = QString::number(nobody);
        m_ui->setPrefix({u"setpriv"_s, u"--reuid"_s, id, u"--regid"_s, id, u"--clear-groups"_s});
    }
    m_ui->start({u"-prestart"_s, u"-qml"_s, screens});
    QVERIFY(m_ui->logs(u"file://"_s + screens + u": Permission denied"_s));
    QVERIFY(m_ui->claimStartUpLines());
    QVERIFY(m_ui->isRunning());
}

void TestStartup::outlivesArgumentsItDoesNotKnow()
{
    QVERIFY(m_ui->startProbe({u"-prestart"_s, u"-unknown"_s, u"--help"_s, QString(), u"\u00e9"_s,
                              u"x"_s.repeated(100000)}));
    QCOMPARE(m_ui->evaluate(u"__prestart"_s), QJsonValue(true));
}

void TestStartup::exportsMain()
{
    QProcess nm;
    nm.start(u"nm"_s,
             {u"-D"_s, u"--defined-only"_s, u"--extern-only"_s, u"-f"_s, u"just-symbols"_s,
              qEnvironmentVariable("PARLEY_UI")});
    QVERIFY(nm.waitForFinished());
    const QList<QByteArray> symbols = nm.readAllStandardOutput().trimmed().split('\n');
    QVERIFY(symbols.contains("main"));
}

void TestStartup::isPositionIndependent()
{
    QFile program(qEnvironmentVariable("PARLEY_UI"));
    QVERIFY(program.open(QIODevice::ReadOnly));
    Elf64_Ehdr header = {};
    QCOMPARE(program.read(reinterpret_cast<char *>(&header), sizeof header), qint64(sizeof header));
    // The field is at the same place in 32-bit programs.
    QCOMPARE(header.e_type, Elf64_Half(ET_DYN));
}

QTEST_GUILESS_MAIN(TestStartup)

#include "tst_startup.moc"
