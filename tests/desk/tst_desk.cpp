// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "childprocess.h"
#include "handsetpart.h"
#include "literals.h"
#include "panelundertest.h"

#include <QDateTime>
#include <QGuiApplication>
#include <QImage>
#include <QProcess>
#include <QQuickWindow>
#include <QRegularExpression>
#include <QScreen>
#include <QTest>

#include <cstdio>

namespace {

constexpr int patience = 30000;

/// Where things are on the demo's screens, which have 360x640 at the corner of the display.
constexpr QPoint keyTwo(180, 240);
constexpr QPoint keyFive(180, 324);
constexpr QPoint callKey(180, 582);
constexpr QPoint remindButton(180, 552);
constexpr QPoint inOneHour(180, 425);
constexpr QPoint firstReply(150, 126);
constexpr QPoint saveButton(180, 565);

bool xdotool(const QStringList &arguments)
{
    return QProcess::execute(u"xdotool"_s, arguments) == 0;
}

bool clickAt(const QPoint &point)
{
    return xdotool({u"mousemove"_s, QString::number(point.x()), QString::number(point.y()),
                    u"click"_s, u"1"_s});
}

/// Replaces what is in the field that has the keyboard.
bool typeInstead(const QString &text)
{
    return xdotool({u"key"_s, u"ctrl+a"_s}) && xdotool({u"type"_s, text});
}

} // namespace

/// The handset on a display, with a pointer and a keyboard.
class TestDesk : public PanelUnderTest
{
    Q_OBJECT

private Q_SLOTS:
    void dialsOnThePad();
    void setsAReminder();
    void editsAQuickReply();
    void clicksANotification();
    void swapsASim();

private:
    bool startDemo();
    bool clickOn(const QString &name);
    bool fill(const QString &name, const QString &text);
    bool phoneRests();
    bool printsLike(const QString &pattern);
};

/// The panel comes with the phone beside it, not over it.
bool TestDesk::startDemo()
{
    return start(QStringLiteral(PARLEY_DEMO_QML)) && panel()->window()->x() >= 360
        && clickOn(u"show"_s) && prints(u"ui: screen: dial pad"_s) && phoneRests();
}

/// Waits until it has stayed where it is for a while: what has come moves what is below.
bool TestDesk::clickOn(const QString &name)
{
    QPoint place;
    int same = 0;
    const auto rests = [&] {
        if (!isShown(name))
            return false;
        const QQuickItem *button = item(name);
        const QPoint now =
            button->mapToGlobal({button->width() / 2, button->height() / 2}).toPoint();
        same = now == place ? same + 1 : 0;
        place = now;
        return same == 20;
    };
    return QTest::qWaitFor(rests, patience) && clickAt(place);
}

bool TestDesk::fill(const QString &name, const QString &text)
{
    return clickOn(name)
        && xdotool({u"windowfocus"_s, u"--sync"_s, QString::number(panel()->window()->winId())})
        && typeInstead(text) && QTest::qWaitFor([&] { return textOf(name) == text; }, patience);
}

/// Waits until what is drawn of the phone has stayed the same for a while.
bool TestDesk::phoneRests()
{
    QImage last;
    int same = 0;
    return QTest::qWaitFor(
        [&] {
            const QImage now =
                QGuiApplication::primaryScreen()->grabWindow(0, 0, 0, 360, 640).toImage();
            same = now == last ? same + 1 : 0;
            last = now;
            return same == 20;
        },
        patience);
}

bool TestDesk::printsLike(const QString &pattern)
{
    const QRegularExpression line(QRegularExpression::anchoredPattern(pattern));
    return QTest::qWaitFor([&] { return m_lines.indexOf(line) >= 0; }, patience);
}

void TestDesk::dialsOnThePad()
{
    QVERIFY(startDemo());
    for (const QPoint &key : {keyFive, keyTwo, keyFive})
        QVERIFY(clickAt(key));
    QVERIFY(xdotool({u"key"_s, u"9"_s}));
    QVERIFY(clickAt(callKey));
    QVERIFY2(prints(u"ui: screen: calling 5259"_s), qUtf8Printable(m_lines.join(u'\n')));
}

void TestDesk::setsAReminder()
{
    QVERIFY(startDemo());
    QVERIFY(fill(u"number"_s, u"5550123"_s));
    QVERIFY(clickOn(u"contact"_s));
    QVERIFY(prints(u"ui: screen: contact 5550123"_s));
    QVERIFY(phoneRests());
    QVERIFY(clickAt(remindButton));
    QVERIFY(prints(u"ui: screen: remind 5550123"_s));
    QVERIFY(phoneRests());
    QVERIFY(clickAt(inOneHour));
    QVERIFY2(prints(u"alarms: alarm 1 is set"_s), qUtf8Printable(m_lines.join(u'\n')));
    QVERIFY(prints(u"ui: screen: contact 5550123 (reminder)"_s));
    const QRegularExpression time(u"^(0:59:\\d\\d|1:00:\\d\\d)$"_s);
    QTRY_VERIFY2(time.match(textOf(u"left 1"_s)).hasMatch(), qUtf8Printable(textOf(u"left 1"_s)));
    QTRY_COMPARE(textOf(u"summary 1"_s), u"Call back 5550123"_s);
}

/// On the phone, and in the panel.
void TestDesk::editsAQuickReply()
{
    QVERIFY(startDemo());
    QVERIFY(fill(u"url"_s, u"replies:"_s));
    QVERIFY(clickOn(u"open"_s));
    QVERIFY(prints(u"ui: screen: replies"_s));
    QVERIFY(phoneRests());
    QVERIFY(xdotool(
        {u"search"_s, u"--sync"_s, u"--name"_s, u"^Phone$"_s, u"windowfocus"_s, u"--sync"_s}));
    QVERIFY(clickAt(firstReply));
    QVERIFY(typeInstead(u"On my way"_s));
    QVERIFY(xdotool({u"key"_s, u"Return"_s}));
    QVERIFY(phoneRests());
    QVERIFY(clickAt(saveButton));
    QVERIFY2(printsLike(u"ui: replies: 3: On my way \\| .*"_s),
             qUtf8Printable(m_lines.join(u'\n')));
    QVERIFY(clickOn(u"repliesPrint"_s));
    QVERIFY2(printsLike(u"replies: +\"On my way\","_s), qUtf8Printable(m_lines.join(u'\n')));

    QVERIFY(fill(u"repliesTexts"_s, u"Later"_s));
    QVERIFY(clickOn(u"repliesWrite"_s));
    QVERIFY2(printsLike(u"ui: replies: 1: Later"_s), qUtf8Printable(m_lines.join(u'\n')));
}

void TestDesk::clicksANotification()
{
    QVERIFY(startDemo());
    QVERIFY(clickOn(u"remind"_s));
    QVERIFY(prints(u"reply: alarm 1, notification 1"_s));
    QVERIFY(clickOn(u"summary 1"_s));
    QVERIFY2(prints(u"> click 1"_s), qUtf8Printable(m_lines.join(u'\n')));
    QVERIFY(prints(u"notifications: 1 chosen: default"_s));
    QVERIFY(prints(u"call history: launched with callHistory"_s));
    QTRY_VERIFY(!isShown(u"summary 1"_s));
}

void TestDesk::swapsASim()
{
    QVERIFY(startDemo());
    QVERIFY(clickOn(u"insert /ril_0"_s));
    QVERIFY(prints(u"sims: SIM 262010000000001 is in /ril_0"_s));
    QVERIFY(prints(u"ui: sims: 1"_s));
    QVERIFY(clickOn(u"remove /ril_0"_s));
    QVERIFY(prints(u"sims: no SIM is in /ril_0"_s));
    QVERIFY(prints(u"ui: sims: 0"_s));
    QVERIFY(fill(u"imsi /ril_0"_s, u"26202123"_s));
    QVERIFY(clickOn(u"insert /ril_0"_s));
    QVERIFY(prints(u"sims: SIM 26202123 is in /ril_0"_s));
    QVERIFY(clickOn(u"dial 26202123 block"_s));
    QVERIFY2(prints(u"ui: filters: dial no, receive yes"_s), qUtf8Printable(m_lines.join(u'\n')));
    QTRY_VERIFY(isLit(u"dial 26202123 block"_s));
}

namespace {

const char *const onADisplay = "PARLEY_TEST_ON_A_DISPLAY";

/// The time zone (POSIX TZ) in which it is after nine in the morning now: what the demo's reminder
/// sheet offers depends on the hour.
QByteArray zoneOfTheMorning()
{
    return "MORNING" + QByteArray::number(QDateTime::currentDateTimeUtc().time().hour() - 9);
}

/// Runs this test once more, on a display of its own.
int runOnADisplay(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QTemporaryDir home;
    ChildProcess display;
    display.start(u"Xvfb"_s,
                  {u"-displayfd"_s, u"1"_s, u"-screen"_s, u"0"_s, u"1400x1000x24"_s, u"-nolisten"_s,
                   u"tcp"_s});
    if (!display.waitForReadyRead(patience)) {
        std::fprintf(stderr, "Xvfb: %s\n", qUtf8Printable(display.errorString()));
        return EXIT_FAILURE;
    }
    qputenv("DISPLAY", ':' + display.readLine().trimmed());
    qunsetenv("WAYLAND_DISPLAY");
    qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("QT_QUICK_BACKEND", "software");
    for (const char *variable : {"HOME", "XDG_RUNTIME_DIR", "XDG_CACHE_HOME"})
        qputenv(variable, home.path().toUtf8());
    qputenv("TZ", zoneOfTheMorning());
    qputenv(onADisplay, "1");
    return QProcess::execute(QCoreApplication::applicationFilePath(),
                             QCoreApplication::arguments().mid(1));
}

} // namespace

int main(int argc, char *argv[])
{
    if (const auto status = runHandsetPart(argc, argv))
        return *status;
    if (!qEnvironmentVariableIsSet(onADisplay))
        return runOnADisplay(argc, argv);
    Panel::prepare();
    const QGuiApplication application(argc, argv);
    TestDesk test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_desk.moc"
