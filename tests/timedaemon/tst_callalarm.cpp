// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "callalarm.h"
#include "literals.h"

#include <QDateTime>
#include <QLocale>
#include <QTest>
#include <QTranslator>

#include <limits>

namespace {

using Attributes = AlarmAttributes;

const qint64 now = QDateTime::currentSecsSinceEpoch();
const QStringList bothActions{u"call"_s, u"Call"_s, u"snooze"_s, u"In 10 minutes"_s};

} // namespace

Q_DECLARE_METATYPE(QLocale)

class TestCallAlarm : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void namesWhomToCall_data();
    void namesWhomToCall();
    void saysWhenItWasDue_data();
    void saysWhenItWasDue();
    void snoozes_data();
    void snoozes();

private:
    QTranslator m_texts;
};

void TestCallAlarm::initTestCase()
{
    QVERIFY(m_texts.load(u"parley_eng_en"_s, QStringLiteral(PARLEY_TRANSLATIONS)));
    QVERIFY(QCoreApplication::installTranslator(&m_texts));
}

void TestCallAlarm::cleanup()
{
    QLocale::setDefault(QLocale::c());
}

void TestCallAlarm::namesWhomToCall_data()
{
    QTest::addColumn<AlarmAttributes>("attributes");
    QTest::addColumn<QString>("number");
    QTest::addColumn<QString>("summary");
    QTest::addColumn<QString>("body");
    QTest::addColumn<QStringList>("actions");
    const QStringList onlySnooze = bothActions.mid(2);

    QTest::newRow("name and number")
        << Attributes{{u"TITLE"_s, u"Ada <b>"_s}, {u"phoneNumber"_s, u"5551234"_s}} << u"5551234"_s
        << u"Ada <b>"_s << u"5551234"_s << bothActions;
    QTest::newRow("an empty name")
        << Attributes{{u"TITLE"_s, QString()}, {u"phoneNumber"_s, u"5551234"_s}} << u"5551234"_s
        << u"5551234"_s << QString() << bothActions;
    QTest::newRow("a blank name") << Attributes{{u"TITLE"_s, u" \n"_s},
                                                {u"phoneNumber"_s, u"5551234"_s}}
                                  << u"5551234"_s << u"5551234"_s << QString() << bothActions;
    QTest::newRow("only a number") << Attributes{{u"phoneNumber"_s, u"+1 555"_s}} << u"+1 555"_s
                                   << u"+1 555"_s << QString() << bothActions;
    QTest::newRow("only a name") << Attributes{{u"TITLE"_s, u"Tea"_s}} << QString() << u"Tea"_s
                                 << QString() << onlySnooze;
    QTest::newRow("a number as name")
        << Attributes{{u"TITLE"_s, u"+1 555"_s}, {u"phoneNumber"_s, u"+1 555"_s}} << u"+1 555"_s
        << u"+1 555"_s << QString() << bothActions;
    QTest::newRow("a blank number") << Attributes{{u"phoneNumber"_s, u" "_s}} << QString()
                                    << u"Reminder"_s << QString() << onlySnooze;
    QTest::newRow("neither") << Attributes{} << QString() << u"Reminder"_s << QString()
                             << onlySnooze;
}

void TestCallAlarm::namesWhomToCall()
{
    QFETCH(AlarmAttributes, attributes);
    QFETCH(QString, number);

    const CallAlarm alarm({4, now, attributes});
    QCOMPARE(alarm.number(), number);
    const auto notification = alarm.notification(QDateTime::fromSecsSinceEpoch(now));
    QTEST(notification.summary, "summary");
    QTEST(notification.body, "body");
    QTEST(notification.actions, "actions");
}

void TestCallAlarm::saysWhenItWasDue_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QDateTime>("seen");
    QTest::addColumn<qlonglong>("ticker");
    QTest::addColumn<QString>("body");

    const QDate day(2026, 5, 4);
    const auto at = [](const QDateTime &time) {
        return static_cast<qlonglong>(time.toSecsSinceEpoch());
    };
    for (const QLocale &locale : {QLocale(QLocale::English, QLocale::UnitedStates),
                                  QLocale(QLocale::Finnish, QLocale::Finland)}) {
        const auto row = [&locale](const char *name) -> QTestData & {
            return QTest::addRow("%s, %s", name, qPrintable(locale.name())) << locale;
        };
        const QDateTime noon(day, QTime(12, 0));
        const QDateTime midnight(day, QTime(0, 0));
        const QDateTime evening(day.addDays(-1), QTime(23, 59));
        row("yet to come") << noon << at(noon) + 60 << QString();
        row("now") << noon << at(noon) << QString();
        row("59 seconds ago") << noon << at(noon) - 59 << QString();
        row("a minute ago") << noon << at(noon) - 60
                            << u"Due since "_s
                + locale.toString(QTime(11, 59), QLocale::ShortFormat);
        row("at the day's beginning")
            << noon << at(midnight)
            << u"Due since "_s + locale.toString(QTime(0, 0), QLocale::ShortFormat);
        row("a minute ago and yesterday")
            << midnight << at(evening)
            << u"Due since "_s + locale.toString(evening, QLocale::ShortFormat);
        row("a year ago and at this time")
            << noon << at(noon.addYears(-1))
            << u"Due since "_s + locale.toString(noon.addYears(-1), QLocale::ShortFormat);
        row("1970") << noon << 0LL
                    << u"Due since "_s
                + locale.toString(QDateTime::fromSecsSinceEpoch(0), QLocale::ShortFormat);
        row("never") << noon << -1LL << QString();
        row("first") << noon << std::numeric_limits<qlonglong>::min() << QString();
        row("last") << noon << std::numeric_limits<qlonglong>::max() << QString();
    }
}

void TestCallAlarm::saysWhenItWasDue()
{
    QFETCH(QLocale, locale);
    QFETCH(QDateTime, seen);
    QFETCH(qlonglong, ticker);
    QFETCH(QString, body);

    QLocale::setDefault(locale);
    QCOMPARE(CallAlarm({4, ticker, {}}).notification(seen).body, body);
    const QString withNumber = body.isEmpty() ? u"5551234"_s : u"5551234\n"_s + body;
    const Attributes attributes{{u"TITLE"_s, u"Ada"_s}, {u"phoneNumber"_s, u"5551234"_s}};
    QCOMPARE(CallAlarm({4, ticker, attributes}).notification(seen).body, withNumber);
}

void TestCallAlarm::snoozes_data()
{
    QTest::addColumn<AlarmAttributes>("attributes");
    QTest::addColumn<AlarmAttributes>("expected");
    QTest::newRow("a call reminder")
        << Attributes{{u"TITLE"_s, u"Ada"_s}, {u"triggerTime"_s, QString::number(now - 5)}}
        << Attributes{{u"TITLE"_s, u"Ada"_s}, {u"triggerTime"_s, QString::number(now + 600)}};
    QTest::newRow("another application's")
        << Attributes{{u"TITLE"_s, u"Tea"_s}} << Attributes{{u"TITLE"_s, u"Tea"_s}};
}

void TestCallAlarm::snoozes()
{
    QFETCH(AlarmAttributes, attributes);
    QFETCH(AlarmAttributes, expected);

    const Alarm snoozed =
        CallAlarm({7, now - 5, attributes}).snoozed(QDateTime::fromSecsSinceEpoch(now));
    QCOMPARE(snoozed.flags, 7U);
    QCOMPARE(snoozed.ticker, now + 600);
    QCOMPARE(snoozed.attributes, expected);
}

QTEST_GUILESS_MAIN(TestCallAlarm)

#include "tst_callalarm.moc"
