// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "commandline.h"
#include "fakeplatform.h"
#include "literals.h"
#include "messagelog.h"
#include "specialsequences.h"

#include <mgconfitem.h>

#include <QJsonObject>
#include <QTest>

#include <memory>

namespace {

const QString supportedKey = u"/desktop/nimbo/specials/supported"_s;

} // namespace

/// How the start-up reads its settings and arguments.
class TestSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { QCOMPARE(m_log->take(), QStringList()); }

    void areAskedForInOrder();
    void becomeTexts_data();
    void becomeTexts();
    void readTheCommandLine_data();
    void readTheCommandLine();

private:
    std::unique_ptr<MessageLog> m_log;
    std::unique_ptr<FakePlatform> m_platform;
};

void TestSettings::init()
{
    m_log.reset();
    m_log = std::make_unique<MessageLog>();
    m_platform.reset();
    m_platform = std::make_unique<FakePlatform>();
}

void TestSettings::areAskedForInOrder()
{
    m_platform->settings = {{supportedKey, QStringList{u"b"_s, u"%1"_s, QString()}}};
    const MGConfItem supported(supportedKey);
    QCOMPARE(m_platform->takeCalls(),
             QStringList(u"MGConfItem(/desktop/nimbo/specials/supported)"_s));
    readSpecialSequences(supported);
    QStringList expected;
    for (const QString &name : {u"b"_s, u"%1"_s, QString()}) {
        for (const QString &member : {u"/sequence"_s, u"/service"_s, u"/url"_s})
            expected << u"MGConfItem(/desktop/nimbo/specials/"_s + name + member + u')';
    }
    QCOMPARE(m_platform->takeCalls(), expected);
}

void TestSettings::becomeTexts_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("text");

    QTest::newRow("text") << QVariant(u"a"_s) << u"a"_s;
    QTest::newRow("empty text") << QVariant(QString()) << QString();
    QTest::newRow("number") << QVariant(-3) << u"-3"_s;
    QTest::newRow("unsigned") << QVariant(4294967295U) << u"4294967295"_s;
    QTest::newRow("fraction") << QVariant(0.25) << u"0.25"_s;
    QTest::newRow("truth") << QVariant(true) << u"true"_s;
    QTest::newRow("list of one") << QVariant(QStringList(u"a"_s)) << u"a"_s;
    QTest::newRow("list") << QVariant(QStringList{u"a"_s, u"b"_s}) << QString();
}

void TestSettings::becomeTexts()
{
    QFETCH(QVariant, value);
    QFETCH(QString, text);

    const QString base = u"/desktop/nimbo/specials/one"_s;
    m_platform->settings = {{supportedKey, u"one"_s},
                            {base + u"/sequence"_s, value},
                            {base + u"/service"_s, value},
                            {base + u"/url"_s, value}};
    const SpecialSequences sequences = readSpecialSequences(MGConfItem(supportedKey));
    QCOMPARE(sequences.keys(), QStringList(text));
    QCOMPARE(sequences.first().userType(), int(QMetaType::QJsonObject));
    QCOMPARE(sequences.first().toJsonObject(),
             QJsonObject({{u"service"_s, text}, {u"url"_s, text}}));
}

void TestSettings::readTheCommandLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("devel");
    QTest::addColumn<bool>("prestart");
    QTest::addColumn<QString>("qmlFile");

    const QString program = u"parley-ui"_s;
    const QString installed = u"/usr/share/parley-ui-nimbo/main.qml"_s;
    QTest::newRow("none") << QStringList{program} << false << false << installed;
    QTest::newRow("all") << QStringList{program, u"-devel"_s, u"-prestart"_s, u"-qml"_s, u"/a"_s}
                         << true << true << u"/a"_s;
    QTest::newRow("no path") << QStringList{program, u"-qml"_s} << false << false << installed;
    QTest::newRow("first of two") << QStringList{program, u"-qml"_s, u"a"_s, u"-qml"_s, u"b"_s}
                                  << false << false << u"a"_s;
    QTest::newRow("first of two, one without path")
        << QStringList{program, u"-qml"_s, u"-qml"_s} << false << false << u"-qml"_s;
    QTest::newRow("option as path")
        << QStringList{program, u"-qml"_s, u"-devel"_s} << true << false << u"-devel"_s;
    QTest::newRow("other case") << QStringList{program, u"-DEVEL"_s, u"-Prestart"_s, u"-QML"_s,
                                               u"a"_s}
                                << false << false << installed;
    QTest::newRow("two dashes") << QStringList{program, u"--devel"_s, u"--prestart"_s, u"--qml"_s,
                                               u"a"_s}
                                << false << false << installed;
    QTest::newRow("empty path") << QStringList{program, u"-qml"_s, QString()} << false << false
                                << QString();
}

void TestSettings::readTheCommandLine()
{
    QFETCH(QStringList, arguments);
    QFETCH(bool, devel);
    QFETCH(bool, prestart);
    QFETCH(QString, qmlFile);

    const CommandLine commandLine(arguments);
    QCOMPARE(commandLine.devel, devel);
    QCOMPARE(commandLine.prestart, prestart);
    QCOMPARE(commandLine.qmlFile, qmlFile);
}

QTEST_APPLESS_MAIN(TestSettings)

#include "tst_settings.moc"
