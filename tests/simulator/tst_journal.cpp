// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "journal.h"
#include "literals.h"
#include "privatebus.h"
#include "uitraffic.h"

#include <QAbstractItemModelTester>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusReply>
#include <QDateTime>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <csignal>
#include <iterator>
#include <memory>

namespace {

using Type = BusMessage::Type;

const QString bus = u"org.freedesktop.DBus"_s;
const QString ui = u":1.5"_s;
const QString other = u":1.9"_s;
const QString session = u"session"_s;

QString quoted(const QString &text)
{
    return u'"' + text + u'"';
}

BusMessage makeMessage(Type type, const QString &sender, const QString &destination,
                       const QString &member = {}, const QStringList &strings = {})
{
    BusMessage message;
    message.type = type;
    message.sender = sender;
    message.destination = destination;
    if (!member.isEmpty()) {
        message.path = u"/"_s;
        message.interface = u"com.example.I"_s;
        message.member = member;
    }
    message.strings = strings;
    QStringList values;
    std::transform(strings.cbegin(), strings.cend(), std::back_inserter(values), quoted);
    message.values = values.join(u", "_s);
    return message;
}

BusMessage call(const QString &sender, const QString &destination, const QString &member,
                quint32 cookie, const QStringList &strings = {})
{
    BusMessage message = makeMessage(Type::Call, sender, destination, member, strings);
    message.cookie = cookie;
    message.time = 1000000;
    return message;
}

/// Returns a reply that comes \a microseconds after the call.
BusMessage reply(Type type, const QString &destination, quint32 cookie, qint64 microseconds,
                 const QStringList &strings = {})
{
    BusMessage message = makeMessage(type, u":1.7"_s, destination, {}, strings);
    message.replyCookie = cookie;
    message.time = 1000000 + microseconds;
    if (type == Type::Error)
        message.errorName = u"com.example.Error"_s;
    return message;
}

BusMessage ownerChanged(const QString &name, const QString &before, const QString &after)
{
    BusMessage message =
        makeMessage(Type::Signal, bus, {}, u"NameOwnerChanged"_s, {name, before, after});
    message.interface = bus;
    return message;
}

/// Runs a command and returns its result.
QString resultOf(Journal &journal, const QString &name, const QStringList &arguments)
{
    QString result = u"not through"_s;
    const auto commands = journal.commands();
    for (const Command &command : commands) {
        if (command.name == name)
            command.run(arguments, [&result](Outcome outcome, const QString &text) {
                result = outcome == Outcome::Failed ? u"failed: "_s + text : text;
            });
    }
    return result;
}

} // namespace

class TestJournal : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void showsACallAndItsReply();
    void showsAnError();
    void showsASignal();
    void showsACallWithoutAReply();
    void pairsEachReplyWithItsCall();
    void takesEachReplyOnce();
    void leavesACallOpen();
    void tellsOfEveryChange();
    void keepsTheLastThousand();
    void canBeEmptied();
    void printsTheLast();
    void refusesBadCounts_data();
    void refusesBadCounts();
    void doesWithoutAMonitor();
    void goesOnWithoutAMonitor();

    void keepsWhatTheUiGetsAndSends();
    void waitsForAnswersInOrder();
    void asksOnceForEachConnection();
    void leavesOutTheBusItself();
    void leavesOutTheSimulatorsControl();
    void countsBroadcastsWhileTheUiIsThere();
    void followsNames();
    void waitsForTheFirstNames();
    void forgetsAUiThatIsGone();
    void marksInOrder();

private:
    QVariant value(int row, Journal::Role role) const;
    QStringList lines() const;
    void startTraffic(const QMap<QString, QString> &owners = {});
    void makeTraffic();

    std::unique_ptr<Transcript> m_transcript;
    std::unique_ptr<Journal> m_journal;
    std::unique_ptr<QAbstractItemModelTester> m_tester;

    std::unique_ptr<UiTraffic> m_traffic;
    QHash<QString, std::function<void(bool)>> m_questions;
    QStringList m_asked;
    QStringList m_seen;
};

void TestJournal::init()
{
    m_tester.reset();
    m_transcript = std::make_unique<Transcript>();
    m_journal = std::make_unique<Journal>(*m_transcript);
    m_tester = std::make_unique<QAbstractItemModelTester>(
        m_journal.get(), QAbstractItemModelTester::FailureReportingMode::QtTest);
}

QVariant TestJournal::value(int row, Journal::Role role) const
{
    return m_journal->data(m_journal->index(row), role);
}

/// Returns the lines of the journal without the time.
QStringList TestJournal::lines() const
{
    QStringList lines;
    for (int row = 0; row < m_journal->rowCount(); ++row)
        lines << m_journal->line(row).section(u' ', 1);
    return lines;
}

void TestJournal::showsACallAndItsReply()
{
    const QDateTime time(QDate(2026, 3, 4), QTime(14, 3, 22, 120));
    BusMessage dial = call(other, u"com.example.ui"_s, u"dial"_s, 3, {u"5551234"_s, u"x"_s});
    dial.time = time.toMSecsSinceEpoch() * 1000 + 999;
    dial.path = u"/a/b"_s;
    m_journal->add(session, dial, true, u"com.example.home"_s);

    QCOMPARE(m_journal->rowCount(), 1);
    QCOMPARE(value(0, Journal::TimeRole), u"14:03:22.120"_s);
    QCOMPARE(value(0, Journal::BusRole), session);
    QCOMPARE(value(0, Journal::KindRole), u"call"_s);
    QCOMPARE(value(0, Journal::IncomingRole), true);
    QCOMPARE(value(0, Journal::PeerRole), u"com.example.home"_s);
    QCOMPARE(value(0, Journal::InterfaceRole), u"com.example.I"_s);
    QCOMPARE(value(0, Journal::MemberRole), u"dial"_s);
    QCOMPARE(value(0, Journal::PathRole), u"/a/b"_s);
    QCOMPARE(value(0, Journal::ArgumentsRole), u"\"5551234\", \"x\""_s);
    QCOMPARE(value(0, Journal::OutcomeRole), QString());
    QCOMPARE(value(0, Journal::FailedRole), false);
    QCOMPARE(value(0, Journal::MillisecondsRole), -1.0);
    QCOMPARE(m_journal->line(0),
             u"14:03:22.120 session -> dial(\"5551234\", \"x\") at /a/b, no reply yet"_s);

    BusMessage answer = reply(Type::Return, other, 3, 0, {u"yes"_s});
    answer.time = dial.time + 420;
    m_journal->add(session, answer, false, other);
    QCOMPARE(m_journal->rowCount(), 1);
    QCOMPARE(value(0, Journal::OutcomeRole), u"\"yes\""_s);
    QCOMPARE(value(0, Journal::FailedRole), false);
    QCOMPARE(value(0, Journal::MillisecondsRole), 0.42);
    QCOMPARE(m_journal->line(0),
             u"14:03:22.120 session -> dial(\"5551234\", \"x\") at /a/b = \"yes\", 0.4 ms"_s);
}

void TestJournal::showsAnError()
{
    m_journal->add(session, call(ui, u"com.example.S"_s, u"ask"_s, 1), false, u"com.example.S"_s);
    m_journal->add(session, reply(Type::Error, ui, 1, 2500, {u"no\nway"_s}), true, {});
    QCOMPARE(value(0, Journal::FailedRole), true);
    QCOMPARE(value(0, Journal::OutcomeRole), u"com.example.Error: no\\u000away"_s);
    QCOMPARE(value(0, Journal::IncomingRole), false);
    QCOMPARE(lines(), QStringList(u"session <- ask() = com.example.Error: no\\u000away, 2.5 ms"_s));
}

void TestJournal::showsASignal()
{
    m_journal->add(u"system"_s, makeMessage(Type::Signal, other, {}, u"changed"_s, {u"x"_s}), true,
                   other);
    QCOMPARE(value(0, Journal::KindRole), u"signal"_s);
    QCOMPARE(value(0, Journal::OutcomeRole), QString());
    QCOMPARE(value(0, Journal::MillisecondsRole), -1.0);
    QCOMPARE(lines(), QStringList(u"system -> changed(\"x\")"_s));
}

void TestJournal::showsACallWithoutAReply()
{
    BusMessage message = call(ui, other, u"tell"_s, 1);
    message.wantsReply = false;
    message.interface.clear();
    m_journal->add(session, message, false, other);
    m_journal->add(session, reply(Type::Return, ui, 1, 1), true,
                   other); // This is a reply to no call.
    QCOMPARE(value(0, Journal::InterfaceRole), QString());
    QCOMPARE(value(0, Journal::MemberRole), u"tell"_s);
    QCOMPARE(value(0, Journal::OutcomeRole), u"no reply wanted"_s);
    QCOMPARE(value(0, Journal::MillisecondsRole), -1.0);
    QCOMPARE(lines(), QStringList(u"session <- tell(), no reply wanted"_s));
}

/// Cookies are unique only within a connection, and connections only within a bus.
void TestJournal::pairsEachReplyWithItsCall()
{
    m_journal->add(session, call(other, ui, u"first"_s, 1), true, other);
    m_journal->add(session, call(u":1.91"_s, ui, u"second"_s, 1), true, u":1.91"_s);
    m_journal->add(u"system"_s, call(other, ui, u"third"_s, 1), true, other);
    m_journal->add(session, call(other, ui, u"fourth"_s, 11), true, other);
    m_journal->add(u"system"_s, reply(Type::Return, other, 1, 3000, {u"3"_s}), false, other);
    m_journal->add(session, reply(Type::Return, other, 11, 4000), false, other);
    m_journal->add(session, reply(Type::Error, u":1.91"_s, 1, 2000, {u"2"_s}), false, other);
    m_journal->add(session, reply(Type::Return, other, 1, -5, {u"1"_s}), false, other);
    QCOMPARE(lines(),
             (QStringList{u"session -> first() = \"1\", 0.0 ms"_s,
                          u"session -> second() = com.example.Error: 2, 2.0 ms"_s,
                          u"system -> third() = \"3\", 3.0 ms"_s,
                          u"session -> fourth() = done, 4.0 ms"_s}));
}

void TestJournal::takesEachReplyOnce()
{
    m_journal->add(session, reply(Type::Return, other, 1, 1, {u"early"_s}), false, other);
    m_journal->add(session, call(other, ui, u"ask"_s, 1), true, other);
    m_journal->add(session, reply(Type::Return, other, 1, 1000, {u"first"_s}), false, other);
    m_journal->add(session, reply(Type::Error, other, 1, 2000, {u"second"_s}), false, other);
    m_journal->add(session, reply(Type::Return, other, 0, 2000), false, other);
    QCOMPARE(lines(), QStringList(u"session -> ask() = \"first\", 1.0 ms"_s));
}

void TestJournal::leavesACallOpen()
{
    m_journal->add(session, call(other, ui, u"ask"_s, 1), true, other);
    m_journal->add(session, call(other, ui, u"again"_s, 2), true, other);
    m_journal->add(session, reply(Type::Return, other, 2, 1000), false, other);
    QCOMPARE(
        lines(),
        (QStringList{u"session -> ask(), no reply yet"_s, u"session -> again() = done, 1.0 ms"_s}));
}

void TestJournal::tellsOfEveryChange()
{
    QSignalSpy inserted(m_journal.get(), &QAbstractItemModel::rowsInserted);
    QSignalSpy changed(m_journal.get(), &QAbstractItemModel::dataChanged);
    m_journal->add(session, call(other, ui, u"first"_s, 1), true, other);
    m_journal->add(session, call(other, ui, u"second"_s, 2), true, other);
    QCOMPARE(inserted.size(), 2);
    QCOMPARE(inserted.at(1).at(1).toInt(), 1);
    m_journal->add(session, reply(Type::Return, other, 2, 1), false, other);
    QCOMPARE(changed.size(), 1);
    QCOMPARE(changed.at(0).at(0).toModelIndex().row(), 1);
    QCOMPARE(m_journal->roleNames().size(), 12);
}

void TestJournal::keepsTheLastThousand()
{
    m_tester.reset(); // It takes long for each change.
    for (quint32 i = 0; i < 10000; ++i)
        m_journal->add(session, call(other, ui, u"ask"_s + QString::number(i), i + 1), true, other);
    QCOMPARE(m_journal->rowCount(), 1000);
    QCOMPARE(value(0, Journal::MemberRole), u"ask9000"_s);
    QCOMPARE(value(999, Journal::MemberRole), u"ask9999"_s);

    // All calls are answered. Those of removed entries are ignored.
    for (quint32 i = 0; i < 10000; ++i)
        m_journal->add(session, reply(Type::Return, other, i + 1, 1000, {QString::number(i)}),
                       false, other);
    QCOMPARE(m_journal->rowCount(), 1000);
    for (int row = 0; row < 1000; ++row)
        QCOMPARE(value(row, Journal::OutcomeRole).toString(), u"\"%1\""_s.arg(9000 + row));
}

void TestJournal::canBeEmptied()
{
    m_journal->add(session, call(other, ui, u"first"_s, 1), true, other);
    QCOMPARE(resultOf(*m_journal, u"journal clear"_s, {}), u"done"_s);
    QCOMPARE(m_journal->rowCount(), 0);
    QCOMPARE(resultOf(*m_journal, u"journal"_s, {}), u"the journal is empty"_s);

    m_journal->add(session, reply(Type::Return, other, 1, 1), false, other);
    QCOMPARE(m_journal->rowCount(), 0);
    m_journal->add(session, call(other, ui, u"second"_s, 2), true, other);
    m_journal->add(session, reply(Type::Return, other, 2, 1000), false, other);
    QCOMPARE(lines(), QStringList(u"session -> second() = done, 1.0 ms"_s));
}

void TestJournal::printsTheLast()
{
    for (quint32 i = 1; i <= 25; ++i)
        m_journal->add(session, call(other, ui, u"ask"_s + QString::number(i), i), true, other);
    QCOMPARE(resultOf(*m_journal, u"journal"_s, {}), QString());
    QCOMPARE(m_transcript->happened().size(), 20);
    QCOMPARE(m_transcript->happened().constFirst(), m_journal->line(5));
    m_transcript->beginCommand(u"journal 3"_s);
    QCOMPARE(resultOf(*m_journal, u"journal"_s, {u"3"_s}), QString());
    QCOMPARE(m_transcript->happened(),
             (QStringList{m_journal->line(22), m_journal->line(23), m_journal->line(24)}));
    m_transcript->beginCommand(u"journal 100"_s);
    QCOMPARE(resultOf(*m_journal, u"journal"_s, {u"100"_s}), QString());
    QCOMPARE(m_transcript->happened().size(), 25);
}

void TestJournal::refusesBadCounts_data()
{
    QTest::addColumn<QString>("count");
    for (const char *count : {"x", "0", "-1", "1.5", "99999999999", ""})
        QTest::newRow(count) << QString::fromLatin1(count);
}

void TestJournal::refusesBadCounts()
{
    QFETCH(QString, count);
    QCOMPARE(resultOf(*m_journal, u"journal"_s, {count}),
             u"failed: \"%1\" is no number of lines"_s.arg(count));
}

void TestJournal::doesWithoutAMonitor()
{
    QSignalSpy said(m_transcript.get(), &Transcript::said);
    const QDBusConnection none(u"none"_s);
    m_journal->watch({session, u"unix:path=/nonexistent"_s, none}, u"/bin/true"_s);
    QCOMPARE(said.size(), 1);
    const QString line = said.at(0).at(0).toString();
    QVERIFY2(line.startsWith(u"The journal goes on without the session bus: "_s),
             qUtf8Printable(line));
    QCOMPARE(resultOf(*m_journal, u"journal"_s, {}), u"the journal is empty"_s);
    QCOMPARE(resultOf(*m_journal, u"journal clear"_s, {}), u"done"_s);
}

/// A command that waits for a bus ends when the bus does.
void TestJournal::goesOnWithoutAMonitor()
{
    const QTemporaryDir folder;
    PrivateBus daemon;
    QVERIFY(daemon.start(folder.path(), session));
    QSignalSpy said(m_transcript.get(), &Transcript::said);
    const QDBusConnection connection =
        QDBusConnection::connectToBus(daemon.address(), folder.path());
    const auto process = static_cast<pid_t>(connection.interface()->servicePid(bus).value());
    m_journal->watch({session, daemon.address(), connection}, u"/bin/true"_s);
    QCOMPARE(said.size(), 0);
    QCOMPARE(kill(process, SIGSTOP), 0);
    QString result = u"not through"_s;
    const QVector<Command> commands = m_journal->commands();
    const auto clear = std::find_if(commands.cbegin(), commands.cend(), [](const Command &command) {
        return command.name == u"journal clear"_s;
    });
    QVERIFY(clear != commands.cend());
    clear->run({}, [&result](Outcome, const QString &text) { result = text; });
    QCOMPARE(result, u"not through"_s);
    QCOMPARE(kill(process, SIGKILL), 0);
    QTRY_COMPARE(said.size(), 1);
    QCOMPARE(result, u"done"_s);
    QCOMPARE(resultOf(*m_journal, u"journal"_s, {}), u"the journal is empty"_s);
    QDBusConnection::disconnectFromBus(folder.path());
}

void TestJournal::startTraffic(const QMap<QString, QString> &owners)
{
    makeTraffic();
    m_traffic->start(owners, owners.values());
}

/// The questions are kept in m_questions.
void TestJournal::makeTraffic()
{
    m_questions.clear();
    m_asked.clear();
    m_seen.clear();
    m_traffic = std::make_unique<UiTraffic>(
        [this](const QString &name, const std::function<void(bool)> &answer) {
            m_asked << name;
            m_questions.insert(name, answer);
        });
    connect(m_traffic.get(), &UiTraffic::seen, this,
            [this](const BusMessage &message, bool incoming, const QString &peer) {
                m_seen << message.member + (incoming ? u" -> "_s : u" <- "_s) + peer;
            });
    connect(m_traffic.get(), &UiTraffic::marked, this,
            [this](const QString &mark) { m_seen << u"mark "_s + mark; });
}

void TestJournal::keepsWhatTheUiGetsAndSends()
{
    startTraffic();
    m_traffic->take(call(ui, other, u"out"_s, 1));
    m_questions.value(ui)(true);
    m_questions.value(other)(false);
    m_traffic->take(reply(Type::Return, ui, 1, 1));
    m_questions.value(u":1.7"_s)(false);
    m_traffic->take(call(other, ui, u"in"_s, 2));
    m_traffic->take(makeMessage(Type::Error, ui, other));
    m_traffic->take(call(other, u":1.7"_s, u"others"_s, 3));
    m_traffic->take(call(other, u"com.example.Absent"_s, u"others"_s, 3));
    m_traffic->take(makeMessage(Type::Signal, ui, {}, u"told"_s));
    QCOMPARE(m_seen,
             (QStringList{u"out <- :1.9"_s, u" -> :1.7"_s, u"in -> :1.9"_s, u" <- :1.9"_s,
                          u"told <- "_s}));
}

void TestJournal::waitsForAnswersInOrder()
{
    startTraffic();
    m_traffic->take(call(other, u"com.example.Other"_s, u"none"_s, 1));
    m_traffic->take(call(ui, u"com.example.Other"_s, u"first"_s, 1));
    m_traffic->take(call(u":1.6"_s, ui, u"second"_s, 1));
    m_traffic->take(call(ui, u"com.example.Other"_s, u"third"_s, 2));
    m_questions.value(u":1.6"_s)(false);
    m_questions.value(ui)(true);
    QCOMPARE(m_seen, QStringList());
    m_questions.value(other)(false);
    QCOMPARE(m_seen,
             (QStringList{u"first <- com.example.Other"_s, u"second -> :1.6"_s,
                          u"third <- com.example.Other"_s}));
}

void TestJournal::asksOnceForEachConnection()
{
    startTraffic();
    m_traffic->take(ownerChanged(ui, {}, ui));
    m_traffic->take(call(ui, bus, u"Hello"_s, 1));
    m_traffic->take(call(ui, other, u"ask"_s, 2));
    m_traffic->take(ownerChanged(u"com.example.ui"_s, {}, ui));
    m_traffic->take(call(other, u"com.example.ui"_s, u"ask"_s, 2));
    QCOMPARE(m_asked, (QStringList{ui, other}));
}

void TestJournal::leavesOutTheBusItself()
{
    startTraffic();
    m_traffic->take(ownerChanged(ui, {}, ui));
    m_questions.value(ui)(true);
    for (const QString &method : {u"Hello"_s, u"AddMatch"_s, u"GetNameOwner"_s, u"RequestName"_s})
        m_traffic->take(call(ui, bus, method, 1));
    m_traffic->take(makeMessage(Type::Signal, bus, ui, u"NameAcquired"_s));
    m_traffic->take(makeMessage(Type::Signal, bus, {}, u"Whatever"_s));
    QCOMPARE(m_seen, QStringList(u"RequestName <- org.freedesktop.DBus"_s));
}

void TestJournal::leavesOutTheSimulatorsControl()
{
    startTraffic();
    m_traffic->take(ownerChanged(ui, {}, ui));
    m_questions.value(ui)(true);
    BusMessage control = makeMessage(Type::Signal, bus, {}, u"Launched"_s);
    control.interface = u"com.nimbo.simulator.CallHistory"_s;
    m_traffic->take(control);
    control = call(ui, u"org.ofono"_s, u"ListSims"_s, 1);
    control.interface = u"com.nimbo.simulator.Telephony"_s;
    m_traffic->take(control);
    control.interface = u"com.nimbo.simulators"_s;
    m_traffic->take(control);
    QCOMPARE(m_seen, QStringList(u"ListSims <- org.ofono"_s));
}

void TestJournal::countsBroadcastsWhileTheUiIsThere()
{
    startTraffic();
    const auto broadcast = [this](const QString &member) {
        m_traffic->take(makeMessage(Type::Signal, other, {}, member));
    };
    broadcast(u"early"_s);
    m_questions.value(other)(false);
    m_traffic->take(ownerChanged(ui, {}, ui));
    broadcast(u"there"_s);
    m_questions.value(ui)(true);
    m_traffic->take(makeMessage(Type::Signal, other, u":1.9"_s, u"aimed at another"_s));
    m_traffic->take(ownerChanged(ui, ui, {}));
    broadcast(u"late"_s);
    QCOMPARE(m_seen, QStringList(u"there -> :1.9"_s));
}

void TestJournal::followsNames()
{
    startTraffic({{u"com.example.Old"_s, other}});
    m_traffic->take(ownerChanged(ui, {}, ui));
    m_traffic->take(ownerChanged(other, {}, other));
    m_questions.value(ui)(true);
    m_questions.value(other)(false);
    m_traffic->take(call(other, ui, u"one"_s, 1));
    m_traffic->take(ownerChanged(u"com.example.Old"_s, other, {}));
    m_traffic->take(call(other, ui, u"two"_s, 2));
    m_traffic->take(ownerChanged(u"com.example.New"_s, {}, other));
    m_traffic->take(call(other, u"com.example.ui"_s, u"not yet"_s, 3));
    m_traffic->take(ownerChanged(u"com.example.ui"_s, {}, ui));
    m_traffic->take(call(other, u"com.example.ui"_s, u"three"_s, 3));
    m_traffic->take(call(ui, other, u"four"_s, 3));
    QCOMPARE(m_seen,
             (QStringList{u"one -> com.example.Old"_s, u"two -> :1.9"_s,
                          u"three -> com.example.New"_s, u"four <- com.example.New"_s}));
}

/// Names that were owned before are known with their owners.
void TestJournal::waitsForTheFirstNames()
{
    makeTraffic();
    m_traffic->take(call(other, u"com.example.ui"_s, u"one"_s, 1));
    m_traffic->take(ownerChanged(u"com.example.Old"_s, other, {}));
    m_traffic->take(call(other, u"com.example.ui"_s, u"two"_s, 2));
    m_questions.value(other)(false);
    QCOMPARE(m_seen, QStringList());
    m_traffic->start({{u"com.example.Old"_s, other}, {u"com.example.ui"_s, ui}}, {other, ui});
    QCOMPARE(m_seen, QStringList());
    m_questions.value(ui)(true);
    QCOMPARE(m_seen, (QStringList{u"one -> com.example.Old"_s, u"two -> :1.9"_s}));
}

void TestJournal::forgetsAUiThatIsGone()
{
    startTraffic();
    m_traffic->take(ownerChanged(ui, {}, ui));
    m_traffic->take(ownerChanged(u"com.example.ui"_s, {}, ui));
    m_questions.value(ui)(true);
    m_traffic->take(ownerChanged(u"com.example.ui"_s, ui, {}));
    m_traffic->take(ownerChanged(ui, ui, {}));
    m_traffic->take(call(other, u"com.example.ui"_s, u"nobody"_s, 1));
    m_questions.value(other)(false);
    m_traffic->take(ownerChanged(u":1.20"_s, {}, u":1.20"_s));
    m_questions.value(u":1.20"_s)(true);
    m_traffic->take(ownerChanged(u"com.example.ui"_s, {}, u":1.20"_s));
    m_traffic->take(call(other, u"com.example.ui"_s, u"the next"_s, 1));
    QCOMPARE(m_seen, QStringList(u"the next -> :1.9"_s));
}

void TestJournal::marksInOrder()
{
    startTraffic();
    m_traffic->take(call(other, ui, u"before"_s, 1));
    BusMessage mark = makeMessage(Type::Signal, u":1.1"_s, {}, u"Mark"_s, {u"7"_s});
    mark.interface = u"com.nimbo.simulator.Journal"_s;
    m_traffic->take(mark);
    m_questions.value(u":1.1"_s)(false);
    m_questions.value(other)(false);
    QCOMPARE(m_seen, QStringList());
    m_questions.value(ui)(true);
    QCOMPARE(m_seen, (QStringList{u"before -> :1.9"_s, u"mark 7"_s}));
}

QTEST_GUILESS_MAIN(TestJournal)

#include "tst_journal.moc"
