// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "literals.h"
#include "uiundertest.h"

#include <QJsonArray>
#include <QTest>

/// An installed description of the QML module has no effect on the process, and neither has the
/// kit.
class TestQmlModule : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void leavesTheImportAsItIs_data();
    void leavesTheImportAsItIs();
};

void TestQmlModule::leavesTheImportAsItIs_data()
{
    QTest::addColumn<bool>("installed");
    QTest::addColumn<bool>("hasKit");

    QTest::newRow("without it") << false << false;
    QTest::newRow("installed") << true << false;
    QTest::newRow("in a session with the kit") << false << true;
}

void TestQmlModule::leavesTheImportAsItIs()
{
    QFETCH(bool, installed);
    QFETCH(bool, hasKit);

    UiUnderTest ui;
    QVERIFY(ui.isValid());
    if (installed)
        ui.sandbox().place(QStringLiteral(PARLEY_QML_IMPORT_PATH "/com/nimbo/parley"),
                           QStringLiteral(PARLEY_QML_MODULE));
    if (hasKit)
        ui.setEnvironment(u"QML2_IMPORT_PATH"_s, QStringLiteral(PARLEY_KIT));
    // The probe imports the module. The line lists the types that it can create.
    QVERIFY(ui.startProbe({u"-prestart"_s}));
    const QJsonValue made = ui.evaluate(
        u"['QuickMessagesModel', 'Reminder', 'RemindersBase', 'Reminders', 'SimFiltersHelper']"
        u".map(function(type) { try {"
        u" return String(Qt.createQmlObject('import com.nimbo.parley 1.0; ' + type + ' {}',"
        u" __window.contentItem)).split('(')[0]; } catch (error) { return 'none'; } })"_s);
    QCOMPARE(made,
             QJsonValue(QJsonArray{u"QuickMessagesModel"_s, u"Reminder"_s, u"Reminders"_s,
                                   u"none"_s, u"none"_s}));
    QCOMPARE(ui.evaluate(u"typeof __kit + ' ' + String(__window).split('(')[0]"_s),
             QJsonValue(u"undefined QQuickView"_s));
    const QString noTimeDaemon = u"Unable to query reminder alarms"_s;
    QVERIFY(ui.lineBeginning(noTimeDaemon).startsWith(noTimeDaemon));
    const QString unprotected =
        u"Module 'com.nimbo.parley' does not contain a module identifier directive"_s;
    if (hasKit)
        QVERIFY(ui.lineBeginning(unprotected).startsWith(unprotected));
    ui.stop();
    QCOMPARE(ui.takeLog(), QStringList());
}

QTEST_GUILESS_MAIN(TestQmlModule)

#include "tst_qmlmodule.moc"
