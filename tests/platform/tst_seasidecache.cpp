// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "literals.h"

#include <seasidecache.h>

#include <QTest>

class TestSeasideCache : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keysOfANumber_data();
    void keysOfANumber();
};

void TestSeasideCache::keysOfANumber_data()
{
    QTest::addColumn<QString>("number");
    QTest::addColumn<QString>("normalized");
    QTest::addColumn<QString>("minimized");
    QTest::addColumn<bool>("isValid"); // If false, both keys are empty when they are validated.

    QTest::newRow("digits") << u"5551234"_s << u"5551234"_s << u"5551234"_s << true;
    QTest::newRow("short") << u"112"_s << u"112"_s << u"112"_s << true;
    QTest::newRow("international")
        << u"+49 (30) 123-45/67.8"_s << u"+493012345678"_s << u"2345678"_s << true;
    QTest::newRow("full-width") << u"\uff0b\uff11\uff12"_s << u"+12"_s << u"+12"_s << true;
    QTest::newRow("Arabic-Indic") << u"\u0660\u0661\u0669"_s << u"019"_s << u"019"_s << true;
    QTest::newRow("beyond the basic plane")
        << u"\U0001d7d8\U0001d7d9"_s << u"01"_s << u"01"_s << true;
    QTest::newRow("superscripts are no digits") << u"1\u00b2"_s << u"1"_s << u"1"_s << true;
    QTest::newRow("a plus within") << u"1+2"_s << u"12"_s << u"12"_s << true;
    QTest::newRow("a service code") << u"*#06#"_s << u"*#06#"_s << u"*#06#"_s << true;
    QTest::newRow("a code without digits") << u" *# "_s << u"*#"_s << u"*#"_s << true;
    QTest::newRow("pause and wait")
        << u"555 1234,9;8"_s << u"5551234p9w8"_s << u"5551234"_s << true;
    QTest::newRow("capitals") << u"123P4W5X6"_s << u"123p4w5x6"_s << u"123"_s << true;
    QTest::newRow("a pause before the digits") << u",p+1"_s << u"+1"_s << u"+1"_s << false;
    QTest::newRow("a comma before the digits") << u",1"_s << u"1"_s << u"1"_s << true;
    QTest::newRow("direction marks") << u"\u202a+1\u202c 2"_s << u"+12"_s << u"+12"_s << true;
    QTest::newRow("other letters") << u"1-800-FLOWERS"_s << u"1800w"_s << u"1800"_s << false;
    QTest::newRow("a name") << u"  Anna  Px "_s << u"Anna  Px"_s << u"Anna  Px"_s << false;
    QTest::newRow("nothing") << QString() << QString() << QString() << false;
    QTest::newRow("blanks") << u"  "_s << QString() << QString() << false;
    QTest::newRow("a plus alone") << u"+"_s << u"+"_s << u"+"_s << false;
}

void TestSeasideCache::keysOfANumber()
{
    QFETCH(QString, number);
    QFETCH(QString, normalized);
    QFETCH(QString, minimized);
    QFETCH(bool, isValid);

    QCOMPARE(SeasideCache::normalizePhoneNumber(number, false), normalized);
    QCOMPARE(SeasideCache::minimizePhoneNumber(number, false), minimized);
    QCOMPARE(SeasideCache::minimizePhoneNumber(normalized, false), minimized);
    QCOMPARE(SeasideCache::normalizePhoneNumber(number, true), isValid ? normalized : QString());
    QCOMPARE(SeasideCache::minimizePhoneNumber(number, true), isValid ? minimized : QString());
}

QTEST_APPLESS_MAIN(TestSeasideCache)

#include "tst_seasidecache.moc"
