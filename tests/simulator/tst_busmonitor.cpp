// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "busmonitor.h"
#include "literals.h"
#include "privatebus.h"
#include "scriptedservice.h"
#include "watchedbus.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusUnixFileDescriptor>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QVector>

#include <algorithm>
#include <limits>
#include <memory>

#include <unistd.h>

namespace {

const QString interface = u"com.example.Journal"_s;
constexpr int longest = 201; ///< 200 characters and an ellipsis.

QVariant structure()
{
    QDBusArgument argument;
    argument.beginStructure();
    argument << 1 << u"x"_s << QStringList{u"y"_s};
    argument.endStructure();
    return QVariant::fromValue(argument);
}

QVariant mapByNumber()
{
    QDBusArgument argument;
    argument.beginMap(QMetaType::UInt, QMetaType::QString);
    argument.beginMapEntry();
    argument << 1U << u"x"_s;
    argument.endMapEntry();
    argument.beginMapEntry();
    argument << 2U << u"y"_s;
    argument.endMapEntry();
    argument.endMap();
    return QVariant::fromValue(argument);
}

QVariant listOfLongNumbers(const QList<qlonglong> &numbers)
{
    QDBusArgument argument;
    argument.beginArray(QMetaType::LongLong);
    for (const qlonglong number : numbers)
        argument << number;
    argument.endArray();
    return QVariant::fromValue(argument);
}

QVariant nestedVariant(int depth)
{
    QVariant value(7);
    for (int i = 0; i < depth; ++i)
        value = QVariant::fromValue(QDBusVariant(value));
    return value;
}

int openDescriptors()
{
    return static_cast<int>(
        QDir(u"/proc/self/fd"_s).entryList(QDir::AllEntries | QDir::System).size());
}

} // namespace

class TestBusMonitor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void seesCallsAndReplies();
    void seesSignals();
    void showsValues_data();
    void showsValues();
    void cutsALongMessage();
    void seesEveryMessageOfAFlood();
    void takesTheTimeOfArrival();
    void keepsNoDescriptor();
    void saysThatItHasEnded();
    void saysThatItCannotStart();

    void tellsTheUiFromOthers();
    void knowsOlderNames();
    void marksWhatWasSent();
    void saysThatABusIsNotWatched();
    void saysThatABusCannotBeWatched();

private:
    void monitor();
    void emitSignal(const QString &member, const QVariantList &values);
    std::unique_ptr<WatchedBus> watch(const QString &uiProgram);
    const BusMessage *find(BusMessage::Type type, const QString &member) const;

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<QDBusConnection> m_connection;
    std::unique_ptr<BusMonitor> m_monitor;
    QVector<BusMessage> m_messages;
};

void TestBusMonitor::init()
{
    m_messages.clear();
    m_folder = std::make_unique<QTemporaryDir>();
    m_bus = std::make_unique<PrivateBus>();
    QVERIFY(m_bus->start(m_folder->path(), u"bus"_s));
    m_connection = std::make_unique<QDBusConnection>(
        QDBusConnection::connectToBus(m_bus->address(), m_folder->path()));
    QVERIFY(m_connection->isConnected());
}

void TestBusMonitor::cleanup()
{
    m_monitor.reset();
    m_connection.reset();
    QDBusConnection::disconnectFromBus(m_folder->path());
    m_bus.reset();
}

/// Collects messages from now on.
void TestBusMonitor::monitor()
{
    m_monitor = std::make_unique<BusMonitor>();
    connect(m_monitor.get(), &BusMonitor::received, this,
            [this](const BusMessage &message) { m_messages.append(message); });
    QVERIFY2(m_monitor->start(m_bus->address()), qUtf8Printable(m_monitor->error()));
}

void TestBusMonitor::emitSignal(const QString &member, const QVariantList &values)
{
    QDBusMessage message = QDBusMessage::createSignal(u"/a/b"_s, interface, member);
    message.setArguments(values);
    QVERIFY(m_connection->send(message));
}

std::unique_ptr<WatchedBus> TestBusMonitor::watch(const QString &uiProgram)
{
    auto watched = std::make_unique<WatchedBus>(
        WatchedBus::Bus{u"session"_s, m_bus->address(), *m_connection}, uiProgram);
    watched->start();
    return watched;
}

const BusMessage *TestBusMonitor::find(BusMessage::Type type, const QString &member) const
{
    const auto found =
        std::find_if(m_messages.cbegin(), m_messages.cend(), [&](const BusMessage &message) {
            return message.type == type && message.member == member;
        });
    return found == m_messages.cend() ? nullptr : &*found;
}

void TestBusMonitor::seesCallsAndReplies()
{
    monitor();
    const QString bus = u"org.freedesktop.DBus"_s;
    const auto call = [&bus](const QString &method) {
        return QDBusMessage::createMethodCall(bus, u"/"_s, bus, method);
    };
    m_connection->call(call(u"GetId"_s));
    m_connection->call(call(u"Bogus"_s) << 5);
    m_connection->send(call(u"ListNames"_s));
    QTRY_VERIFY(find(BusMessage::Type::Call, u"ListNames"_s));

    const auto *getId = find(BusMessage::Type::Call, u"GetId"_s);
    QVERIFY(getId);
    QVERIFY(getId->wantsReply);
    QCOMPARE(getId->sender, m_connection->baseService());
    QCOMPARE(getId->destination, bus);
    QCOMPARE(getId->path, u"/"_s);
    QCOMPARE(getId->interface, bus);
    QCOMPARE(getId->values, QString());
    const auto answers = [](const BusMessage *asked) {
        return [asked](const BusMessage &message) { return message.replyCookie == asked->cookie; };
    };
    const auto id = std::find_if(m_messages.cbegin(), m_messages.cend(), answers(getId));
    QVERIFY(id != m_messages.cend());
    QVERIFY(id->type == BusMessage::Type::Return);
    QCOMPARE(id->destination, m_connection->baseService());
    QCOMPARE(id->strings.size(), 1);

    const auto *bogus = find(BusMessage::Type::Call, u"Bogus"_s);
    QVERIFY(bogus);
    QCOMPARE(bogus->values, u"5"_s);
    const auto error = std::find_if(m_messages.cbegin(), m_messages.cend(), answers(bogus));
    QVERIFY(error != m_messages.cend());
    QVERIFY(error->type == BusMessage::Type::Error);
    QCOMPARE(error->errorName, u"org.freedesktop.DBus.Error.UnknownMethod"_s);
    QVERIFY(!find(BusMessage::Type::Call, u"ListNames"_s)->wantsReply);
}

void TestBusMonitor::seesSignals()
{
    monitor();
    const auto before = QDateTime::currentMSecsSinceEpoch();
    emitSignal(u"Seen"_s, {u"first"_s, u"second"_s, 3, u"fourth"_s});
    QTRY_VERIFY(find(BusMessage::Type::Signal, u"Seen"_s));
    const BusMessage &message = *find(BusMessage::Type::Signal, u"Seen"_s);
    QCOMPARE(message.sender, m_connection->baseService());
    QCOMPARE(message.path, u"/a/b"_s);
    QCOMPARE(message.interface, interface);
    QCOMPARE(message.strings, (QStringList{u"first"_s, u"second"_s}));
    QVERIFY(message.time / 1000 >= before);
    QVERIFY(message.time / 1000 <= QDateTime::currentMSecsSinceEpoch());
}

void TestBusMonitor::showsValues_data()
{
    QTest::addColumn<QVariantList>("values");
    QTest::addColumn<QString>("text");

    const auto add = [](const char *name, const QVariantList &values, const QString &text) {
        QTest::newRow(name) << values << text;
    };
    add("nothing", {}, QString());
    add("string", {u"+49 30 12"_s}, u"\"+49 30 12\""_s);
    add("no string", {QString(u""_s)}, u"\"\""_s);
    add("quotes", {u"a\"b\\c"_s}, u"\"a\\\"b\\\\c\""_s);
    add("control characters", {u"a\nb\x1b\x202e\x2028"_s}, u"\"a\\nb\\u001b\\u202e\\u2028\""_s);
    add("other scripts", {u"Łódź \U0001F600"_s}, u"\"Łódź \U0001F600\""_s);
    add("numbers",
        {QVariant::fromValue(uchar(255)), QVariant::fromValue(short(-2)),
         QVariant::fromValue(ushort(65535)), -3, 4000000000U},
        u"255, -2, 65535, -3, 4000000000"_s);
    add("long numbers",
        {std::numeric_limits<qlonglong>::min(), std::numeric_limits<qulonglong>::max()},
        u"-9223372036854775808, 18446744073709551615"_s);
    add("fractions", {0.1, 1e300, -2.0}, u"0.1, 1e+300, -2"_s);
    add("no numbers", {qQNaN(), qInf()}, u"nan, inf"_s);
    add("truth", {true, false}, u"true, false"_s);
    add("list", {QStringList{u"a"_s, u"b"_s}}, u"[\"a\", \"b\"]"_s);
    add("no list", {QStringList(), 1}, u"[], 1"_s);
    add("bytes", {QByteArray("ab")}, u"[97, 98]"_s);
    add("list of long numbers", {true, listOfLongNumbers({1, -2})}, u"true, [1, -2]"_s);
    add("no list of long numbers", {true, listOfLongNumbers({}), true}, u"true, [], true"_s);
    add("path and signature",
        {QVariant::fromValue(QDBusObjectPath(u"/a/b"_s)),
         QVariant::fromValue(QDBusSignature(u"a{sv}"_s)), 1},
        u"\"/a/b\", \"a{sv}\", 1"_s);
    add("variants",
        {QVariant::fromValue(QDBusVariant(u"x"_s)),
         QVariant::fromValue(QDBusVariant(QVariant::fromValue(QDBusVariant(5)))), true},
        u"\"x\", 5, true"_s);
    add("map", {QVariantMap{{u"a"_s, 1}, {u"b"_s, QStringList{u"c"_s}}}, 2},
        u"{\"a\": 1, \"b\": [\"c\"]}, 2"_s);
    add("no map", {QVariantMap(), 2}, u"{}, 2"_s);
    add("map by number", {mapByNumber()}, u"{1: \"x\", 2: \"y\"}"_s);
    add("structure", {true, structure(), false}, u"true, (1, \"x\", [\"y\"]), false"_s);
    add("list of anything", {QVariant(QVariantList{1, u"x"_s, QVariantMap{{u"k"_s, 0.5}}})},
        u"[1, \"x\", {\"k\": 0.5}]"_s);
    add("fits", {QString(198, u'x')}, u"\""_s + QString(198, u'x') + u"\""_s);
    add("too long", {QString(199, u'x')}, u"\""_s + QString(199, u'x') + QChar(0x2026));
    add("cut before a pair", {QString(QString(198, u'x') + u"\U0001F600"_s)},
        u"\""_s + QString(198, u'x') + QChar(0x2026));
    add("variant in variants", {nestedVariant(20)}, u"7"_s);
    add("descriptors",
        {QVariant::fromValue(QDBusUnixFileDescriptor(STDIN_FILENO)),
         QVariantMap{{u"log"_s, QVariant::fromValue(QDBusUnixFileDescriptor(STDERR_FILENO))}}},
        u"fd, {\"log\": fd}"_s);
    add("many", {listOfLongNumbers(QVector<qlonglong>(1000, 7).toList())},
        u"[7"_s + u", 7"_s.repeated(66) + QChar(0x2026));
}

void TestBusMonitor::showsValues()
{
    QFETCH(QVariantList, values);
    QFETCH(QString, text);
    monitor();
    emitSignal(u"Values"_s, values);
    QTRY_VERIFY(find(BusMessage::Type::Signal, u"Values"_s));
    QCOMPARE(find(BusMessage::Type::Signal, u"Values"_s)->values, text);
}

void TestBusMonitor::cutsALongMessage()
{
    monitor();
    emitSignal(u"Long"_s, {1, QString(3000000, u'x')});
    emitSignal(u"LongList"_s, {listOfLongNumbers(QVector<qlonglong>(100000, 7).toList())});
    emitSignal(u"Strings"_s, {QString(3000000, u'Ł'), u"y"_s});
    emitSignal(u"Short"_s, {u"x"_s});
    QTRY_VERIFY(find(BusMessage::Type::Signal, u"Short"_s));
    QCOMPARE(find(BusMessage::Type::Signal, u"Long"_s)->values,
             u"1, \""_s + QString(longest - 5, u'x') + QChar(0x2026));
    QCOMPARE(find(BusMessage::Type::Signal, u"LongList"_s)->values.size(), longest);
    const QStringList strings = find(BusMessage::Type::Signal, u"Strings"_s)->strings;
    QCOMPARE(strings.size(), 2);
    QVERIFY(strings.constFirst().startsWith(QString(longest, u'Ł')));
    QVERIFY(strings.constFirst().size() < 1000);
    QCOMPARE(strings.constLast(), u"y"_s);
    QCOMPARE(find(BusMessage::Type::Signal, u"Short"_s)->values, u"\"x\""_s);
}

/// All messages of a flood are seen in order.
void TestBusMonitor::seesEveryMessageOfAFlood()
{
    constexpr int count = 20000;
    monitor();
    int next = 0;
    bool isInOrder = true;
    m_monitor->disconnect(this);
    connect(m_monitor.get(), &BusMonitor::received, this, [&](const BusMessage &message) {
        if (message.member == u"Flood"_s)
            isInOrder = message.values == QString::number(next++) && isInOrder;
    });
    for (int i = 0; i < count; ++i)
        emitSignal(u"Flood"_s, {i});
    QTRY_COMPARE_WITH_TIMEOUT(next, count, 60000);
    QVERIFY(isInOrder);
}

/// This thread is busy between two signals and reads neither of them meanwhile.
void TestBusMonitor::takesTheTimeOfArrival()
{
    constexpr qint64 pause = 20;
    monitor();
    const auto isApart = [&] {
        m_messages.clear();
        emitSignal(u"Before"_s, {});
        QElapsedTimer timer;
        timer.start();
        while (timer.elapsed() < pause) { }
        emitSignal(u"After"_s, {});
        const auto haveCome = [this] { return find(BusMessage::Type::Signal, u"After"_s); };
        return QTest::qWaitFor(haveCome)
            && find(BusMessage::Type::Signal, u"After"_s)->time
                - find(BusMessage::Type::Signal, u"Before"_s)->time
            >= pause * 1000;
    };
    QVERIFY(QTest::qWaitFor(isApart));
}

void TestBusMonitor::keepsNoDescriptor()
{
    monitor();
    const QVariant descriptor = QVariant::fromValue(QDBusUnixFileDescriptor(STDERR_FILENO));
    emitSignal(u"First"_s, {});
    QTRY_VERIFY(find(BusMessage::Type::Signal, u"First"_s)); // The monitor has all that it needs.
    const int before = openDescriptors();
    for (int i = 0; i < 100; ++i)
        emitSignal(u"Descriptors"_s, QVariantList{descriptor, descriptor});
    emitSignal(u"Last"_s, {});
    QTRY_VERIFY(find(BusMessage::Type::Signal, u"Last"_s));
    QCOMPARE(find(BusMessage::Type::Signal, u"Descriptors"_s)->values, u"fd, fd"_s);
    QTRY_COMPARE(openDescriptors(), before); // The sender closes its own when they are sent.
}

void TestBusMonitor::saysThatItHasEnded()
{
    monitor();
    int ends = 0;
    connect(m_monitor.get(), &BusMonitor::ended, this, [&ends] { ++ends; });
    m_bus->stop();
    QTRY_COMPARE(ends, 1);
    QVERIFY(!find(BusMessage::Type::Signal, u"Disconnected"_s)); // It was on no bus.
}

void TestBusMonitor::saysThatItCannotStart()
{
    BusMonitor monitor;
    QVERIFY(!monitor.start(u"unix:path=/nonexistent"_s));
    QVERIFY2(monitor.error().contains(u"/nonexistent"_s), qUtf8Printable(monitor.error()));
}

/// In this test, this process is the call UI, and dbus-send is another process.
void TestBusMonitor::tellsTheUiFromOthers()
{
    ScriptedService ui(m_bus->address(), u"com.example.Ui"_s, u"/"_s);
    const auto watched = watch(QCoreApplication::applicationFilePath());
    QStringList seen;
    connect(watched.get(), &WatchedBus::seen, this,
            [&seen](const BusMessage &message, bool incoming, const QString &peer) {
                if (peer != u"org.freedesktop.DBus"_s)
                    seen << message.member + (incoming ? u" to"_s : u" from"_s) + u" the UI"_s;
            });
    QStringList marks;
    connect(watched.get(), &WatchedBus::marked, this,
            [&marks](const QString &mark) { marks << mark; });
    watched->mark(u"watching"_s);
    QTRY_COMPARE(marks, QStringList(u"watching"_s));

    QProcess caller;
    caller.start(u"dbus-send"_s,
                 {u"--bus="_s + m_bus->address(), u"--print-reply"_s, u"--dest=com.example.Ui"_s,
                  u"/"_s, u"com.example.Ui.hello"_s});
    ui.reply(ui.next(u"hello"_s), {5});
    QVERIFY(caller.waitForFinished());
    QTRY_COMPARE(seen, (QStringList{u"hello to the UI"_s, u" from the UI"_s}));
}

/// In this test, gdbus is the call UI, and this process has owned a name before the bus is watched.
void TestBusMonitor::knowsOlderNames()
{
    QVERIFY(m_connection->registerService(u"com.example.Old"_s));
    const QString program = QStandardPaths::findExecutable(u"gdbus"_s);
    const auto watched = watch(QFileInfo(program).canonicalFilePath());
    QStringList peers;
    connect(watched.get(), &WatchedBus::seen, this,
            [&peers](const BusMessage &message, bool incoming, const QString &peer) {
                if (incoming && message.member == u"Hello"_s)
                    peers << peer;
            });
    ChildProcess ui;
    ui.start(program,
             {u"monitor"_s, u"--address"_s, m_bus->address(), u"--dest"_s, u"com.example.Old"_s});
    const auto isNamed = [&] {
        emitSignal(u"Hello"_s, {});
        return peers.contains(u"com.example.Old"_s);
    };
    QTRY_VERIFY(isNamed());
}

void TestBusMonitor::marksWhatWasSent()
{
    ScriptedService ui(m_bus->address(), u"com.example.Ui"_s, u"/"_s);
    const auto watched = watch(QCoreApplication::applicationFilePath());
    QStringList seen;
    connect(watched.get(), &WatchedBus::seen, this, [&seen](const BusMessage &message) {
        if (message.type == BusMessage::Type::Signal)
            seen << message.member;
    });
    connect(watched.get(), &WatchedBus::marked, this,
            [&seen](const QString &mark) { seen << u"mark "_s + mark; });
    watched->mark(u"1"_s);
    QTRY_COMPARE(seen, QStringList(u"mark 1"_s));
    for (int i = 0; i < 3; ++i)
        emitSignal(u"Before"_s, {});
    watched->mark(u"2"_s);
    QTRY_COMPARE(seen.size(), 5);
    QCOMPARE(seen.constLast(), u"mark 2"_s);
    QVERIFY(watched->isWatched());
}

void TestBusMonitor::saysThatABusIsNotWatched()
{
    const auto watched = watch(QCoreApplication::applicationFilePath());
    QVERIFY(watched->isWatched());
    QStringList ends;
    connect(watched.get(), &WatchedBus::ended, this, [&ends](const QString &why) { ends << why; });
    m_bus->stop();
    QTRY_COMPARE(ends,
                 QStringList(u"The journal goes on without the session bus: the bus has ended the "
                             "connection."_s));
    QVERIFY(!watched->isWatched());
}

void TestBusMonitor::saysThatABusCannotBeWatched()
{
    WatchedBus watched({u"system"_s, u"unix:path=/nonexistent"_s, *m_connection}, {});
    QStringList ends;
    connect(&watched, &WatchedBus::ended, this, [&ends](const QString &why) { ends << why; });
    watched.start();
    QCOMPARE(ends.size(), 1);
    QVERIFY2(ends.constFirst().startsWith(u"The journal goes on without the system bus: "_s),
             qUtf8Printable(ends.constFirst()));
    QVERIFY(!watched.isWatched());
}

QTEST_GUILESS_MAIN(TestBusMonitor)

#include "tst_busmonitor.moc"
