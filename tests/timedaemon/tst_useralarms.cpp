// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "literals.h"
#include "useralarms.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>
#include <limits>
#include <memory>

namespace {

constexpr qint64 farAhead = 99999999999;
constexpr uint reminder = 1;
const QString limitsExceeded = u"org.freedesktop.DBus.Error.LimitsExceeded"_s;

Alarm alarmAt(qint64 ticker, const AlarmAttributes &attributes = {})
{
    return {3, ticker, attributes};
}

/// Returns a cookie, or 0 if the alarm was refused.
uint cookieOf(const std::variant<uint, Refusal> &result)
{
    return std::holds_alternative<uint>(result) ? std::get<uint>(result) : 0;
}

QString refusalOf(const std::variant<uint, Refusal> &result)
{
    const auto *refusal = std::get_if<Refusal>(&result);
    return refusal ? refusal->name + u": "_s + refusal->text : QString();
}

bool isTrue(const std::variant<bool, Refusal> &result)
{
    return std::holds_alternative<bool>(result) && std::get<bool>(result);
}

} // namespace

class TestUserAlarms : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void keepsEveryChange();
    void keepsAnyText();
    void refusesTooManyAttributes();
    void refusesTooLargeAnAlarm();
    void refusesTooManyAlarms();
    void refusesTooMuchText();
    void startsCookiesAgain();
    void firesInAnyOrder();
    void keepsDueReminders();
    void ordersDueAlarms();
    void dropsTheOldestDueAlarms();
    void firesWhatItCannotKeep();
    void keepsNothingOfARefusedAlarm();
    void leavesAFileThatItCannotRead();
    void loadsNoPartOfAFile();
    void survivesRandomBytes();
    void touchesNothingBehindADamagedFile();

private:
    QString path() const { return m_folder->filePath(u"alarms/1000.json"_s); }
    bool writeFile(const QByteArray &content) const;
    QByteArray readFile() const;

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestUserAlarms::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
}

bool TestUserAlarms::writeFile(const QByteArray &content) const
{
    QFile file(path());
    return QDir().mkpath(QFileInfo(file).path()) && file.open(QIODevice::WriteOnly)
        && file.write(content) == content.size();
}

QByteArray TestUserAlarms::readFile() const
{
    QFile file(path());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Each change is in the file when the function returns.
void TestUserAlarms::keepsEveryChange()
{
    UserAlarms alarms(path());
    const auto agrees = [this, &alarms] {
        const UserAlarms kept(path());
        return kept.pending() == alarms.pending() && kept.due() == alarms.due();
    };
    QCOMPARE(cookieOf(alarms.add(alarmAt(10))), 1U);
    QVERIFY(agrees());
    QCOMPARE(cookieOf(alarms.add(alarmAt(20))), 2U);
    QCOMPARE(cookieOf(alarms.add(alarmAt(30), 1)), 3U);
    QVERIFY(agrees());
    QCOMPARE(alarms.pending().keys(), QList<uint>({2, 3}));
    QCOMPARE(alarms.fire(20), QList<uint>{2});
    QVERIFY(agrees());
    QCOMPARE(alarms.due().keys(), QList<uint>{2});
    QVERIFY(isTrue(alarms.dismiss(2)));
    QVERIFY(agrees());
    QVERIFY(isTrue(alarms.cancel(3)));
    QVERIFY(agrees());
    QVERIFY(!isTrue(alarms.dismiss(2)) && !isTrue(alarms.cancel(3)));
    QCOMPARE(cookieOf(UserAlarms(path()).add(alarmAt(5))), 4U);
    QCOMPARE(QDir(QFileInfo(path()).path()).entryList(QDir::Files), QStringList(u"1000.json"_s));
}

void TestUserAlarms::keepsAnyText()
{
    const Alarm alarm{std::numeric_limits<uint>::max(),
                      std::numeric_limits<qlonglong>::min(),
                      {{QString(), QString()},
                       {u"x"_s, u"\uFEFF"_s},
                       {u"\uFEFFx"_s, u"\uFEFF\uFEFFx\uFEFF"_s},
                       {u"\"\\\n\t\u2028"_s, u"Ада \U0001F600 \uFFFE\u0001"_s},
                       {u"TITLE"_s, QString(1000, u'\u0430')}}};
    QCOMPARE(cookieOf(UserAlarms(path()).add(alarm)), 1U);
    QCOMPARE(UserAlarms(path()).pending(), AlarmsByCookie({{1, alarm}}));
}

void TestUserAlarms::refusesTooManyAttributes()
{
    AlarmAttributes attributes;
    for (int i = 0; i < UserAlarms::maxAttributes; ++i)
        attributes.insert(QString::number(i), QString());
    UserAlarms alarms(path());
    QCOMPARE(cookieOf(alarms.add(alarmAt(farAhead, attributes))), 1U);
    attributes.insert(u"one more"_s, QString());
    QCOMPARE(refusalOf(alarms.add(alarmAt(farAhead, attributes), 1)),
             limitsExceeded + u": an alarm has at most 64 attributes"_s);
    QCOMPARE(alarms.pending().keys(), QList<uint>{1});
}

void TestUserAlarms::refusesTooLargeAnAlarm()
{
    UserAlarms alarms(path());
    const QString text((UserAlarms::maxAlarmSize - 2) / 2, u'\u0430'); // Two bytes each.
    QCOMPARE(cookieOf(alarms.add(alarmAt(farAhead, {{u"ab"_s, text}}))), 1U);
    QCOMPARE(refusalOf(alarms.add(alarmAt(farAhead, {{u"abc"_s, text}}))),
             limitsExceeded + u": the attributes of an alarm have at most 65536 bytes"_s);
}

void TestUserAlarms::refusesTooManyAlarms()
{
    QByteArrayList lines;
    for (int i = 1; i <= UserAlarms::maxAlarms; ++i)
        lines.append("{\"cookie\": " + QByteArray::number(i)
                     + R"(, "flags": 1, "ticker": "99999999999", "attributes": {}})");
    QVERIFY(writeFile(R"({"lastCookie": 10000, "due": [], "alarms": [)" + lines.join(',') + "]}"));
    UserAlarms alarms(path());
    QCOMPARE(alarms.pending().size(), UserAlarms::maxAlarms);
    for (const uint replaced : {0U, 77777U})
        QCOMPARE(refusalOf(alarms.add(alarmAt(farAhead), replaced)),
                 limitsExceeded + u": a user has at most 10000 alarms"_s);
    QCOMPARE(cookieOf(alarms.add(alarmAt(farAhead), 5)), 10001U);
    QVERIFY(isTrue(alarms.cancel(6)));
    QCOMPARE(cookieOf(alarms.add(alarmAt(farAhead))), 10002U);
}

void TestUserAlarms::refusesTooMuchText()
{
    UserAlarms alarms(path());
    constexpr int size = UserAlarms::maxAlarmSize;
    const Alarm large = alarmAt(farAhead, {{QString(), QString(size, u'x')}});
    for (uint i = 1; i <= UserAlarms::maxCharacters / (size + 8); ++i)
        QCOMPARE(cookieOf(alarms.add(large)), i);
    QCOMPARE(refusalOf(alarms.add(large)),
             limitsExceeded
                 + u": the attributes of a user's alarms have at most 4194304 characters"_s);
    QVERIFY(cookieOf(alarms.add(alarmAt(farAhead))) > 0);
    QVERIFY(cookieOf(alarms.add(large, 1)) > 0);
}

/// Cookies that are in use are left out, and so is 0.
void TestUserAlarms::startsCookiesAgain()
{
    QVERIFY(writeFile(R"({"lastCookie": 4294967294, "alarms": [
        {"cookie": 1, "flags": 3, "ticker": "99999999999", "attributes": {}}], "due": [
        {"cookie": 2, "flags": 3, "ticker": "5", "attributes": {}}]})"));
    UserAlarms alarms(path());
    QCOMPARE(cookieOf(alarms.add(alarmAt(farAhead))), std::numeric_limits<uint>::max());
    QCOMPARE(cookieOf(alarms.add(alarmAt(farAhead))), 3U);
    QCOMPARE(UserAlarms(path()).pending().size(), 3);
}

void TestUserAlarms::firesInAnyOrder()
{
    UserAlarms alarms(path());
    QVERIFY(!alarms.nextTicker().has_value());
    for (const qint64 ticker : {30, 10, -5, 20})
        alarms.add(alarmAt(ticker));
    QCOMPARE(*alarms.nextTicker(), -5);
    QCOMPARE(alarms.fire(-6), QList<uint>());
    QCOMPARE(alarms.fire(10), QList<uint>({2, 3}));
    QCOMPARE(*alarms.nextTicker(), 20);
    QCOMPARE(alarms.fire(10), QList<uint>());
    QVERIFY(!alarms.fireEarly(2));
    QVERIFY(alarms.fireEarly(1));
    QCOMPARE(alarms.fire(farAhead), QList<uint>{4});
    QVERIFY(!alarms.nextTicker().has_value());
}

void TestUserAlarms::keepsDueReminders()
{
    UserAlarms alarms(path());
    for (const uint flags : {0U, reminder, 2U, 3U, ~reminder})
        alarms.add({flags, 10, {}});
    QCOMPARE(alarms.fire(10).size(), 5);
    QCOMPARE(alarms.due().keys(), QList<uint>({2, 4}));
    QVERIFY(!isTrue(alarms.cancel(2)));
    QVERIFY(alarms.find({}).isEmpty());
}

void TestUserAlarms::ordersDueAlarms()
{
    UserAlarms alarms(path());
    for (const qint64 ticker : {30, 10, 20, 10})
        alarms.add(alarmAt(ticker));
    alarms.fire(30);
    QCOMPARE(alarms.dueInOrder(), QList<uint>({2, 4, 3, 1}));
}

void TestUserAlarms::dropsTheOldestDueAlarms()
{
    QByteArrayList lines;
    for (int i = 1; i <= UserAlarms::maxAlarms; ++i)
        lines.append("{\"cookie\": " + QByteArray::number(i) + R"(, "flags": 1, "ticker": ")"
                     + QByteArray::number(i) + R"(", "attributes": {}})");
    QVERIFY(writeFile(R"({"lastCookie": 10000, "alarms": [], "due": [)" + lines.join(',') + "]}"));
    UserAlarms alarms(path());
    alarms.add(alarmAt(20000));
    alarms.add(alarmAt(20000));
    QTest::ignoreMessage(QtWarningMsg,
                         "2 due alarms are dropped, because nobody has dismissed them");
    QCOMPARE(alarms.fire(20000).size(), 2);
    QCOMPARE(alarms.dueInOrder().size(), UserAlarms::maxAlarms);
    QCOMPARE(alarms.dueInOrder().first(), 3U);
    QCOMPARE(alarms.dueInOrder().last(), 10002U);
}

void TestUserAlarms::firesWhatItCannotKeep()
{
    UserAlarms alarms(path());
    alarms.add(alarmAt(10));
    const QString folder = QFileInfo(path()).path();
    QVERIFY(QDir().rename(folder, folder + u"-away"_s));
    QFile inTheWay(folder);
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Due alarms cannot be kept: ."_s));
    QCOMPARE(alarms.fire(10), QList<uint>{1});
    QCOMPARE(alarms.due().keys(), QList<uint>{1});
    const auto refused = alarms.dismiss(1);
    QVERIFY(std::holds_alternative<Refusal>(refused));
    QCOMPARE(std::get<Refusal>(refused).name, u"org.freedesktop.DBus.Error.IOError"_s);
    QCOMPARE(alarms.due().keys(), QList<uint>{1});

    QVERIFY(inTheWay.remove());
    QVERIFY(QDir().rename(folder + u"-away"_s, folder));
    QCOMPARE(UserAlarms(path()).pending().keys(), QList<uint>{1}); // It is due once more.
    QVERIFY(isTrue(alarms.dismiss(1)));
    QVERIFY(UserAlarms(path()).pending().isEmpty());
}

/// The next alarm gets the cookie that the refused one would have had.
void TestUserAlarms::keepsNothingOfARefusedAlarm()
{
    UserAlarms alarms(path());
    const QString folder = QFileInfo(path()).path();
    QFile inTheWay(folder);
    QVERIFY(inTheWay.open(QIODevice::WriteOnly));
    QVERIFY(!refusalOf(alarms.add(alarmAt(farAhead, {{u"TITLE"_s, u"refused"_s}}))).isEmpty());
    QVERIFY(inTheWay.remove());
    const Alarm kept = alarmAt(farAhead, {{u"TITLE"_s, u"kept"_s}});
    QCOMPARE(cookieOf(alarms.add(kept)), 1U);
    QCOMPARE(UserAlarms(path()).pending(), AlarmsByCookie({{1, kept}}));
}

void TestUserAlarms::leavesAFileThatItCannotRead()
{
    QVERIFY(QDir().mkpath(path())); // A folder cannot be read as a file.
    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression(u"^The alarms cannot be read from .*1000.json: ."_s));
    UserAlarms alarms(path());
    QVERIFY(refusalOf(alarms.add(alarmAt(farAhead)))
                .startsWith(u"org.freedesktop.DBus.Error.IOError: "_s));
    QVERIFY(QFileInfo(path()).isDir());
}

/// A file that was cut off anywhere is damaged, except for the newline at its end.
void TestUserAlarms::loadsNoPartOfAFile()
{
    {
        UserAlarms alarms(path());
        alarms.add(alarmAt(10, {{u"TITLE"_s, u"Ада"_s}}));
        alarms.add(alarmAt(farAhead, {{u"TITLE"_s, u"\"}], {"_s}}));
        alarms.fire(10);
    }
    const QByteArray whole = readFile();
    QVERIFY(whole.size() > 100);
    for (int size = 0; size < whole.size() - 1; ++size) {
        QVERIFY(writeFile(whole.left(size)));
        QTest::ignoreMessage(
            QtWarningMsg,
            QRegularExpression(
                u"^The alarms cannot be read from .*1000.json: it is damaged. It is now .*broken"_s));
        const UserAlarms alarms(path());
        QVERIFY(alarms.pending().isEmpty() && alarms.due().isEmpty());
        const QString aside = path() + (size == 0 ? u".broken"_s : u".broken-%1"_s.arg(size + 1));
        QCOMPARE(QFileInfo(aside).size(), size);
        QVERIFY(!QFile::exists(path()));
    }
    QVERIFY(writeFile(whole));
    QCOMPARE(UserAlarms(path()).due().keys(), QList<uint>{1});
    QCOMPARE(UserAlarms(path()).pending().keys(), QList<uint>{2});
}

/// A file of random bytes is damaged. One of random changes is damaged, or is read and written as
/// what it says.
void TestUserAlarms::survivesRandomBytes()
{
    QRandomGenerator random(1);
    const auto someBytes = [&random](int size) {
        QByteArray bytes(size, '\0');
        for (char &byte : bytes)
            byte = static_cast<char>(random.bounded(256));
        return bytes;
    };
    for (int i = 0; i < 1000; ++i)
        QVERIFY(!AlarmFile::parse(someBytes(random.bounded(300))).has_value());

    const QByteArray whole = R"({"lastCookie": 2, "alarms": [
{"attributes":{"TITLE":"Ada"},"cookie":1,"flags":3,"ticker":"99999999999"}
], "due": [
{"attributes":{},"cookie":2,"flags":3,"ticker":"5"}
]})";
    int read = 0;
    for (int i = 0; i < 5000; ++i) {
        QByteArray changed = whole;
        for (int times = 1 + random.bounded(3); times > 0; --times)
            changed[random.bounded(changed.size())] = static_cast<char>(random.bounded(256));
        const auto alarms = AlarmFile::parse(changed);
        if (!alarms)
            continue;
        ++read;
        QVERIFY(!alarms->pending.contains(0) && !alarms->due.contains(0));
        AlarmFile file(path());
        QCOMPARE(file.save(*alarms), QString());
        const Alarms again = AlarmFile(path()).load();
        QCOMPARE(again.lastCookie, alarms->lastCookie);
        QCOMPARE(again.pending, alarms->pending);
        QCOMPARE(again.due, alarms->due);
    }
    QVERIFY(read > 0);
}

/// A damaged file that cannot be renamed is not replaced either.
void TestUserAlarms::touchesNothingBehindADamagedFile()
{
    // The longest file name has 255 characters: ".new" fits, and ".broken" does not.
    const QString name = m_folder->filePath(QString(250, u'x'));
    QFile damaged(name);
    QVERIFY(damaged.open(QIODevice::WriteOnly));
    damaged.write("damaged");
    damaged.close();
    QTest::ignoreMessage(
        QtCriticalMsg,
        QRegularExpression(u"broken'.*"_s
                           + QRegularExpression::escape(qt_error_string(ENAMETOOLONG))));
    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression(u"it is damaged. It cannot be moved to .*broken$"_s));
    UserAlarms alarms(name);
    QCOMPARE(refusalOf(alarms.add(alarmAt(farAhead))),
             u"org.freedesktop.DBus.Error.IOError: the alarms cannot be kept: "
             "a file that was not read is in the way"_s);
    QVERIFY(damaged.open(QIODevice::ReadOnly));
    QCOMPARE(damaged.readAll(), QByteArray("damaged"));
}

QTEST_GUILESS_MAIN(TestUserAlarms)

#include "tst_useralarms.moc"
