// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "display.h"
#include "handsetpart.h"
#include "literals.h"
#include "panelundertest.h"

#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QQuickWindow>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <cstdio>

namespace {

constexpr int patience = 30000;

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
    bool startScreens();
    QRect placeOnPhone(const QString &name) const;
    bool clickOnPhone(const QString &name);
    bool giveKeyboardToPhone();
    bool clickInPanel(const QString &name);
    bool fillInPanel(const QString &name, const QString &text);
    bool printsLike(const QString &pattern);
};

/// The panel opens beside the phone, not over it.
bool TestDesk::startScreens()
{
    return start(QStringLiteral(PARLEY_DESK_SCREENS)) && clickInPanel(u"show"_s)
        && prints(u"ui: screen: dial pad"_s)
        && QTest::qWaitFor([&] { return placeOnPhone(u"screens"_s).isValid(); }, patience)
        && QTest::qWaitFor([&] { return isShown(u"insert /ril_0"_s); }, patience)
        && !placeOnPhone(u"screens"_s).intersects(panel()->window()->geometry());
}

/// Returns the rectangle of the display that the screens have last reported for an item. It is
/// invalid for an item that is hidden or disabled.
QRect TestDesk::placeOnPhone(const QString &name) const
{
    const QString prefix = u"ui: places: "_s;
    for (auto line = m_lines.crbegin(); line != m_lines.crend(); ++line) {
        if (!line->startsWith(prefix))
            continue;
        const QJsonObject places =
            QJsonDocument::fromJson(line->mid(prefix.size()).toUtf8()).object();
        const QJsonArray place = places.value(name).toArray();
        return {place.at(0).toInt(), place.at(1).toInt(), place.at(2).toInt(), place.at(3).toInt()};
    }
    return {};
}

bool TestDesk::clickOnPhone(const QString &name)
{
    return QTest::qWaitFor([&] { return placeOnPhone(name).isValid(); }, patience)
        && clickAt(placeOnPhone(name).center());
}

bool TestDesk::giveKeyboardToPhone()
{
    return xdotool(
        {u"search"_s, u"--sync"_s, u"--name"_s, u"^Phone$"_s, u"windowfocus"_s, u"--sync"_s});
}

/// Waits for the next frame, whose layout is final when afterAnimating() is emitted.
bool TestDesk::clickInPanel(const QString &name)
{
    QSignalSpy frames(panel()->window(), &QQuickWindow::afterAnimating);
    if (!QTest::qWaitFor([&] { return isShown(name); }, patience))
        return false;
    frames.clear();
    panel()->window()->update();
    if (!frames.wait(patience))
        return false;
    const QQuickItem *button = item(name);
    return clickAt(button->mapToGlobal({button->width() / 2, button->height() / 2}).toPoint());
}

bool TestDesk::fillInPanel(const QString &name, const QString &text)
{
    return clickInPanel(name)
        && xdotool({u"windowfocus"_s, u"--sync"_s, QString::number(panel()->window()->winId())})
        && typeInstead(text) && QTest::qWaitFor([&] { return textOf(name) == text; }, patience);
}

bool TestDesk::printsLike(const QString &pattern)
{
    const QRegularExpression line(QRegularExpression::anchoredPattern(pattern));
    return QTest::qWaitFor([&] { return m_lines.indexOf(line) >= 0; }, patience);
}

void TestDesk::dialsOnThePad()
{
    QVERIFY(startScreens());
    QVERIFY(giveKeyboardToPhone());
    for (const QString &key : {u"key 5"_s, u"key 2"_s, u"key 5"_s})
        QVERIFY(clickOnPhone(key));
    QVERIFY(xdotool({u"key"_s, u"9"_s}));
    QVERIFY(clickOnPhone(u"call"_s));
    QVERIFY2(prints(u"ui: screen: calling 5259"_s), qUtf8Printable(m_lines.join(u'\n')));
}

void TestDesk::setsAReminder()
{
    QVERIFY(startScreens());
    QVERIFY(fillInPanel(u"number"_s, u"5550123"_s));
    QVERIFY(clickInPanel(u"contact"_s));
    QVERIFY(prints(u"ui: screen: contact 5550123"_s));
    QVERIFY(clickOnPhone(u"remind"_s));
    QVERIFY(prints(u"ui: screen: remind 5550123"_s));
    QVERIFY(clickOnPhone(u"In 1 hour"_s));
    QVERIFY2(prints(u"alarms: alarm 1 is set"_s), qUtf8Printable(m_lines.join(u'\n')));
    QVERIFY(prints(u"ui: screen: contact 5550123 (reminder)"_s));
    const QRegularExpression time(u"^(0:59:\\d\\d|1:00:\\d\\d)$"_s);
    QTRY_VERIFY2(time.match(textOf(u"left 1"_s)).hasMatch(), qUtf8Printable(textOf(u"left 1"_s)));
    QTRY_COMPARE(textOf(u"summary 1"_s), u"Call back 5550123"_s);
}

/// On the phone, and in the panel.
void TestDesk::editsAQuickReply()
{
    QVERIFY(startScreens());
    QVERIFY(fillInPanel(u"url"_s, u"replies:"_s));
    QVERIFY(clickInPanel(u"open"_s));
    QVERIFY(prints(u"ui: screen: replies"_s));
    QVERIFY(giveKeyboardToPhone());
    QVERIFY(clickOnPhone(u"reply 0"_s));
    QVERIFY(prints(u"ui: focus: reply 0"_s));
    QVERIFY(typeInstead(u"On my way"_s));
    QVERIFY(xdotool({u"key"_s, u"Return"_s}));
    QVERIFY2(printsLike(u"ui: replies: 3 unsaved: On my way \\| .*"_s),
             qUtf8Printable(m_lines.join(u'\n')));
    QVERIFY(clickOnPhone(u"save"_s));
    QVERIFY2(printsLike(u"ui: replies: 3: On my way \\| .*"_s),
             qUtf8Printable(m_lines.join(u'\n')));
    QVERIFY(clickInPanel(u"repliesPrint"_s));
    QVERIFY2(printsLike(u"replies: +\"On my way\","_s), qUtf8Printable(m_lines.join(u'\n')));

    QVERIFY(fillInPanel(u"repliesTexts"_s, u"Later"_s));
    QVERIFY(clickInPanel(u"repliesWrite"_s));
    QVERIFY2(printsLike(u"ui: replies: 1: Later"_s), qUtf8Printable(m_lines.join(u'\n')));
}

void TestDesk::clicksANotification()
{
    QVERIFY(startScreens());
    QVERIFY(clickInPanel(u"remind"_s));
    QVERIFY(prints(u"reply: alarm 1, notification 1"_s));
    QTRY_VERIFY(isShown(u"left 1"_s)); // It moves the notification.
    QVERIFY(clickInPanel(u"summary 1"_s));
    QVERIFY2(prints(u"> click 1"_s), qUtf8Printable(m_lines.join(u'\n')));
    QVERIFY(prints(u"notifications: 1 chosen: default"_s));
    QVERIFY(prints(u"call history: launched with callHistory"_s));
    QTRY_VERIFY(!isShown(u"summary 1"_s));
}

void TestDesk::swapsASim()
{
    QVERIFY(startScreens());
    QVERIFY(clickInPanel(u"insert /ril_0"_s));
    QVERIFY(prints(u"sims: SIM 262010000000001 is in /ril_0"_s));
    QVERIFY(prints(u"ui: sims: 1"_s));
    QVERIFY(clickInPanel(u"remove /ril_0"_s));
    QVERIFY(prints(u"sims: no SIM is in /ril_0"_s));
    QVERIFY(prints(u"ui: sims: 0"_s));
    QVERIFY(fillInPanel(u"imsi /ril_0"_s, u"26202123"_s));
    QVERIFY(clickInPanel(u"insert /ril_0"_s));
    QVERIFY(prints(u"sims: SIM 26202123 is in /ril_0"_s));
    QVERIFY(clickInPanel(u"dial 26202123 block"_s));
    QVERIFY2(prints(u"ui: filters: dial no, receive yes"_s), qUtf8Printable(m_lines.join(u'\n')));
    QTRY_VERIFY(isLit(u"dial 26202123 block"_s));
}

namespace {

const char *const onADisplay = "PARLEY_TEST_ON_A_DISPLAY";

/// Runs this test once more, on a display of its own.
int runOnADisplay(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QTemporaryDir home;
    XDisplay display({1400, 1000});
    if (const QString error = display.start(); !error.isEmpty()) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(error));
        return EXIT_FAILURE;
    }
    const QMap<QString, QString> variables = display.environment();
    for (auto it = variables.cbegin(); it != variables.cend(); ++it)
        qputenv(qPrintable(it.key()), it.value().toUtf8());
    qunsetenv("WAYLAND_DISPLAY");
    qputenv("QT_QUICK_BACKEND", "software");
    for (const char *variable : {"HOME", "XDG_RUNTIME_DIR", "XDG_CACHE_HOME"})
        qputenv(variable, home.path().toUtf8());
    // Qt's support of displays looks for buses as well. Keep it away from those of this machine.
    const QByteArray noBus = "unix:path=" + home.path().toUtf8() + "/no-bus";
    for (const char *variable : {"DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS"})
        qputenv(variable, noBus);
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
