// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "busvalues.h"
#include "literals.h"
#include "phonenumber.h"

#include <QTest>

/// Numbers and texts before they are sent or shown.
class TestPhoneNumber : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hasForms_data();
    void hasForms();
    void isCutIfTooLong();
    void takesTones();
    void isShownSafely_data();
    void isShownSafely();
    void keepsLines();
};

void TestPhoneNumber::hasForms_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("number");
    QTest::addColumn<bool>("dialable");
    QTest::addColumn<bool>("address");
    QTest::addColumn<bool>("request");

    const QString twenty = QString(20, u'1');
    const QString eighty = QString(80, u'2');
    QTest::newRow("digits") << u"5550100"_s << u"5550100"_s << true << true << false;
    QTest::newRow("separators") << u" +1 (555) 010-01.99/2\t"_s << u"+155501001992"_s << true
                                << true << false;
    QTest::newRow("copied") << u"\u202a+49\u00a0151\u20111234\u202c"_s << u"+491511234"_s << true
                            << true << false;
    QTest::newRow("other digits") << u"\u0661\u0662\u0663"_s << u"123"_s << true << true << false;
    QTest::newRow("20") << QString(u'+' + twenty) << QString(u'+' + twenty) << true << true
                        << false;
    QTest::newRow("21") << QString(twenty + u'1') << QString(twenty + u'1') << true << false
                        << false;
    QTest::newRow("80") << QString(u'+' + eighty) << QString(u'+' + eighty) << true << false
                        << false;
    QTest::newRow("81") << QString(eighty + u'2') << QString(eighty + u'2') << false << false
                        << false;
    QTest::newRow("empty") << u""_s << u""_s << false << false << false;
    QTest::newRow("only separators") << u" - "_s << u""_s << false << false << false;
    QTest::newRow("only a plus") << u"+"_s << u"+"_s << false << false << false;
    QTest::newRow("a plus inside") << u"12+3"_s << u"12+3"_s << false << false << false;
    QTest::newRow("letters") << u"555-HELP"_s << u"555HELP"_s << false << false << false;
    QTest::newRow("a pause") << u"123,4"_s << u"123,4"_s << false << false << false;
    QTest::newRow("NUL") << QString(u"12"_s + QChar(0)) << QString(u"12"_s + QChar(0)) << false
                         << false << false;
    QTest::newRow("a line end") << u"12\nATH"_s << u"12ATH"_s << false << false << false;
    QTest::newRow("a request") << u"*100#"_s << u"*100#"_s << true << true << true;
    QTest::newRow("a setting") << u"#31#"_s << u"#31#"_s << true << true << true;
    QTest::newRow("a prefix") << u"*31#5550100"_s << u"*31#5550100"_s << true << true << false;
    QTest::newRow("no request") << u"100#"_s << u"100#"_s << true << true << false;
}

void TestPhoneNumber::hasForms()
{
    QFETCH(QString, text);
    QFETCH(QString, number);
    QFETCH(bool, dialable);
    QFETCH(bool, address);
    QFETCH(bool, request);

    QCOMPARE(PhoneNumber::withoutSeparators(text), number);
    QCOMPARE(PhoneNumber::isDialable(number), dialable);
    QCOMPARE(PhoneNumber::isAddress(number), address);
    QCOMPARE(PhoneNumber::isRequest(number), request);
}

void TestPhoneNumber::isCutIfTooLong()
{
    const QString number = PhoneNumber::withoutSeparators(QString(10000, u'1'));
    QVERIFY(number.size() < 1000);
    QVERIFY(!PhoneNumber::isDialable(number));
}

void TestPhoneNumber::takesTones()
{
    QVERIFY(PhoneNumber::areTones(u"0123456789*#ABCDabcd"_s));
    QVERIFY(PhoneNumber::areTones(QString(255, u'1')));
    QVERIFY(!PhoneNumber::areTones(QString(256, u'1')));
    QVERIFY(!PhoneNumber::areTones({}));
    QVERIFY(!PhoneNumber::areTones(u"E"_s));
    QVERIFY(!PhoneNumber::areTones(u"1 2"_s));
    QVERIFY(!PhoneNumber::areTones(u"\u0661"_s));
}

void TestPhoneNumber::isShownSafely_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("safe");

    QTest::newRow("plain") << u"Ada Lovelace"_s << u"Ada Lovelace"_s;
    QTest::newRow("other scripts")
        << u"\u05d0\u05d1 \u0627\u0628"_s << u"\u05d0\u05d1 \u0627\u0628"_s;
    QTest::newRow("control characters") << u"A\x07"
                                           u"da\nB\r\u0085"_s
                                        << u"A da B"_s;
    QTest::newRow("NUL") << QString(u"A"_s + QChar(0) + u"B"_s) << u"A B"_s;
    QTest::newRow("directions") << u"\u202eA\u2066d\u200fa\u061c\u2069"_s << u"Ada"_s;
    QTest::newRow("line separators") << u"A\u2028B\u2029C"_s << u"A B C"_s;
    QTest::newRow("a long one") << QString(10000, u'A') << QString(200, u'A');
    QTest::newRow("half a character")
        << QString(QString(199, u'A') + u"\U0001F600"_s) << QString(199, u'A');
}

void TestPhoneNumber::isShownSafely()
{
    QFETCH(QString, text);
    QFETCH(QString, safe);

    QCOMPARE(safeText(text), safe);
}

void TestPhoneNumber::keepsLines()
{
    QCOMPARE(safeLines(u"1 Balance\r\n2 \u202eTop up\n"_s), u"1 Balance\n2 Top up"_s);
    QCOMPARE(safeLines(QString(10000, u'A')).size(), 2000);
}

QTEST_GUILESS_MAIN(TestPhoneNumber)

#include "tst_phonenumber.moc"
