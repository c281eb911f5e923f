// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "literals.h"
#include "messagelog.h"
#include "settings.h"

#include <mgconfitem.h>

#include <QTemporaryDir>
#include <QTest>

#include <limits>
#include <memory>

class TestMGConfItem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup() { QCOMPARE(m_log->take(), QStringList()); }

    void hasTheTypeOfTheSetting_data();
    void hasTheTypeOfTheSetting();
    void isUnsetForWhatIsNotAKey_data();
    void isUnsetForWhatIsNotAKey();
    void takesAnyTextThatIsAKey_data();
    void takesAnyTextThatIsAKey();
    void isUnsetWithoutADatabase();
    void seesWhatIsThereWhenTheFirstItemIsMade();

private:
    bool write(const Settings &settings) { return writeSettings(m_home.path(), settings); }

    QTemporaryDir m_home;
    QTemporaryDir m_runtime;
    std::unique_ptr<MessageLog> m_log;
};

void TestMGConfItem::initTestCase()
{
    QFile profile(m_home.filePath(u"profile"_s));
    QVERIFY(profile.open(QIODevice::WriteOnly));
    profile.write("user-db:user\n");
    qputenv("DCONF_PROFILE", profile.fileName().toUtf8());
    qputenv("XDG_CONFIG_HOME", m_home.path().toUtf8());
    qputenv("XDG_RUNTIME_DIR", m_runtime.path().toUtf8());
}

void TestMGConfItem::init()
{
    m_log.reset();
    m_log = std::make_unique<MessageLog>();
}

void TestMGConfItem::hasTheTypeOfTheSetting_data()
{
    QTest::addColumn<QString>("setting");
    QTest::addColumn<QVariant>("expected");

    QTest::newRow("string") << u"'a \"text\" \u00e9'"_s << QVariant(u"a \"text\" \u00e9"_s);
    QTest::newRow("empty string") << u"''"_s << QVariant(QString());
    QTest::newRow("strings") << u"['b', 'a', '']"_s << QVariant(QStringList{u"b"_s, u"a"_s, u""_s});
    QTest::newRow("no strings") << u"@as []"_s << QVariant(QStringList());
    QTest::newRow("true") << u"true"_s << QVariant(true);
    QTest::newRow("false") << u"false"_s << QVariant(false);
    QTest::newRow("byte") << u"byte 0xff"_s << QVariant(255U);
    QTest::newRow("int16") << u"int16 -32768"_s << QVariant(-32768);
    QTest::newRow("uint16") << u"uint16 65535"_s << QVariant(65535U);
    QTest::newRow("int32") << u"-2147483648"_s << QVariant(std::numeric_limits<int>::min());
    QTest::newRow("uint32") << u"uint32 4294967295"_s << QVariant(4294967295U);
    QTest::newRow("int64") << u"int64 -9223372036854775808"_s
                           << QVariant(std::numeric_limits<qlonglong>::min());
    QTest::newRow("uint64") << u"uint64 18446744073709551615"_s
                            << QVariant(std::numeric_limits<qulonglong>::max());
    QTest::newRow("double") << u"0.5"_s << QVariant(0.5);
    QTest::newRow("other array") << u"[1, 2]"_s << QVariant();
    QTest::newRow("tuple") << u"('a', 1)"_s << QVariant();
    QTest::newRow("variant") << u"<'a'>"_s << QVariant();
    QTest::newRow("maybe") << u"just 'a'"_s << QVariant();
    QTest::newRow("dictionary") << u"{'a': 'b'}"_s << QVariant();
    QTest::newRow("object path") << u"objectpath '/a'"_s << QVariant();
}

void TestMGConfItem::hasTheTypeOfTheSetting()
{
    QFETCH(QString, setting);
    QFETCH(QVariant, expected);

    QVERIFY(write({{u"/desktop/key"_s, setting}}));
    const QVariant value = MGConfItem(u"/desktop/key"_s).value();
    QCOMPARE(value.userType(), expected.userType());
    QCOMPARE(value, expected);
}

void TestMGConfItem::isUnsetForWhatIsNotAKey_data()
{
    QTest::addColumn<QString>("key");

    QTest::newRow("nothing") << QString();
    QTest::newRow("relative") << u"desktop/key"_s;
    QTest::newRow("folder") << u"/desktop/"_s;
    QTest::newRow("root") << u"/"_s;
    QTest::newRow("two slashes") << u"/desktop//key"_s;
    QTest::newRow("NUL") << QString(u"/desktop/key"_s) + QChar(0) + u"x"_s;
    QTest::newRow("not set") << u"/desktop/other"_s;
}

void TestMGConfItem::isUnsetForWhatIsNotAKey()
{
    QFETCH(QString, key);

    QVERIFY(write({{u"/desktop/key"_s, u"'set'"_s}}));
    QCOMPARE(MGConfItem(u"/desktop/key"_s).value(), QVariant(u"set"_s));
    QCOMPARE(MGConfItem(key).value(), QVariant());
}

void TestMGConfItem::takesAnyTextThatIsAKey_data()
{
    QTest::addColumn<QString>("key");

    QTest::newRow("blank") << u"/desktop/a b/key"_s;
    QTest::newRow("quotes") << u"/desktop/'a\"/key"_s;
    QTest::newRow("percent") << u"/desktop/%1/key"_s;
    QTest::newRow("not ASCII") << (u"/desktop/\u00e9\u4e2d/key"_s);
    QTest::newRow("dots") << u"/desktop/../key"_s;
}

void TestMGConfItem::takesAnyTextThatIsAKey()
{
    QFETCH(QString, key);

    QVERIFY(write({{key, u"'set'"_s}}));
    QCOMPARE(MGConfItem(key).value(), QVariant(u"set"_s));
}

void TestMGConfItem::isUnsetWithoutADatabase()
{
    QFile::remove(m_home.filePath(u"dconf/user"_s));
    QCOMPARE(MGConfItem(u"/desktop/key"_s).value(), QVariant());
}

void TestMGConfItem::seesWhatIsThereWhenTheFirstItemIsMade()
{
    QVERIFY(write({{u"/desktop/key"_s, u"'old'"_s}}));
    auto item = std::make_unique<MGConfItem>(u"/desktop/key"_s);
    QCOMPARE(item->value(), QVariant(u"old"_s));
    item.reset();
    QVERIFY(write({{u"/desktop/key"_s, u"'new'"_s}}));
    QCOMPARE(MGConfItem(u"/desktop/key"_s).value(), QVariant(u"new"_s));
}

QTEST_APPLESS_MAIN(TestMGConfItem)

#include "tst_mgconfitem.moc"
