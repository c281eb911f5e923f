// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "display.h"
#include "literals.h"
#include "simulatedtelephony.h"
#include "uiundertest.h"

#include <QColor>
#include <QDBusMessage>
#include <QTest>

#include <memory>

#include <unistd.h>

namespace {

constexpr int patience = 30000;
const QSize displaySize(540, 960);
const QSize windowSize(360, 640);

const QColor screensColor(u"lime"_s);
const QColor coverColor(u"magenta"_s);

const QString wayland = u"Wayland"_s;
const QString managed = u"X11"_s;
const QString unmanaged = u"X11 without a window manager"_s;

std::unique_ptr<OwnDisplay> makeDisplay(const QString &name)
{
    if (name == wayland)
        return std::make_unique<WaylandDisplay>(displaySize);
    return std::make_unique<XDisplay>(displaySize,
                                      name == managed ? u"matchbox-window-manager"_s : QString());
}

int pixelsOf(const QSize &size)
{
    return size.width() * size.height();
}

} // namespace

/// The screens on a display, with the window of another process. Each has one colour.
class TestFront : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void comesAndGoesWithACall_data();
    void comesAndGoesWithACall();
    void goesWhenTheHomeScreenEndsTheCall_data();
    void goesWhenTheHomeScreenEndsTheCall();
    void comesFromBehindAnotherWindow_data();
    void comesFromBehindAnotherWindow();
    void staysAWindowOnADesk_data();
    void staysAWindowOnADesk();

private:
    bool startScreens(UiUnderTest &ui, const QString &fileName, const QStringList &arguments = {});
    bool cover();
    bool request(const QString &method, const QVariant &argument = {});
    bool shows(const QColor &color, const QSize &size) const;

    std::unique_ptr<OwnDisplay> m_display;
    std::unique_ptr<UiUnderTest> m_ui;
    std::unique_ptr<SimulatedTelephony> m_telephony;
    std::unique_ptr<UiUnderTest> m_other;
};

/// Starts a display for each row of data.
void TestFront::init()
{
    m_display = makeDisplay(QString::fromLatin1(QTest::currentDataTag()));
    const QStringList missing = m_display->missing();
    if (!missing.isEmpty())
        QSKIP(qUtf8Printable(missing.join(u", "_s) + u" not installed"_s));
    const QString error = m_display->start();
    QVERIFY2(error.isEmpty(), qUtf8Printable(error));
    m_ui = std::make_unique<UiUnderTest>();
    m_other = std::make_unique<UiUnderTest>();
    QVERIFY(m_ui->isValid() && m_other->isValid());
    m_telephony = std::make_unique<SimulatedTelephony>(*m_ui);
    QVERIFY(m_telephony->start());
}

void TestFront::cleanup()
{
    m_telephony.reset();
    m_ui.reset();
    m_other.reset();
    m_display.reset();
}

bool TestFront::startScreens(UiUnderTest &ui, const QString &fileName, const QStringList &arguments)
{
    const QMap<QString, QString> environment = m_display->environment();
    for (auto it = environment.cbegin(); it != environment.cend(); ++it)
        ui.setEnvironment(it.key(), it.value());
    return ui.startScreens(QStringLiteral(PARLEY_DESK_FOLDER) + fileName, arguments);
}

/// Opens the other window, and waits until nothing else is seen.
bool TestFront::cover()
{
    return m_display->showOtherWorkspace() && startScreens(*m_other, u"/cover.qml"_s)
        && shows(coverColor, displaySize);
}

bool TestFront::request(const QString &method, const QVariant &argument)
{
    const QVariantList arguments = argument.isValid() ? QVariantList{argument} : QVariantList();
    return m_ui->call(method, arguments).type() == QDBusMessage::ReplyMessage;
}

/// Waits until so much of the display has a colour.
bool TestFront::shows(const QColor &color, const QSize &size) const
{
    return QTest::qWaitFor([&] { return m_display->count(color) == pixelsOf(size); }, patience);
}

/// Windows can only be full screen if a window manager makes them so.
void TestFront::comesAndGoesWithACall_data()
{
    QTest::addColumn<QSize>("size");

    QTest::newRow(qUtf8Printable(wayland)) << displaySize;
    QTest::newRow(qUtf8Printable(managed)) << displaySize;
    QTest::newRow(qUtf8Printable(unmanaged)) << windowSize;
}

void TestFront::comesAndGoesWithACall()
{
    QFETCH(QSize, size);

    QVERIFY(startScreens(*m_ui, u"/front.qml"_s, {u"-prestart"_s}));
    QVERIFY(m_ui->logs(u"screens: telephony: ready"_s));
    QVERIFY(cover());
    QVERIFY(m_telephony->ring(u"5550145"_s));
    QVERIFY(shows(screensColor, size));
    QVERIFY(request(u"openUrl"_s, QStringList{u"replies:send?index=0"_s}));
    QVERIFY(shows(coverColor, displaySize));
    QVERIFY(request(u"dial"_s, u"5551234"_s));
    QVERIFY(shows(screensColor, size));
}

void TestFront::goesWhenTheHomeScreenEndsTheCall_data()
{
    comesAndGoesWithACall_data();
}

void TestFront::goesWhenTheHomeScreenEndsTheCall()
{
    QFETCH(QSize, size);
    if (geteuid() != 0)
        QSKIP("Only root and the home screen may end a call.");

    QVERIFY(startScreens(*m_ui, u"/front.qml"_s, {u"-prestart"_s}));
    QVERIFY(m_ui->logs(u"screens: telephony: ready"_s));
    QVERIFY(cover());
    QVERIFY(request(u"dial"_s, u"5551234"_s));
    QVERIFY(shows(screensColor, size));
    QVERIFY(request(u"toggleCall"_s));
    QVERIFY(shows(coverColor, displaySize));
    QVERIFY(request(u"show"_s, QStringList()));
    QVERIFY(shows(screensColor, size));
}

void TestFront::comesFromBehindAnotherWindow_data()
{
    comesAndGoesWithACall_data();
}

/// Screens that the user has opened stay when a call has ended.
void TestFront::comesFromBehindAnotherWindow()
{
    QFETCH(QSize, size);

    QVERIFY(startScreens(*m_ui, u"/front.qml"_s, {u"-prestart"_s}));
    QVERIFY(m_ui->logs(u"screens: telephony: ready"_s));
    QVERIFY(request(u"show"_s, QStringList()));
    QVERIFY(shows(screensColor, size));
    QVERIFY(cover());
    QVERIFY(m_telephony->ring(u"5550145"_s));
    QVERIFY(shows(screensColor, size));
    m_ui->takeLog();
    QVERIFY(request(u"openUrl"_s, QStringList{u"replies:send?index=0"_s}));
    QVERIFY(m_ui->logs(u"screens: screen: dial pad: Replied to 5550145"_s));
    QVERIFY(shows(screensColor, size));
}

void TestFront::staysAWindowOnADesk_data()
{
    QTest::addColumn<bool>("isCovered");

    QTest::newRow(qUtf8Printable(wayland)) << false;
    QTest::newRow(qUtf8Printable(unmanaged)) << true;
}

/// Runs the screens in the simulated handset.
void TestFront::staysAWindowOnADesk()
{
    QFETCH(bool, isCovered);

    ChildProcess handset;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const QMap<QString, QString> variables = m_display->environment();
    for (auto it = variables.cbegin(); it != variables.cend(); ++it)
        environment.insert(it.key(), it.value());
    environment.insert(u"QT_QUICK_BACKEND"_s, u"software"_s);
    environment.insert(u"TMPDIR"_s, m_ui->folder());
    handset.setProcessEnvironment(environment);
    handset.setProcessChannelMode(QProcess::MergedChannels);
    handset.start(qEnvironmentVariable("PARLEY_HANDSET"),
                  {u"--no-panel"_s, u"--ui"_s, qEnvironmentVariable("PARLEY_UI"), u"--qml"_s,
                   QStringLiteral(PARLEY_DESK_FOLDER) + u"/front.qml"_s});
    handset.write("show\n");
    QVERIFY2(shows(screensColor, windowSize), handset.readAll().constData());
    if (isCovered)
        QVERIFY(cover());
    handset.write("dial 5551234\n");
    QVERIFY2(shows(screensColor, windowSize), handset.readAll().constData());
}

QTEST_GUILESS_MAIN(TestFront)

#include "tst_front.moc"
