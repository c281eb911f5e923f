// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "childprocess.h"
#include "display.h"
#include "literals.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRect>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <utility>
#include <vector>

namespace {

constexpr int patience = 30000;

/// Returns what a program prints.
QString outputOf(const QString &program, const QStringList &arguments,
                 const QProcessEnvironment &environment)
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    process.waitForFinished(patience);
    return QString::fromUtf8(process.readAllStandardOutput());
}

} // namespace

/// Whole handsets on a display that they share.
class TestHandsets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void opensPanelsWhereBothAreSeen();
    void opensInAWaylandSession();
    void startsNoSessionBus();

private:
    void useDisplay(std::unique_ptr<OwnDisplay> display);
    bool startHandset();
    QVector<QRect> panels() const;
    QStringList commandsWithMark() const;

    std::unique_ptr<QTemporaryDir> m_folder;
    QProcessEnvironment m_environment;
    std::unique_ptr<OwnDisplay> m_display;
    std::vector<std::unique_ptr<ChildProcess>> m_handsets;
};

void TestHandsets::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_environment = QProcessEnvironment::systemEnvironment();
    for (const QString &variable : {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s,
                                    u"XDG_SESSION_TYPE"_s, u"DBUS_SESSION_BUS_ADDRESS"_s})
        m_environment.remove(variable);
    m_environment.insert(u"QT_QUICK_BACKEND"_s, u"software"_s);
    for (const QString &variable :
         {u"HOME"_s, u"TMPDIR"_s, u"XDG_RUNTIME_DIR"_s, u"XDG_CACHE_HOME"_s})
        m_environment.insert(variable, m_folder->path());
    m_environment.insert(u"PARLEY_TEST_MARK"_s, m_folder->path());
    // The libraries that draw windows on this display leak. Other tests look for our own leaks.
    m_environment.insert(u"ASAN_OPTIONS"_s, u"detect_leaks=0"_s);
}

void TestHandsets::cleanup()
{
    m_handsets.clear();
    m_display.reset();
}

void TestHandsets::useDisplay(std::unique_ptr<OwnDisplay> display)
{
    const QStringList missing = display->missing();
    if (!missing.isEmpty())
        QSKIP(qUtf8Printable(missing.join(u", "_s) + u" not installed"_s));
    const QString error = display->start();
    QVERIFY2(error.isEmpty(), qUtf8Printable(error));
    const QMap<QString, QString> variables = display->environment();
    for (auto it = variables.cbegin(); it != variables.cend(); ++it)
        m_environment.insert(it.key(), it.value());
    m_display = std::move(display);
}

/// Starts a handset, and waits until its call UI is shown.
bool TestHandsets::startHandset()
{
    auto handset = std::make_unique<ChildProcess>();
    handset->setProcessEnvironment(m_environment);
    handset->setProcessChannelMode(QProcess::MergedChannels);
    handset->setStandardInputFile(QProcess::nullDevice());
    handset->start(qEnvironmentVariable("PARLEY_HANDSET"), QStringList());
    m_handsets.push_back(std::move(handset));
    QString output;
    const bool isUp = QTest::qWaitFor(
        [&] {
            output += QString::fromUtf8(m_handsets.back()->readAll());
            return output.contains(u"  ui: screen: dial pad\n"_s);
        },
        patience);
    if (!isUp)
        qWarning().noquote() << output;
    return isUp;
}

/// Returns the places of the windows of panels.
QVector<QRect> TestHandsets::panels() const
{
    const QString output = outputOf(u"xdotool"_s,
                                    {u"search"_s, u"--onlyvisible"_s, u"--name"_s, u"^Handset$"_s,
                                     u"getwindowgeometry"_s, u"%@"_s},
                                    m_environment);
    static const QRegularExpression place(
        u"Position: (-?\\d+),(-?\\d+) .*\\n\\s*Geometry: (\\d+)x(\\d+)"_s);
    QVector<QRect> places;
    for (auto it = place.globalMatch(output); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        const auto number = [&match](int group) { return match.captured(group).toInt(); };
        places.append(QRect(number(1), number(2), number(3), number(4)));
    }
    return places;
}

/// Returns the command lines of the processes that belong to this test.
QStringList TestHandsets::commandsWithMark() const
{
    QStringList commands;
    const QByteArray mark = "PARLEY_TEST_MARK=" + m_folder->path().toUtf8();
    const QStringList entries = QDir(u"/proc"_s).entryList({u"[0-9]*"_s}, QDir::Dirs);
    for (const QString &entry : entries) {
        QFile environment(u"/proc/"_s + entry + u"/environ"_s);
        QFile command(u"/proc/"_s + entry + u"/cmdline"_s);
        if (environment.open(QIODevice::ReadOnly) && command.open(QIODevice::ReadOnly)
            && environment.readAll().split('\0').contains(mark))
            commands.append(QString::fromUtf8(command.readAll().replace('\0', ' ')));
    }
    return commands;
}

void TestHandsets::opensPanelsWhereBothAreSeen()
{
    const QSize size(1400, 1000);
    useDisplay(std::make_unique<XDisplay>(size));
    QVERIFY(startHandset());
    QTRY_COMPARE_WITH_TIMEOUT(panels().size(), 1, patience);
    QVERIFY(startHandset());
    QTRY_COMPARE_WITH_TIMEOUT(panels().size(), 2, patience);
    const QVector<QRect> places = panels();
    for (const QRect &place : places)
        QVERIFY(QRect({}, size).contains(place.topLeft()));
    // The title and a side of each can be clicked.
    const QPoint apart = places.at(0).topLeft() - places.at(1).topLeft();
    QVERIFY(qAbs(apart.x()) >= 30);
    QVERIFY(qAbs(apart.y()) >= 30);

    // The place of a handset that has ended is taken again.
    m_handsets.erase(m_handsets.begin());
    QTRY_COMPARE_WITH_TIMEOUT(panels().size(), 1, patience);
    QVERIFY(startHandset());
    const auto haveTheSamePlaces = [&] {
        const QVector<QRect> now = panels();
        return now.size() == 2 && places.contains(now.at(0)) && places.contains(now.at(1));
    };
    QTRY_VERIFY_WITH_TIMEOUT(haveTheSamePlaces(), patience);
}

/// Nothing but the display is known, as in a session without X11.
void TestHandsets::opensInAWaylandSession()
{
    useDisplay(std::make_unique<WaylandDisplay>(QSize(1400, 1000)));
    m_environment.remove(u"QT_QPA_PLATFORM"_s);
    QVERIFY(startHandset());
    const auto showsThePanel = [this] {
        const QImage picture = m_display->picture();
        int found = 0;
        for (int x = 0; x < picture.width(); ++x) {
            for (int y = 0; y < picture.height(); ++y)
                found += picture.pixel(x, y) == qRgb(0x1d, 0x25, 0x35) ? 1 : 0;
        }
        return found > 100000; // Its sections have this colour.
    };
    QTRY_VERIFY_WITH_TIMEOUT(showsThePanel(), patience);
}

/// Whether libdbus finds its program for that in its own place, or this one first.
void TestHandsets::startsNoSessionBus()
{
    useDisplay(std::make_unique<XDisplay>(QSize(1400, 1000)));
    const QString mark = m_folder->filePath(u"launched"_s);
    QFile launcher(m_folder->filePath(u"dbus-launch"_s));
    QVERIFY(launcher.open(QIODevice::WriteOnly));
    launcher.write("#!/bin/sh\n: >" + mark.toUtf8() + "\n");
    launcher.close();
    launcher.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    m_environment.insert(u"PATH"_s, m_folder->path() + u':' + m_environment.value(u"PATH"_s));
    QVERIFY(startHandset());
    QVERIFY(!commandsWithMark().filter(u"parley-ui"_s).isEmpty());
    QCOMPARE(commandsWithMark().filter(QRegularExpression(u"dbus-launch|--session"_s)),
             QStringList());
    QVERIFY(!QFile::exists(mark));
}

QTEST_GUILESS_MAIN(TestHandsets)

#include "tst_handsets.moc"
