// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "contrast.h"
#include "handsetpart.h"
#include "literals.h"
#include "panelundertest.h"

#include <QAccessible>
#include <QClipboard>
#include <QFile>
#include <QFontInfo>
#include <QGuiApplication>
#include <QProcess>
#include <QQuickItemGrabResult>
#include <QQuickWindow>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTest>

#include <csignal>
#include <functional>
#include <initializer_list>
#include <utility>

namespace {

constexpr int patience = 30000;

const QByteArray screens =
    "import QtQuick 2.15\nimport com.nimbo.parley 1.0\nItem { ParleyUiAdaptor {} }\n";

} // namespace

class TestPanel : public PanelUnderTest
{
    Q_OBJECT

private Q_SLOTS:
    void asksTheCallUi();
    void quotesWhatIsTyped();
    void changesSims();
    void changesRules();
    void showsRulesThatOthersSet();
    void showsAlarms();
    void showsNotifications();
    void answersDueAlarms();
    void controlsServices();
    void showsNothingOfAServiceThatIsAway();
    void opensAndWritesQuickReplies();
    void startsAgainAUiThatWasKilled();
    void showsErrorsOfScreens();
    void showsTheJournal();
    void showsTheTranscript();
    void recallsTypedCommands();
    void givesAScriptThatCanBeReplayed();
    void reachesEverythingWithTheKeyboard();
    void tellsAScreenReader();
    void hasEnoughContrast();
    void fitsASmallWindow();

private:
    QVector<QQuickItem *> stops();
};

/// Returns the items that Tab reaches, in their order.
QVector<QQuickItem *> TestPanel::stops()
{
    QQuickWindow *window = panel()->window();
    QVector<QQuickItem *> reached;
    for (int i = 0; i < 200; ++i) {
        QTest::keyClick(window, Qt::Key_Tab);
        QQuickItem *one = window->activeFocusItem();
        if (!one || reached.contains(one))
            break;
        reached.append(one);
    }
    return reached;
}

void TestPanel::asksTheCallUi()
{
    QVERIFY(startWith(screens));
    for (const auto &[button, line] : std::initializer_list<std::pair<QString, QString>>{
             {u"show"_s, u"show"_s},
             {u"ongoing"_s, u"ongoing"_s},
             {u"toggle"_s, u"toggle"_s},
             {u"toggleAs"_s, u"toggle-as 65534 65534"_s},
             {u"errorDialog"_s, u"error-dialog"_s},
             {u"dial"_s, u"dial \"+49 30 1234567\""_s},
             {u"contact"_s, u"contact \"+49 30 1234567\""_s},
             {u"incoming"_s, u"ring +49301234567"_s},
             {u"dialVia"_s, u"dial-via /ril_1 \"+49 30 1234567\""_s},
             {u"open"_s, u"open https://example.org/voicemail"_s},
             {u"restart"_s, u"restart"_s}})
        click(button, line);
}

void TestPanel::quotesWhatIsTyped()
{
    QVERIFY(startWith(screens));
    QVERIFY(setText(u"number"_s, u" \"*#06#\" \\"_s));
    click(u"dial"_s, u"dial \" \\\"*#06#\\\" \\\\\""_s);
    QVERIFY(setText(u"number"_s, QString()));
    click(u"contact"_s, u"contact \"\""_s);
}

void TestPanel::changesSims()
{
    QVERIFY(startWith(screens));
    QTRY_VERIFY(isShown(u"imsi /ril_1"_s));
    QVERIFY(setText(u"imsi /ril_1"_s, u"26202"_s));
    click(u"insert /ril_1"_s, u"sim insert 26202 /ril_1"_s);
    click(u"lock /ril_1"_s, u"sim lock /ril_1"_s);
    click(u"unlock /ril_1"_s, u"sim unlock /ril_1"_s);
    QTRY_VERIFY(isShown(u"lock /ril_1"_s));
    QVERIFY(isShown(u"insert /ril_0"_s));
    click(u"remove /ril_1"_s, u"sim remove /ril_1"_s);
    QTRY_VERIFY(isShown(u"insert /ril_1"_s));
}

void TestPanel::changesRules()
{
    QVERIFY(startWith(screens));
    QTRY_VERIFY(isShown(u"imsi /ril_0"_s));
    QVERIFY(setText(u"imsi /ril_0"_s, u"26201"_s));
    click(u"insert /ril_0"_s, u"sim insert 26201 /ril_0"_s);
    QTRY_VERIFY(isLit(u"dial 26201 none"_s));
    click(u"dial 26201 block"_s, u"rule dial 26201 block"_s);
    QTRY_VERIFY(isLit(u"dial 26201 block"_s));
    QVERIFY(!isLit(u"dial 26201 none"_s));
    QVERIFY(isLit(u"incoming 26201 none"_s));
    click(u"incoming 26201 hangup"_s, u"rule incoming 26201 hangup"_s);
    QTRY_VERIFY(isLit(u"incoming 26201 hangup"_s));
    click(u"dial 26201 none"_s, u"rule dial 26201 none"_s);
    QTRY_VERIFY(isLit(u"dial 26201 none"_s));
    QVERIFY(isLit(u"dial default allow"_s));
    click(u"dial default block"_s, u"default dial block"_s);
    QTRY_VERIFY(isLit(u"dial default block"_s));
    QVERIFY(!isLit(u"dial default allow"_s));

    // A rule stays when its SIM goes.
    click(u"remove /ril_0"_s, u"sim remove /ril_0"_s);
    QTRY_VERIFY(isShown(u"insert /ril_0"_s));
    QVERIFY(isShown(u"incoming 26201 hangup"_s));
    QTRY_VERIFY(!isShown(u"dial 26201 none"_s));
}

void TestPanel::showsRulesThatOthersSet()
{
    QVERIFY(startWith(screens));
    panel()->run({u"rule"_s, u"dial"_s, u"26203"_s, u"7"_s});
    QTRY_VERIFY(isShown(u"dial 26203 none"_s));
    for (const QString &action : {u"none"_s, u"block"_s, u"allow"_s, u"hangup"_s})
        QVERIFY(!isLit(u"dial 26203 "_s + action));
}

void TestPanel::showsAlarms()
{
    QVERIFY(startWith(screens));
    QVERIFY(setText(u"remindNumber"_s, u"555"_s));
    QVERIFY(setText(u"remindSeconds"_s, u"3600"_s));
    QVERIFY(setText(u"remindName"_s, u"Ada L"_s));
    click(u"remind"_s, u"remind 555 3600 \"Ada L\""_s);
    const QRegularExpression time(u"^(0:59:5\\d|1:00:00)$"_s);
    QTRY_VERIFY2(time.match(textOf(u"left 1"_s)).hasMatch(), qUtf8Printable(textOf(u"left 1"_s)));
    const QString before = textOf(u"left 1"_s);
    QTRY_VERIFY(textOf(u"left 1"_s) < before || before == u"1:00:00"_s);
    click(u"remind"_s, u"remind 555 3600 \"Ada L\""_s);
    click(u"fire 1"_s, u"fire 1"_s);
    QTRY_VERIFY(!isShown(u"fire 1"_s));
    click(u"cancel 2"_s, u"cancel 2"_s);
    QTRY_VERIFY(!isShown(u"cancel 2"_s));
}

void TestPanel::showsNotifications()
{
    QVERIFY(startWith(screens));
    for (const QString &name : {u"Ada"_s, u"Bob"_s, u"Cyd"_s})
        panel()->run({u"remind"_s, u"555"_s, u"3600"_s, name});
    QTRY_COMPARE(textOf(u"summary 3"_s), u"Call Cyd"_s);
    const QQuickItem *const lastButton = item(u"dismiss 3"_s);
    click(u"click 1"_s, u"click 1"_s);
    QVERIFY(m_lines.contains(u"notifications: 1 chosen: default"_s));
    QTRY_VERIFY(!isShown(u"click 1"_s));
    click(u"click 2 app"_s, u"click 2 app"_s);
    QVERIFY(m_lines.contains(u"notifications: 2 chosen: app"_s));
    QTRY_VERIFY(!isShown(u"click 2"_s));
    QCOMPARE(item(u"dismiss 3"_s), lastButton); // It can still be pressed.
    click(u"dismiss 3"_s, u"dismiss 3"_s);
    QTRY_VERIFY(!isShown(u"dismiss 3"_s));
}

void TestPanel::answersDueAlarms()
{
    QVERIFY(startWith("import QtQuick 2.15\nimport com.nimbo.parley 1.0\n"
                      "Item { ParleyUiAdaptor { onDial: function(number) { console.info('dial', "
                      "number) } } }\n"));
    for (const QString &name : {u"Ada"_s, u"Bob"_s})
        panel()->run({u"remind"_s, u"555"_s, u"3600"_s, name});
    QTRY_VERIFY(isShown(u"dismiss 2"_s));
    click(u"dismiss 1"_s, u"dismiss 1"_s); // Those of the reminders.
    click(u"dismiss 2"_s, u"dismiss 2"_s);

    click(u"fire 1"_s, u"fire 1"_s);
    QTRY_COMPARE(textOf(u"summary 3"_s), u"Ada"_s);
    QCOMPARE(textOf(u"click 3 call"_s), u"Call"_s);
    QCOMPARE(textOf(u"click 3 snooze"_s), u"In 10 minutes"_s);
    click(u"click 3 call"_s, u"click 3 call"_s);
    QTRY_VERIFY(!isShown(u"click 3"_s));
    QVERIFY2(m_lines.contains(u"ui: dial 555"_s), qUtf8Printable(m_lines.join(u'\n')));

    click(u"fire 2"_s, u"fire 2"_s);
    QTRY_COMPARE(textOf(u"summary 4"_s), u"Bob"_s);
    click(u"click 4 snooze"_s, u"click 4 snooze"_s);
    QTRY_VERIFY(!isShown(u"click 4"_s));
    QTRY_VERIFY(textOf(u"left 3"_s).startsWith(u"0:09:5"_s) || textOf(u"left 3"_s) == u"0:10:00"_s);
}

void TestPanel::controlsServices()
{
    QVERIFY(startWith(screens));
    for (const QString &service : {u"time-daemon"_s, u"notification-service"_s, u"alarm-service"_s,
                                   u"call-history"_s, u"telephony"_s}) {
        const QString state = u"state "_s + service;
        QCOMPARE(textOf(state), u"running"_s);
        click(u"hang "_s + service, service + u" hang"_s);
        QTRY_COMPARE(textOf(state), u"hung"_s);
        click(u"hang "_s + service, service + u" continue"_s);
        QTRY_COMPARE(textOf(state), u"running"_s);
        click(u"hang "_s + service, service + u" hang"_s);
        click(u"stop "_s + service, service + u" stop"_s);
        QTRY_COMPARE(textOf(state), u"stopped"_s);
        QVERIFY(!item(u"hang "_s + service)->isEnabled());
        click(u"stop "_s + service, service + u" start"_s);
        QTRY_COMPARE(textOf(state), u"running"_s);
    }
    QCOMPARE(textOf(u"state ui"_s), u"running"_s);
}

void TestPanel::showsNothingOfAServiceThatIsAway()
{
    QVERIFY(startWith(screens));
    panel()->run({u"remind"_s, u"555"_s, u"3600"_s});
    QTRY_VERIFY(isShown(u"fire 1"_s));
    QTRY_VERIFY(isShown(u"insert /ril_0"_s));
    panel()->run({u"telephony"_s, u"hang"_s});
    panel()->run({u"time-daemon"_s, u"stop"_s});
    QTRY_VERIFY(!isShown(u"fire 1"_s));
    QVERIFY(isShown(u"insert /ril_0"_s));
    panel()->run({u"telephony"_s, u"stop"_s});
    QTRY_VERIFY(!isShown(u"insert /ril_0"_s));
    QTRY_VERIFY(!isShown(u"dial default block"_s));
    panel()->run({u"telephony"_s, u"start"_s});
    panel()->run({u"time-daemon"_s, u"start"_s});
    QTRY_VERIFY(isShown(u"insert /ril_0"_s));
    QTRY_VERIFY(isShown(u"dial default block"_s));
    QTRY_VERIFY(isShown(u"fire 1"_s));
}

void TestPanel::opensAndWritesQuickReplies()
{
    qputenv("VISUAL", "true");
    QVERIFY(startWith(screens));
    QCOMPARE(textOf(u"repliesPath"_s), panel()->repliesPath());
    QFile replies(panel()->repliesPath());
    QVERIFY(!replies.exists());
    click(u"repliesEdit"_s, u"replies edit"_s);
    QVERIFY(replies.exists());
    QVERIFY(setText(u"repliesTexts"_s, u"On my way\n\nSay \"please\"\n"_s));
    click(u"repliesWrite"_s, u"replies write \"On my way\" \"Say \\\"please\\\"\""_s);
    QVERIFY(replies.open(QIODevice::ReadOnly));
    QVERIFY(replies.readAll().contains("Say \\\"please\\\""));
    click(u"repliesPrint"_s, u"replies"_s);
    qunsetenv("VISUAL");
}

void TestPanel::startsAgainAUiThatWasKilled()
{
    QVERIFY(startWith(screens));
    QVERIFY(!isShown(u"banner"_s));
    const pid_t ui = uiProcess();
    QVERIFY(ui > 0);
    QCOMPARE(kill(ui, SIGKILL), 0);
    QTRY_VERIFY(isShown(u"banner"_s));
    QCOMPARE(textOf(u"bannerText"_s), u"The call UI was ended by signal 9"_s);
    QCOMPARE(textOf(u"state ui"_s), u"ended"_s);
    click(u"startAgain"_s, u"restart"_s);
    QVERIFY(!isShown(u"banner"_s));
    QCOMPARE(textOf(u"state ui"_s), u"running"_s);
    click(u"show"_s, u"show"_s);
    QCOMPARE(m_lines.filter(QRegularExpression(u"^reply: done \\("_s)).size(), 1);
}

void TestPanel::showsErrorsOfScreens()
{
    QVERIFY(startWith("import QtQuick 2.15\n\nItem { bogus: 1 }\n"));
    QVERIFY(m_lines.last().startsWith(u"The call UI is not on the bus yet"_s));
    QTRY_VERIFY(isShown(u"qmlErrors"_s));
    QTRY_COMPARE(textOf(u"qmlError 0"_s),
                 m_folder->filePath(u"screens.qml"_s)
                     + u":3:8: Cannot assign to non-existent property \"bogus\""_s);
    QVERIFY(writeScreens(screens));
    click(u"restart"_s, u"restart"_s);
    QTRY_VERIFY(!isShown(u"qmlErrors"_s));
    click(u"show"_s, u"show"_s);
}

void TestPanel::showsTheJournal()
{
    QVERIFY(startWith(screens));
    const auto shows = [this](const QString &part) {
        QQuickItem *list = item(u"journal"_s);
        for (int i = 0; i < list->property("count").toInt(); ++i) {
            QMetaObject::invokeMethod(list, "positionViewAtIndex", Q_ARG(int, i), Q_ARG(int, 0));
            if (textOf(u"entry %1"_s.arg(i)).contains(part))
                return true;
        }
        return false;
    };
    click(u"dial"_s, u"dial \"+49 30 1234567\""_s);
    QTRY_VERIFY(shows(u" session → com.nimbo.parley.ui.dial(\"+49 30 1234567\")"_s));
    click(u"journalClear"_s, u"journal clear"_s);
    QTRY_VERIFY(!shows(u"dial"_s));
}

void TestPanel::showsTheTranscript()
{
    QVERIFY(startWith(screens));
    QVERIFY(setText(u"command"_s, u"dial 555 # not a remark"_s));
    item(u"command"_s)->forceActiveFocus();
    QTest::keyClick(panel()->window(), Qt::Key_Return);
    QVERIFY(runsToTheEnd(u"dial 555 # not a remark"_s));
    QCOMPARE(textOf(u"command"_s), QString());
    QTRY_VERIFY(
        textOf(u"transcript"_s).contains(u"> dial 555 # not a remark\n  failed: usage: "_s));
    QVERIFY(textOf(u"transcript"_s).contains(u"The call UI is on the bus after "_s));
    // The list of commands is aligned.
    QVERIFY(QFontInfo(item(u"transcript"_s)->property("font").value<QFont>()).fixedPitch());

    for (int i = 0; i < 1200; ++i)
        panel()->type(u"# remark %1"_s.arg(i));
    QTRY_VERIFY_WITH_TIMEOUT(textOf(u"transcript"_s).endsWith(u"# remark 1199"_s), patience);
    QVERIFY(textOf(u"transcript"_s).count(u'\n') < 1100);
}

void TestPanel::recallsTypedCommands()
{
    QVERIFY(startWith(screens));
    QQuickItem *field = item(u"command"_s);
    const auto key = [&](Qt::Key one) {
        field->forceActiveFocus();
        QTest::keyClick(panel()->window(), one);
        return textOf(u"command"_s);
    };
    QCOMPARE(key(Qt::Key_Up), QString());
    for (const QString &command : {u"# one"_s, QString(), u"# two"_s}) {
        QVERIFY(setText(u"command"_s, command));
        QCOMPARE(key(Qt::Key_Return), QString());
    }
    QVERIFY(setText(u"command"_s, u"begun"_s));
    QCOMPARE(key(Qt::Key_Up), u"# two"_s);
    QCOMPARE(key(Qt::Key_Up), u"# one"_s);
    QCOMPARE(key(Qt::Key_Up), u"# one"_s);
    QCOMPARE(key(Qt::Key_Down), u"# two"_s);
    QCOMPARE(key(Qt::Key_Down), u"begun"_s);
    QCOMPARE(key(Qt::Key_Down), u"begun"_s);
    QCOMPARE(key(Qt::Key_Up), u"# two"_s);
    QCOMPARE(key(Qt::Key_Return), QString());
    QTRY_COMPARE(m_lines.count(u"# two"_s), 2);
}

void TestPanel::givesAScriptThatCanBeReplayed()
{
    QVERIFY(startWith(screens));
    click(u"dial"_s, u"dial \"+49 30 1234567\""_s);
    click(u"insert /ril_0"_s, u"sim insert 262010000000001 /ril_0"_s);
    click(u"remind"_s, u"remind 5550123 600 Ada"_s);
    click(u"click 1"_s, u"click 1"_s);
    click(u"stop time-daemon"_s, u"time-daemon stop"_s);
    const QString script = u"dial \"+49 30 1234567\"\nsim insert 262010000000001 /ril_0\n"
                           "remind 5550123 600 Ada\nclick 1\ntime-daemon stop\n"_s;
    QCOMPARE(panel()->script(), script);
    press(u"copyScript"_s);
    QCOMPARE(QGuiApplication::clipboard()->text(), script);

    QFile file(m_folder->filePath(u"script"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(script.toUtf8());
    file.close();
    QProcess other;
    other.setProcessChannelMode(QProcess::MergedChannels);
    other.start(qEnvironmentVariable("PARLEY_HANDSET"),
                {u"--no-panel"_s, u"--qml"_s, m_folder->filePath(u"screens.qml"_s), u"--script"_s,
                 file.fileName()});
    QVERIFY(other.waitForFinished(patience));
    QVERIFY2(other.exitCode() == 0, other.readAll().constData());
    QVERIFY(file.remove());
}

/// Tab reaches everything that can be clicked, and a key clicks it.
void TestPanel::reachesEverythingWithTheKeyboard()
{
    QVERIFY(startWith(screens));
    QQuickWindow *window = panel()->window();
    window->requestActivate();
    QTRY_VERIFY(window->isActive());
    panel()->run({u"remind"_s, u"555"_s, u"3600"_s, u"Ada"_s});
    QTRY_VERIFY(isShown(u"click 1"_s));

    QStringList reached;
    for (const QQuickItem *one : stops()) {
        while (one->objectName().isEmpty() && one->parentItem())
            one = one->parentItem(); // The entry of a list.
        reached.append(one->objectName());
    }
    for (const QString &name : {u"show"_s,           u"number"_s,
                                u"dial"_s,           u"incoming"_s,
                                u"modem"_s,          u"url"_s,
                                u"open"_s,           u"imsi /ril_0"_s,
                                u"insert /ril_1"_s,  u"dial default block"_s,
                                u"fire 1"_s,         u"cancel 1"_s,
                                u"click 1"_s,        u"click 1 app"_s,
                                u"dismiss 1"_s,      u"remind"_s,
                                u"restart"_s,        u"hang telephony"_s,
                                u"stop telephony"_s, u"repliesEdit"_s,
                                u"repliesTexts"_s,   u"repliesWrite"_s,
                                u"journal"_s,        u"journalClear"_s,
                                u"transcript"_s,     u"command"_s,
                                u"copyScript"_s})
        QVERIFY2(reached.contains(name), qUtf8Printable(name + u" of "_s + reached.join(u", "_s)));

    item(u"dismiss 1"_s)->forceActiveFocus();
    QTest::keyClick(window, Qt::Key_Return);
    QVERIFY(runsToTheEnd(u"dismiss 1"_s));
    item(u"show"_s)->forceActiveFocus();
    QTest::keyClick(window, Qt::Key_Space);
    QVERIFY(runsToTheEnd(u"show"_s));
}

/// Everything that Tab reaches has a role and a name of its own.
void TestPanel::tellsAScreenReader()
{
    QAccessible::setActive(true);
    QVERIFY(startWith(screens));
    QQuickWindow *window = panel()->window();
    window->requestActivate();
    QTRY_VERIFY(window->isActive());
    panel()->run({u"remind"_s, u"555"_s, u"3600"_s, u"Ada"_s});
    panel()->run({u"sim"_s, u"insert"_s, u"26201"_s, u"/ril_1"_s});
    QTRY_VERIFY(isShown(u"click 1"_s));
    QTRY_VERIFY(isShown(u"lock /ril_1"_s));

    const QVector<QAccessible::Role> roles{QAccessible::Button, QAccessible::EditableText,
                                           QAccessible::List, QAccessible::ListItem};
    QStringList names;
    for (QQuickItem *one : stops()) {
        const QAccessibleInterface *told = QAccessible::queryAccessibleInterface(one);
        QVERIFY2(told, qUtf8Printable(one->objectName()));
        const QString name = told->text(QAccessible::Name);
        QVERIFY2(!name.isEmpty() && roles.contains(told->role()),
                 qUtf8Printable(u"%1: %2, %3"_s.arg(one->objectName(), name).arg(told->role())));
        names.append(name + u" (%1)"_s.arg(told->role()));
    }
    QVERIFY(names.size() > 50);
    for (const QString &name : {u"Stop telephony"_s, u"Fire alarm 1"_s, u"block dial default"_s,
                                u"Lock /ril_1"_s, u"Dismiss (Call Ada)"_s, u"Call Ada"_s})
        QVERIFY2(names.contains(name + u" (%1)"_s.arg(QAccessible::Button)),
                 qUtf8Printable(names.join(u'\n')));
    QAccessible::setActive(false);
}

void TestPanel::hasEnoughContrast()
{
    QVERIFY(startWith("import QtQuick 2.15\n\nItem { bogus: 1 }\n")); // There is an error to show.
    panel()->run({u"remind"_s, u"555"_s, u"3600"_s, u"Ada"_s});
    panel()->run({u"telephony"_s, u"hang"_s});
    QTRY_VERIFY(isShown(u"click 1"_s));
    QTRY_VERIFY(isShown(u"qmlErrors"_s));
    QTRY_COMPARE(textOf(u"state telephony"_s), u"hung"_s);
    const QSize size(1000, 1400); // Everything is in sight.
    QQuickItem *content = panel()->window()->contentItem();
    panel()->window()->resize(size);
    QTRY_COMPARE(content->size().toSize(), size);
    const QSharedPointer<QQuickItemGrabResult> grabbed = content->grabToImage();
    QSignalSpy ready(grabbed.data(), &QQuickItemGrabResult::ready);
    QVERIFY(ready.wait(patience));
    const QImage picture = grabbed->image();
    int read = 0;
    QStringList poor;
    const std::function<void(const QQuickItem *)> readAll = [&](const QQuickItem *item) {
        if (!item->isVisible() || !item->isEnabled())
            return;
        const QRect place =
            item->mapRectToScene({0, 0, item->width(), item->height()}).toAlignedRect();
        const QString text = item->property("text").toString();
        const QVariant color = item->property("color");
        if (!text.isEmpty() && color.isValid() && picture.rect().contains(place)) {
            const QColor background = backgroundOf(picture, place);
            const double ratio = contrast(color.value<QColor>(), background);
            if (ratio < leastContrast)
                poor.append(u"%1 on %2: %3"_s.arg(text, background.name()).arg(ratio));
            ++read;
        }
        const QList<QQuickItem *> children = item->childItems();
        for (const QQuickItem *child : children)
            readAll(child);
    };
    readAll(content);
    QCOMPARE(poor, QStringList());
    QVERIFY2(read > 50, qUtf8Printable(QString::number(read)));
}

/// The item with the keyboard focus is visible even if the window is small.
void TestPanel::fitsASmallWindow()
{
    QVERIFY(startWith(screens));
    QQuickWindow *window = panel()->window();
    for (const QSize &size : {QSize(760, 400), QSize(420, 600)}) {
        window->resize(size);
        QTRY_COMPARE(window->contentItem()->size().toSize(), size);
        for (const QString &name :
             {u"repliesWrite"_s, u"stop telephony"_s, u"show"_s, u"copyScript"_s}) {
            QQuickItem *one = item(name);
            one->forceActiveFocus();
            const auto isInside = [&] {
                const QRectF place = one->mapRectToScene({0, 0, one->width(), one->height()});
                return QRectF(QPointF(), window->size()).contains(place);
            };
            QTRY_VERIFY2(isInside(), qUtf8Printable(name));
        }
    }
}

int main(int argc, char *argv[])
{
    if (const auto status = runHandsetPart(argc, argv))
        return *status;
    const QTemporaryDir home;
    for (const char *variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QUICK_BACKEND"})
        qunsetenv(variable);
    for (const char *variable : {"HOME", "XDG_RUNTIME_DIR", "XDG_CACHE_HOME"})
        qputenv(variable, home.path().toUtf8());
    qputenv("QT_QPA_PLATFORM", "offscreen");
    Panel::prepare();
    const QGuiApplication application(argc, argv);
    TestPanel test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_panel.moc"
