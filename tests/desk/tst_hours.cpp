// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "literals.h"
#include "settableclock.h"
#include "simulatedtelephony.h"
#include "temporaryzone.h"
#include "uiundertest.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QTest>

#include <cstdio>
#include <memory>

namespace {

const char *const berlin = "Europe/Berlin";
const char *const cairo = "Africa/Cairo";
const char *const kathmandu = "Asia/Kathmandu";
const char *const kiritimati = "Pacific/Kiritimati";
const char *const lordHowe = "Australia/Lord_Howe";

QString zoneFile(const QString &zone)
{
    return u"/usr/share/zoneinfo/"_s + zone;
}

/// Returns a command that runs another one with a folder /etc of its own, which links to that zone.
QStringList inALocalZone(const QString &zone)
{
    const QString local = u"/etc/localtime"_s;
    QStringList command{u"bwrap"_s, u"--die-with-parent"_s, u"--dev-bind"_s, u"/"_s,
                        u"/"_s,     u"--unsetenv"_s,        u"TZ"_s,         u"--tmpfs"_s,
                        u"/etc"_s,  u"--symlink"_s,         zoneFile(zone),  local};
    const QFileInfoList entries =
        QDir(u"/etc"_s).entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const QFileInfo &entry : entries) {
        if (entry.exists() && entry.filePath() != local)
            command << u"--ro-bind"_s << entry.filePath() << entry.filePath();
    }
    return command << u"--"_s;
}

/// Reads a time with its offset from UTC.
QDateTime at(const QString &text)
{
    return QDateTime::fromString(text, Qt::ISODate);
}

/// The functions of the screens that reckon with times, in an engine of their own.
class Words
{
public:
    Words()
    {
        QQmlComponent component(&m_engine);
        component.setData(R"(
            import QtQml 2.15
            import "text.js" as Words
            QtObject {
                function choice(text) {
                    return Words.reminderChoices.find(function(one) { return one.text === text; });
                }
                function offered(text, now) { return choice(text).offered(now); }
                function when(text, now) { return choice(text).when(now); }
                function due(when, now) { return Words.due(when, now); }
                function made(year, month, day, hours, minutes) {
                    return new Date(year, month - 1, day, hours, minutes);
                }
            })",
                          QUrl::fromLocalFile(QStringLiteral(PARLEY_SCREENS_SOURCES "/")));
        m_words.reset(component.create());
        if (!m_words)
            qFatal("%s", qUtf8Printable(component.errorString()));
    }

    template <typename... Arguments>
    QVariant call(const char *function, const Arguments &...arguments)
    {
        QVariant result;
        QMetaObject::invokeMethod(m_words.get(), function, Q_RETURN_ARG(QVariant, result),
                                  Q_ARG(QVariant, QVariant::fromValue(arguments))...);
        return result;
    }

private:
    QQmlEngine m_engine;
    std::unique_ptr<QObject> m_words;
};

} // namespace

/// What the screens make of the hour, on days on which the clock changes, and while somebody sets
/// the clock or the zone. The zones are those of tzdata.
class TestHours : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void offersTheEvening_data();
    void offersTheEvening();
    void remindsAtItsTime_data();
    void remindsAtItsTime();
    void remindsAtItsTimeInAnotherZone();
    void namesTheDay_data();
    void namesTheDay();
    void makesADate_data();
    void makesADate();

    void followsTheClock();
    void followsTheZone();
    void countsOnInACall();

private:
    bool start();
    bool stop();
    QJsonValue value(const QString &expression);

    std::unique_ptr<UiUnderTest> m_ui;
};

void TestHours::initTestCase()
{
    for (const char *zone : {berlin, cairo, kathmandu, kiritimati, lordHowe}) {
        const QString file = zoneFile(QString::fromLatin1(zone));
        QVERIFY2(QFile::exists(file), qUtf8Printable(file));
    }
}

void TestHours::offersTheEvening_data()
{
    QTest::addColumn<QString>("now");
    QTest::addColumn<bool>("isOffered");

    QTest::newRow("midnight") << u"2026-03-28T00:00:00+01:00"_s << true;
    QTest::newRow("afternoon") << u"2026-03-28T16:59:59+01:00"_s << true;
    QTest::newRow("evening") << u"2026-03-28T17:00:00+01:00"_s << false;
    QTest::newRow("a minute to midnight") << u"2026-03-28T23:59:00+01:00"_s << false;
}

void TestHours::offersTheEvening()
{
    QFETCH(QString, now);

    const TemporaryZone zone(berlin);
    Words words;
    QTEST(words.call("offered", u"This evening"_s, at(now)).toBool(), "isOffered");
    QVERIFY(words.call("offered", u"Tomorrow morning"_s, at(now)).toBool());
}

void TestHours::remindsAtItsTime_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QString>("now");
    QTest::addColumn<QString>("choice");
    QTest::addColumn<QString>("due");

    const auto row = [](const char *name, const char *zone, const char *now, const char *choice,
                        const char *due) {
        QTest::newRow(name) << QByteArray(zone) << QString::fromLatin1(now)
                            << QString::fromLatin1(choice) << QString::fromLatin1(due);
    };
    const char *const evening = "This evening";
    const char *const morning = "Tomorrow morning";
    const char *const halfAnHour = "In 30 minutes";
    const char *const hour = "In 1 hour";

    row("evening", kathmandu, "2026-03-28T09:00:00+05:45", evening, "2026-03-28T18:00:00+05:45");
    row("evening, far east", kiritimati, "2026-12-31T00:00:00+14:00", evening,
        "2026-12-31T18:00:00+14:00");
    row("evening, of the day that begins summer", lordHowe, "2026-10-04T00:30:00+10:30", evening,
        "2026-10-04T18:00:00+11:00");
    row("evening, of the day that ends summer", lordHowe, "2026-04-05T00:30:00+11:00", evening,
        "2026-04-05T18:00:00+10:30");
    row("morning", kathmandu, "2026-03-28T23:59:59+05:45", morning, "2026-03-29T09:00:00+05:45");
    row("morning, after midnight", berlin, "2026-06-01T00:30:00+02:00", morning,
        "2026-06-02T09:00:00+02:00");
    row("morning, of a year", kiritimati, "2026-12-31T23:59:00+14:00", morning,
        "2027-01-01T09:00:00+14:00");
    row("morning, of a leap day", kathmandu, "2028-02-28T12:00:00+05:45", morning,
        "2028-02-29T09:00:00+05:45");
    row("morning, behind a short night", berlin, "2026-03-28T23:30:00+01:00", morning,
        "2026-03-29T09:00:00+02:00");
    row("morning, behind a long night", berlin, "2026-10-24T23:30:00+02:00", morning,
        "2026-10-25T09:00:00+01:00");
    row("morning, behind half an hour less", lordHowe, "2026-10-03T23:30:00+10:30", morning,
        "2026-10-04T09:00:00+11:00");
    row("morning, behind half an hour more", lordHowe, "2026-04-04T23:30:00+11:00", morning,
        "2026-04-05T09:00:00+10:30");
    row("morning, of a day without its midnight", cairo, "2026-04-23T22:00:00+02:00", morning,
        "2026-04-24T09:00:00+03:00");
    row("an hour, over an hour that is missing", berlin, "2026-03-29T01:30:00+01:00", hour,
        "2026-03-29T03:30:00+02:00");
    row("an hour, to the same hour once more", berlin, "2026-10-25T02:30:00+02:00", hour,
        "2026-10-25T02:30:00+01:00");
    row("an hour, from the second of two", berlin, "2026-10-25T02:30:00+01:00", hour,
        "2026-10-25T03:30:00+01:00");
    row("half an hour, to the same time once more", lordHowe, "2026-04-05T01:45:00+11:00",
        halfAnHour, "2026-04-05T01:45:00+10:30");
}

void TestHours::remindsAtItsTime()
{
    QFETCH(QByteArray, zone);
    QFETCH(QString, now);
    QFETCH(QString, choice);
    QFETCH(QString, due);

    const TemporaryZone here(zone);
    Words words;
    QCOMPARE(words.call("when", choice, at(now)).toDateTime(), at(due));
}

/// The engine keeps the offset of the zone in which it began.
void TestHours::remindsAtItsTimeInAnotherZone()
{
    const TemporaryZone zone(berlin);
    Words words;
    QCOMPARE(words.call("when", u"This evening"_s, at(u"2026-10-03T12:00:00+02:00"_s)).toDateTime(),
             at(u"2026-10-03T18:00:00+02:00"_s));
    TemporaryZone::set(lordHowe);
    QCOMPARE(words.call("when", u"This evening"_s, at(u"2026-10-03T12:00:00+10:30"_s)).toDateTime(),
             at(u"2026-10-03T18:00:00+10:30"_s));
}

void TestHours::namesTheDay_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QString>("when");
    QTest::addColumn<QString>("now");
    QTest::addColumn<QString>("text");

    const auto row = [](const char *name, const char *zone, const char *when, const char *now,
                        const char *text) {
        QTest::newRow(name) << QByteArray(zone) << QString::fromLatin1(when)
                            << QString::fromLatin1(now) << QString::fromLatin1(text);
    };
    row("today", kiritimati, "2026-05-04T23:59:00+14:00", "2026-05-04T00:00:00+14:00",
        "today 23:59");
    row("tomorrow", kiritimati, "2026-05-05T00:00:00+14:00", "2026-05-04T23:59:00+14:00",
        "tomorrow 00:00");
    row("before a short night", berlin, "2026-03-29T03:30:00+02:00", "2026-03-28T12:00:00+01:00",
        "tomorrow 03:30");
    row("the first of two", berlin, "2026-10-25T02:30:00+02:00", "2026-10-25T01:00:00+02:00",
        "today 02:30");
    row("the second of two", berlin, "2026-10-25T02:30:00+01:00", "2026-10-25T01:00:00+02:00",
        "today 02:30");
    row("before a day without its midnight", cairo, "2026-04-24T09:00:00+03:00",
        "2026-04-23T23:30:00+02:00", "tomorrow 09:00");
    row("on a day without its midnight", cairo, "2026-04-24T09:00:00+03:00",
        "2026-04-24T01:00:00+03:00", "today 09:00");
    row("behind a day without its midnight", cairo, "2026-04-25T09:00:00+03:00",
        "2026-04-23T23:30:00+02:00", "Sat 25 Apr 09:00");
    row("another year", lordHowe, "2027-01-01T09:00:00+11:00", "2026-04-05T09:00:00+10:30",
        "Fri 1 Jan 2027 09:00");
    row("an hour ago", berlin, "2026-05-04T11:00:00+02:00", "2026-05-04T12:00:00+02:00",
        "today 11:00");
}

void TestHours::namesTheDay()
{
    QFETCH(QByteArray, zone);
    QFETCH(QString, when);
    QFETCH(QString, now);

    const TemporaryZone here(zone);
    Words words;
    QTEST(words.call("due", at(when), at(now)).toString(), "text");
}

void TestHours::makesADate_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QDate>("day");
    QTest::addColumn<QTime>("hour");
    QTest::addColumn<QString>("made");
    QTest::addColumn<bool>("isInCpp");

    QTest::newRow("without 02:30") << QByteArray(berlin) << QDate(2026, 3, 29) << QTime(2, 30)
                                   << u"2026-03-29T01:30:00+01:00"_s << false;
    QTest::newRow("with two of it") << QByteArray(berlin) << QDate(2026, 10, 25) << QTime(2, 30)
                                    << u"2026-10-25T02:30:00+01:00"_s << true;
    QTest::newRow("without 02:15") << QByteArray(lordHowe) << QDate(2026, 10, 4) << QTime(2, 15)
                                   << u"2026-10-04T01:45:00+10:30"_s << false;
    QTest::newRow("with two of 01:45") << QByteArray(lordHowe) << QDate(2026, 4, 5) << QTime(1, 45)
                                       << u"2026-04-05T01:45:00+10:30"_s << true;
}

/// The engine and QDateTime differ where the clock changes. docs/qml-api.md says what authors of
/// screens get.
void TestHours::makesADate()
{
    QFETCH(QByteArray, zone);
    QFETCH(QDate, day);
    QFETCH(QTime, hour);
    QFETCH(QString, made);
    QFETCH(bool, isInCpp);

    const TemporaryZone here(zone);
    Words words;
    QCOMPARE(words.call("made", day.year(), day.month(), day.day(), hour.hour(), hour.minute())
                 .toDateTime(),
             at(made));
    const QDateTime inCpp(day, hour);
    QCOMPARE(inCpp.isValid(), isInCpp);
    if (isInCpp)
        QCOMPARE(inCpp, at(made));
}

bool TestHours::start()
{
    return m_ui->isValid()
        && m_ui->startScreens(QStringLiteral(PARLEY_DESK_FOLDER "/hours.qml"), {u"-prestart"_s});
}

/// Returns whether the process has logged nothing but that there is no time daemon.
bool TestHours::stop()
{
    const bool isComplete = !m_ui->lineBeginning(u"Unable to query reminder alarms "_s).isNull();
    m_ui->stop();
    return isComplete && m_ui->takeLog().isEmpty();
}

QJsonValue TestHours::value(const QString &expression)
{
    return m_ui->evaluate(expression);
}

void TestHours::followsTheClock()
{
    const QJsonArray both{u"This evening 18:00"_s, u"Tomorrow morning 09:00"_s};
    const QJsonArray morning{u"Tomorrow morning 09:00"_s};

    m_ui = std::make_unique<UiUnderTest>();
    m_ui->setEnvironment(u"TZ"_s, QString::fromLatin1(berlin));
    const SettableClock clock(*m_ui);
    QVERIFY(clock.set(at(u"2026-03-28T16:30:00+01:00"_s)));
    QVERIFY(start());
    QTRY_COMPARE(value(u"offered()"_s).toArray(), both);
    QCOMPARE(value(u"chosen('Tomorrow morning')"_s).toInt(),
             at(u"2026-03-29T09:00:00+02:00"_s).toSecsSinceEpoch());

    QVERIFY(clock.set(at(u"2026-03-28T17:30:00+01:00"_s)));
    QTRY_COMPARE(value(u"offered()"_s).toArray(), morning);
    QVERIFY(clock.set(at(u"2026-03-28T16:30:00+01:00"_s))); // Back by an hour.
    QTRY_COMPARE(value(u"offered()"_s).toArray(), both);
    QVERIFY(clock.set(at(u"2025-03-28T16:30:00+01:00"_s))); // Back by a year.
    QTRY_COMPARE(value(u"bar.now.getFullYear()"_s), QJsonValue(2025));
    QCOMPARE(value(u"offered()"_s).toArray(), both);
    QCOMPARE(value(u"chosen('Tomorrow morning')"_s).toInt(),
             at(u"2025-03-29T09:00:00+01:00"_s).toSecsSinceEpoch());
    QVERIFY(stop());
}

/// The zone is the file to which /etc/localtime links. Another link takes its place, as on a
/// handset whose user travels.
void TestHours::followsTheZone()
{
    if (!Sandbox::isPossible())
        QSKIP("bwrap cannot make a sandbox here.");

    m_ui = std::make_unique<UiUnderTest>();
    m_ui->setPrefix(inALocalZone(QString::fromLatin1(berlin)));
    const auto move = [this](const char *zone) {
        const QString local = u"/proc/%1/root/etc/localtime"_s.arg(m_ui->processId());
        const QString next = local + u".next"_s;
        return QFile::link(zoneFile(QString::fromLatin1(zone)), next)
            && std::rename(qUtf8Printable(next), qUtf8Printable(local)) == 0;
    };
    const SettableClock clock(*m_ui);
    QVERIFY(clock.set(at(u"2026-10-03T03:30:00+02:00"_s)));
    QVERIFY(start());
    QTRY_COMPARE(value(u"hour"_s), QJsonValue(u"03"_s));
    QCOMPARE(value(u"chosen('This evening')"_s).toInt(),
             at(u"2026-10-03T18:00:00+02:00"_s).toSecsSinceEpoch());

    QVERIFY(move(lordHowe));
    QTRY_COMPARE(value(u"hour"_s), QJsonValue(u"12"_s));
    QCOMPARE(value(u"chosen('This evening')"_s).toInt(),
             at(u"2026-10-03T18:00:00+10:30"_s).toSecsSinceEpoch());
    QVERIFY(move(kiritimati));
    QTRY_COMPARE(value(u"hour"_s), QJsonValue(u"15"_s));
    QVERIFY(stop());
}

/// The clock is set during a call, as the network does it. The call takes no longer and no shorter.
void TestHours::countsOnInACall()
{
    m_ui = std::make_unique<UiUnderTest>();
    SimulatedTelephony telephony(*m_ui);
    QVERIFY(telephony.start());
    const QDateTime now = QDateTime::currentDateTimeUtc();
    const SettableClock clock(*m_ui);
    QVERIFY(clock.set(now));
    QVERIFY(start());
    QCOMPARE(value(u"(line.load(), line.missing)"_s), QJsonValue(false));
    QTRY_COMPARE(value(u"line.status"_s), QJsonValue(u"ready"_s));
    QVERIFY(telephony.ring(u"5550123"_s));
    QTRY_COMPARE(value(u"line.ringing !== null"_s), QJsonValue(true));
    QCOMPARE(value(u"(line.answer(false), line.taken > 0)"_s), QJsonValue(true));
    QTRY_COMPARE(value(u"line.ongoing"_s), QJsonValue(true));

    // The seconds, of which the second one is shown after the clock was set.
    const auto seconds = [this] { return value(u"Number(line.state.split(':')[1])"_s).toInt(-1); };
    const auto minutes = [this] { return value(u"line.state.split(':')[0]"_s).toString(); };
    for (const int shift : {3600, -3600}) {
        const int before = seconds();
        QVERIFY(clock.set(QDateTime::currentDateTimeUtc().addSecs(shift)));
        QTRY_VERIFY(seconds() > before);
        QVERIFY(seconds() < before + 30);
        QCOMPARE(minutes(), u"00"_s);
    }
    QVERIFY(telephony.remote(u"hangup"_s));
    QTRY_COMPARE(value(u"line.active"_s), QJsonValue(false));
    for (const QString &line :
         {u"sims: 1"_s, u"filters: dial yes, receive yes"_s, u"telephony: ready"_s})
        QVERIFY(m_ui->logs(u"screens: "_s + line));
    QVERIFY(stop());
}

int main(int argc, char *argv[])
{
    qputenv("LC_ALL", "C.UTF-8"); // The names of days and months are checked.
    const QCoreApplication application(argc, argv);
    TestHours test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_hours.moc"
