// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "document.h"
#include "fakeofono.h"
#include "literals.h"
#include "messagelog.h"
#include "scriptedservice.h"
#include "uiundertest.h"

#include <QFile>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QTest>

#include <memory>

namespace {

const QString modem = u"/ril_0"_s;
const QString call = u"/ril_0/voicecall01"_s;

} // namespace

/// The module as screens import it.
class TestCallsModule : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void isLoadedOnlyByScreensThatImportIt_data();
    void isLoadedOnlyByScreensThatImportIt();
    void connectsWhenAnObjectIsComplete();
    void runsTheScreenOfItsDocument();

private:
    QTemporaryDir m_folder;
    PrivateBus m_bus;
};

void TestCallsModule::initTestCase()
{
    QVERIFY(m_bus.start(m_folder.path(), u"both"_s));
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address().toUtf8());
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().toUtf8());
}

void TestCallsModule::isLoadedOnlyByScreensThatImportIt_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<bool>("loaded");

    QTest::newRow("without it") << QString() << false;
    QTest::newRow("with it") << u"import com.nimbo.calls 1.0"_s << true;
}

void TestCallsModule::isLoadedOnlyByScreensThatImportIt()
{
    QFETCH(QString, line);
    QFETCH(bool, loaded);

    UiUnderTest ui;
    QVERIFY(ui.isValid());
    ui.setEnvironment(u"QML2_IMPORT_PATH"_s, qEnvironmentVariable("PARLEY_QML_MODULES"));
    // The service tells which process it is.
    const QString screens =
        u"import QtQuick 2.15\nimport com.nimbo.parley 1.0\n%1\n"
        "Item { ParleyUiAdaptor { } Component.onCompleted: console.info('loaded') }\n"_s;
    QVERIFY(ui.startScreens(ui.writeFile(u"screens.qml"_s, screens.arg(line).toUtf8()),
                            {u"-prestart"_s}));
    QFile maps(u"/proc/%1/maps"_s.arg(ui.processId()));
    QVERIFY(maps.open(QIODevice::ReadOnly));
    const QByteArray mapped = maps.readAll();
    QVERIFY(mapped.contains("Qml.so"));
    QCOMPARE(mapped.contains("libparleycalls"), loaded);
    ui.stop();
    QCOMPARE(ui.takeLog(), QStringList());
}

void TestCallsModule::connectsWhenAnObjectIsComplete()
{
    FakeOfono ofono(m_bus.address());
    ofono.answerNothing();
    QQmlEngine engine;
    engine.addImportPath(qEnvironmentVariable("PARLEY_QML_MODULES"));
    QQmlComponent component(&engine);
    component.setData("import com.nimbo.calls 1.0\nCalls {}", {});
    QCOMPARE(component.errorString(), QString());
    const std::unique_ptr<QObject> calls(component.beginCreate(engine.rootContext()));
    QVERIFY(calls);
    ofono.settle();
    QCOMPARE(ofono.waiting(), 0);
    component.completeCreate();
    QCOMPARE(ofono.next().member(), u"GetModems"_s);
}

void TestCallsModule::runsTheScreenOfItsDocument()
{
    const Document document(QStringLiteral(PARLEY_CALLS_DOCUMENT));
    QCOMPARE(document.blocks().constFirst().kind, u"qml"_s);
    const QStringList lines = document.blocks().constFirst().lines;
    QVERIFY(lines.size() <= 40);
    QFile file(m_folder.filePath(u"screen.qml"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(lines.join(u'\n').toUtf8());
    file.close();

    MessageLog log;
    FakeOfono ofono(m_bus.address(), {modem});
    ScriptedService feedback(m_bus.address(), u"org.sigxcpu.Feedback"_s,
                             u"/org/sigxcpu/Feedback"_s);
    ScriptedService audio(m_bus.address(), u"org.mobian_project.CallAudio"_s,
                          u"/org/mobian_project/CallAudio"_s);
    QQuickView view;
    view.engine()->addImportPath(qEnvironmentVariable("PARLEY_QML_MODULES"));
    view.setSource(QUrl::fromLocalFile(file.fileName()));
    QCOMPARE(view.status(), QQuickView::Ready);
    view.show();
    QQuickItem *const screen = view.rootObject();
    QVERIFY(!screen->isVisible());

    QVariantMap properties = FakeOfono::call(u"incoming"_s);
    properties.insert(u"Name"_s, QString());
    ofono.addModem(u"/ril_1"_s, FakeOfono::modem());
    ofono.setCalls(modem, {{QDBusObjectPath(call), properties}});
    ofono.addModem(modem, FakeOfono::modem());
    ofono.addCall(call, properties);
    QTRY_VERIFY(screen->isVisible());
    const QDBusMessage ring = feedback.next(u"TriggerFeedback"_s);
    feedback.reply(ring, {7U});

    // The items of the screen are the texts, in their order.
    const auto textOf = [screen](int index) {
        return screen->childItems().value(index)->property("text").toString();
    };
    QCOMPARE(textOf(0), u"5550100"_s);
    ofono.changeCall(call, u"Name"_s, u"Ada"_s);
    QTRY_COMPARE(textOf(0), u"Ada"_s);
    QCOMPARE(textOf(1), u"Answer"_s);
    QTest::mouseClick(&view, Qt::LeftButton, {}, QPoint(10, 105));
    ofono.reply(ofono.next(u"Answer"_s), {});
    ofono.changeCall(call, u"State"_s, u"active"_s);
    QCOMPARE(feedback.next(u"EndFeedback"_s).arguments(), QVariantList({7U}));
    const QDBusMessage mode = audio.next(u"SelectMode"_s);
    QCOMPARE(mode.arguments(), QVariantList({1U}));
    audio.reply(mode, {true});
    QTRY_VERIFY(!screen->isVisible());
    ofono.endCall(call, u"remote"_s);
    QCOMPARE(audio.next(u"SelectMode"_s).arguments(), QVariantList({0U}));

    ofono.addCall(call, FakeOfono::call(u"incoming"_s));
    QTRY_VERIFY(screen->isVisible());
    QTest::mouseClick(&view, Qt::LeftButton, {}, QPoint(10, 205));
    ofono.fail(ofono.next(u"Hangup"_s), u"org.ofono.Error.InProgress"_s, {});
    const QString failed = u"info: hangUp: parley-la-error_busy"_s; // There is no catalogue here.
    QStringList logged;
    QTRY_VERIFY((logged += log.take()).contains(failed));
    QCOMPARE(logged.count(u"info: 5550100 has ended, by remote"_s), 1);
    logged.removeAll(failed);
    logged.removeAll(u"info: 5550100 has ended, by remote"_s);
    logged.removeAll(u"warning: This plugin does not support raise()"_s);
    QCOMPARE(logged, QStringList());
}

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    QGuiApplication application(argc, argv);
    TestCallsModule test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_callsmodule.moc"
