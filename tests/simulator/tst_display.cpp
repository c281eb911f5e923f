// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "childprocess.h"
#include "literals.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRect>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
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
class TestDisplay : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void opensPanelsWhereBothAreSeen();
    void startsNoSessionBus();

private:
    bool startHandset();
    QVector<QRect> panels() const;
    QStringList commandsWithMark() const;

    std::unique_ptr<QTemporaryDir> m_folder;
    QProcessEnvironment m_environment;
    ChildProcess m_display;
    std::vector<std::unique_ptr<ChildProcess>> m_handsets;
};

void TestDisplay::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_display.start(u"Xvfb"_s,
                    {u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s, u"1400x1000x24"_s,
                     u"-nolisten"_s, u"tcp"_s});
    QVERIFY(m_display.waitForReadyRead(patience));

    m_environment = QProcessEnvironment::systemEnvironment();
    for (const QString &variable :
         {u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s, u"DBUS_SESSION_BUS_ADDRESS"_s})
        m_environment.remove(variable);
    m_environment.insert(u"DISPLAY"_s, u':' + QString::fromUtf8(m_display.readLine().trimmed()));
    m_environment.insert(u"QT_QUICK_BACKEND"_s, u"software"_s);
    for (const QString &variable : {u"HOME"_s, u"XDG_RUNTIME_DIR"_s, u"XDG_CACHE_HOME"_s})
        m_environment.insert(variable, m_folder->path());
    m_environment.insert(u"PARLEY_TEST_MARK"_s, m_folder->path());
    // The libraries that draw windows on this display leak. Other tests look for our own leaks.
    m_environment.insert(u"ASAN_OPTIONS"_s, u"detect_leaks=0"_s);
}

void TestDisplay::cleanup()
{
    m_handsets.clear();
    m_display.stop();
}

/// Starts a handset, and waits until its panel is open and its call UI is shown.
bool TestDisplay::startHandset()
{
    auto handset = std::make_unique<ChildProcess>();
    handset->setProcessEnvironment(m_environment);
    handset->setProcessChannelMode(QProcess::MergedChannels);
    handset->setStandardInputFile(QProcess::nullDevice());
    handset->start(qEnvironmentVariable("PARLEY_HANDSET"), QStringList());
    m_handsets.push_back(std::move(handset));
    QString output;
    const int panelsBefore = panels().size();
    const bool isUp = QTest::qWaitFor(
        [&] {
            output += QString::fromUtf8(m_handsets.back()->readAll());
            return output.contains(u"  ui: screen: dial pad\n"_s) && panels().size() > panelsBefore;
        },
        patience);
    if (!isUp)
        qWarning().noquote() << output;
    return isUp;
}

/// Returns the places of the windows of panels.
QVector<QRect> TestDisplay::panels() const
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
QStringList TestDisplay::commandsWithMark() const
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

void TestDisplay::opensPanelsWhereBothAreSeen()
{
    QVERIFY(startHandset());
    QVERIFY(startHandset());
    const QVector<QRect> places = panels();
    QCOMPARE(places.size(), 2);
    const QRect screen(0, 0, 1400, 1000);
    for (const QRect &place : places)
        QVERIFY(screen.contains(place.topLeft()));
    // The title and a side of each can be clicked.
    const QPoint apart = places.at(0).topLeft() - places.at(1).topLeft();
    QVERIFY(qAbs(apart.x()) >= 30);
    QVERIFY(qAbs(apart.y()) >= 30);

    // The place of a handset that has ended is taken again.
    m_handsets.erase(m_handsets.begin());
    QTRY_COMPARE(panels().size(), 1);
    QVERIFY(startHandset());
    for (const QRect &place : panels())
        QVERIFY(places.contains(place));
    QCOMPARE(panels().size(), 2);
}

/// Whether libdbus finds its program for that in its own place, or this one first.
void TestDisplay::startsNoSessionBus()
{
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

QTEST_GUILESS_MAIN(TestDisplay)

#include "tst_display.moc"
