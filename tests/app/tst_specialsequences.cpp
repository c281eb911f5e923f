// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "literals.h"
#include "uiundertest.h"

#include <QElapsedTimer>
#include <QJsonObject>
#include <QTest>

#include <algorithm>
#include <memory>

namespace {

const QString supported = u"/desktop/nimbo/specials/supported"_s;

QString keyOf(const QString &name, const QString &member)
{
    return u"/desktop/nimbo/specials/"_s + name + u'/' + member;
}

} // namespace

class TestSpecialSequences : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void areReadFromTheSettings_data();
    void areReadFromTheSettings();
    void areReadOnce();
    void costLittleByTheTenThousand();

private:
    static double startUp(UiUnderTest &ui);

    std::unique_ptr<UiUnderTest> m_ui;
};

void TestSpecialSequences::init()
{
    m_ui = std::make_unique<UiUnderTest>();
    QVERIFY(m_ui->isValid());
}

void TestSpecialSequences::cleanup()
{
    m_ui->stop();
    QCOMPARE(m_ui->takeLog().join(u'\n'), QString());
    m_ui.reset();
}

void TestSpecialSequences::areReadFromTheSettings_data()
{
    QTest::addColumn<Settings>("settings");
    QTest::addColumn<QJsonObject>("specials");

    const QJsonObject none;
    const QJsonObject urlOnly{{u"url"_s, u"tel:1"_s}};
    QTest::newRow("no settings") << Settings() << none;
    QTest::newRow("unset") << Settings{{keyOf(u"one"_s, u"url"_s), u"'tel:1'"_s}} << none;
    QTest::newRow("empty") << Settings{{supported, u"@as []"_s}} << none;
    QTest::newRow("not a list") << Settings{{supported, u"(1, 2)"_s}} << none;
    QTest::newRow("a number for a list") << Settings{{supported, u"1"_s}} << none;
    QTest::newRow("a single name for a list")
        << Settings{{supported, u"'one'"_s},
                    {keyOf(u"one"_s, u"sequence"_s), u"'*1#'"_s},
                    {keyOf(u"one"_s, u"url"_s), u"'tel:1'"_s}}
        << QJsonObject{{u"*1#"_s, urlOnly}};
    QTest::newRow("service and url")
        << Settings{{supported, u"['one']"_s},
                    {keyOf(u"one"_s, u"sequence"_s), u"'*1#'"_s},
                    {keyOf(u"one"_s, u"service"_s), u"'com.example'"_s},
                    {keyOf(u"one"_s, u"url"_s), u"'tel:1'"_s}}
        << QJsonObject{
               {u"*1#"_s, QJsonObject{{u"service"_s, u"com.example"_s}, {u"url"_s, u"tel:1"_s}}}};
    QTest::newRow("neither") << Settings{{supported, u"['one']"_s},
                                         {keyOf(u"one"_s, u"sequence"_s), u"'*1#'"_s}}
                             << QJsonObject{{u"*1#"_s, none}};
    QTest::newRow("empty values are values")
        << Settings{{supported, u"['one']"_s},
                    {keyOf(u"one"_s, u"sequence"_s), u"'*1#'"_s},
                    {keyOf(u"one"_s, u"service"_s), u"''"_s}}
        << QJsonObject{{u"*1#"_s, QJsonObject{{u"service"_s, u""_s}}}};
    QTest::newRow("one sequence of two names: the later wins")
        << Settings{{supported, u"['one', 'two']"_s},
                    {keyOf(u"one"_s, u"sequence"_s), u"'*1#'"_s},
                    {keyOf(u"one"_s, u"service"_s), u"'first'"_s},
                    {keyOf(u"two"_s, u"sequence"_s), u"'*1#'"_s},
                    {keyOf(u"two"_s, u"url"_s), u"'tel:1'"_s}}
        << QJsonObject{{u"*1#"_s, urlOnly}};
    QTest::newRow("the later in the list, not in the alphabet")
        << Settings{{supported, u"['two', 'one']"_s},
                    {keyOf(u"one"_s, u"sequence"_s), u"'*1#'"_s},
                    {keyOf(u"one"_s, u"service"_s), u"'first'"_s},
                    {keyOf(u"two"_s, u"sequence"_s), u"'*1#'"_s},
                    {keyOf(u"two"_s, u"url"_s), u"'tel:1'"_s}}
        << QJsonObject{{u"*1#"_s, QJsonObject{{u"service"_s, u"first"_s}}}};
    QTest::newRow("no sequence") << Settings{{supported, u"['one']"_s},
                                             {keyOf(u"one"_s, u"url"_s), u"'tel:1'"_s}}
                                 << QJsonObject{{QString(), urlOnly}};
    QTest::newRow("no sequence, twice") << Settings{{supported, u"['two', 'one']"_s},
                                                    {keyOf(u"one"_s, u"url"_s), u"'tel:1'"_s},
                                                    {keyOf(u"two"_s, u"url"_s), u"'tel:2'"_s}}
                                        << QJsonObject{{QString(), urlOnly}};
    QTest::newRow("numbers") << Settings{{supported, u"['one', 'two']"_s},
                                         {keyOf(u"one"_s, u"sequence"_s), u"112"_s},
                                         {keyOf(u"one"_s, u"service"_s),
                                          u"uint64 18446744073709551615"_s},
                                         {keyOf(u"one"_s, u"url"_s), u"0.5"_s},
                                         {keyOf(u"two"_s, u"sequence"_s), u"true"_s},
                                         {keyOf(u"two"_s, u"url"_s), u"-3"_s}}
                             << QJsonObject{{u"112"_s,
                                             QJsonObject{{u"service"_s, u"18446744073709551615"_s},
                                                         {u"url"_s, u"0.5"_s}}},
                                            {u"true"_s, QJsonObject{{u"url"_s, u"-3"_s}}}};
    QTest::newRow("a list has no text") << Settings{{supported, u"['one']"_s},
                                                    {keyOf(u"one"_s, u"sequence"_s), u"'*1#'"_s},
                                                    {keyOf(u"one"_s, u"url"_s), u"['a', 'b']"_s}}
                                        << QJsonObject{{u"*1#"_s, QJsonObject{{u"url"_s, u""_s}}}};

    for (const QString &name :
         {u"a/b"_s, u"a b"_s, u"\"a\""_s, u"%1"_s, u"%1%2"_s, u"\u00e9\u4e2d"_s, u".."_s}) {
        QTest::newRow(qUtf8Printable(u"name "_s + name))
            << Settings{{supported, u"['%1']"_s.arg(name)},
                        {keyOf(name, u"sequence"_s), u"'*1#'"_s},
                        {keyOf(name, u"url"_s), u"'tel:1'"_s}}
            << QJsonObject{{u"*1#"_s, urlOnly}};
    }
    for (const QString &name : {u""_s, u"/"_s, u"a/"_s, u"/a"_s, u"a//b"_s}) {
        QTest::newRow(qUtf8Printable(u"no key from "_s + name))
            << Settings{{supported, u"['%1', 'one']"_s.arg(name)},
                        {keyOf(u"one"_s, u"sequence"_s), u"'*1#'"_s},
                        {keyOf(u"one"_s, u"url"_s), u"'tel:1'"_s}}
            << QJsonObject{{QString(), none}, {u"*1#"_s, urlOnly}};
    }
}

void TestSpecialSequences::areReadFromTheSettings()
{
    QFETCH(Settings, settings);
    QFETCH(QJsonObject, specials);

    if (!settings.isEmpty())
        QVERIFY(m_ui->writeSettings(settings));
    QVERIFY(m_ui->startProbe({u"-prestart"_s}));
    QCOMPARE(m_ui->evaluate(u"__specials"_s), QJsonValue(specials));
}

void TestSpecialSequences::areReadOnce()
{
    QVERIFY(m_ui->writeSettings(
        {{supported, u"['one']"_s}, {keyOf(u"one"_s, u"sequence"_s), u"'old'"_s}}));
    QVERIFY(m_ui->startProbe({u"-prestart"_s}));
    QVERIFY(m_ui->writeSettings(
        {{supported, u"['one']"_s}, {keyOf(u"one"_s, u"sequence"_s), u"'new'"_s}}));
    QCOMPARE(m_ui->evaluate(u"Object.keys(__specials)[0]"_s), QJsonValue(u"old"_s));
}

void TestSpecialSequences::costLittleByTheTenThousand()
{
    if (!qEnvironmentVariableIsSet("PARLEY_UI_OPTIMIZED"))
        QSKIP("the times of a debug build mean nothing");

    Settings settings;
    QStringList names;
    for (int i = 0; i < 10000; ++i) {
        const QString name = u"name%1"_s.arg(i);
        names << u'\'' + name + u'\'';
        settings.insert(keyOf(name, u"sequence"_s), u"'*#%1#'"_s.arg(i));
        settings.insert(keyOf(name, u"service"_s), u"'com.example.service'"_s);
        settings.insert(keyOf(name, u"url"_s), u"'tel:%1'"_s.arg(i));
    }
    settings.insert(supported, u'[' + names.join(u',') + u']');
    QVERIFY(m_ui->writeSettings(settings));
    QVERIFY(m_ui->startProbe({u"-prestart"_s}));
    QCOMPARE(m_ui->evaluate(u"Object.keys(__specials).length"_s), QJsonValue(10000));
    m_ui->stop();

    UiUnderTest withNone;
    QVector<double> ratios;
    for (int i = 0; i < 15; ++i) {
        const double none = startUp(withNone);
        const double many = startUp(*m_ui);
        QVERIFY(none > 0 && many > 0);
        ratios.append(many / none);
    }
    std::sort(ratios.begin(), ratios.end());
    const double median = ratios.at(ratios.size() / 2);
    qInfo("the screens are drawn after %.2f times as long (median of %d pairs, %.2f to %.2f)",
          median, static_cast<int>(ratios.size()), ratios.constFirst(), ratios.constLast());
    QVERIFY(median < 2);
}

/// Returns the milliseconds from the start of the process to the first frame of the screens.
double TestSpecialSequences::startUp(UiUnderTest &ui)
{
    const QString screens = ui.writeFile(
        u"screens.qml"_s,
        "import QtQuick 2.15\n"
        "Item {\n"
        "    Loader { anchors.fill: parent; source: 'file://" PARLEY_SCREENS_QML "' }\n"
        "    Connections {\n"
        "        property bool drawn: false\n"
        "        target: __window\n"
        "        function onFrameSwapped() { if (!drawn) console.info('drawn'); drawn = true; }\n"
        "    }\n"
        "}\n");
    QElapsedTimer timer;
    timer.start();
    ui.start({u"-qml"_s, screens});
    const bool drawn = ui.logs(u"qml: drawn"_s);
    const double milliseconds = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    ui.stop();
    ui.takeLog();
    return drawn ? milliseconds : -1;
}

QTEST_GUILESS_MAIN(TestSpecialSequences)

#include "tst_specialsequences.moc"
