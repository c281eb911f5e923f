// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "literals.h"
#include "pacedsignals.h"
#include "privatebus.h"
#include "rawconnection.h"

#include <QTemporaryDir>
#include <QTest>

#include <memory>

/// Signals to a connection that reads when the test says so.
class TestPacedSignals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void sendsEachToWhoeverReads();
    void sendsTheLastToWhoeverWasBehind();
    void keepsMembersApart();
    void goesOnForOthers();
    void forgetsWhoeverEnds();

private:
    /// A connection, and the numbers that it has received, after the signal's name.
    struct Receiver
    {
        explicit Receiver(const QString &address);
        QString name() const { return QString::fromLatin1(connection.uniqueName()); }

        RawConnection connection;
        QStringList received;
    };

    /// Sends a signal of that size whose argument is the number at the time when it is sent.
    void send(const Receiver &receiver, const QString &member, int size)
    {
        m_signals->send(receiver.name(), {u"com.example.Test"_s, member, size, [this] {
                                              return QVariantList{m_number};
                                          }});
    }

    QTemporaryDir m_folder;
    PrivateBus m_bus;
    std::unique_ptr<PacedSignals> m_signals;
    int m_number = 0;
};

TestPacedSignals::Receiver::Receiver(const QString &address)
    : connection(address)
{
    connection.setHandler([this](DBusMessage *message) {
        dbus_int32_t number = -1;
        if (dbus_message_get_args(message, nullptr, DBUS_TYPE_INT32, &number, DBUS_TYPE_INVALID)) {
            received.append(QString::fromLatin1(dbus_message_get_member(message)) + u' '
                            + QString::number(number));
        } else if (dbus_message_has_member(message, "Ping")) {
            // A connection of its own has nobody who answers this.
            const RawMessage reply(dbus_message_new_method_return(message));
            connection.send(reply.get());
        }
    });
}

void TestPacedSignals::initTestCase()
{
    QVERIFY(m_bus.start(m_folder.path(), u"bus"_s));
}

void TestPacedSignals::init()
{
    m_signals = std::make_unique<PacedSignals>(
        QDBusConnection::connectToBus(m_bus.address(), u"sender"_s), u"/test"_s);
    m_number = 0;
}

void TestPacedSignals::sendsEachToWhoeverReads()
{
    Receiver reader(m_bus.address());
    for (m_number = 1; m_number <= 50; ++m_number) {
        send(reader, u"Changed"_s, 50'000);
        const QString last = u"Changed %1"_s.arg(m_number);
        QTRY_VERIFY((reader.connection.pump(), reader.received.contains(last)));
    }
    QCOMPARE(reader.received.size(), 50);
}

void TestPacedSignals::sendsTheLastToWhoeverWasBehind()
{
    Receiver reader(m_bus.address());
    for (m_number = 1; m_number <= 1000; ++m_number)
        send(reader, u"Changed"_s, 40'000);
    --m_number;
    QTRY_VERIFY((reader.connection.pump(), reader.received.contains(u"Changed 1000"_s)));
    QCOMPARE(reader.received, QStringList({u"Changed 1"_s, u"Changed 2"_s, u"Changed 1000"_s}));
    ++m_number;
    send(reader, u"Changed"_s, 40'000);
    QTRY_VERIFY((reader.connection.pump(), reader.received.contains(u"Changed 1001"_s)));
}

void TestPacedSignals::keepsMembersApart()
{
    Receiver reader(m_bus.address());
    send(reader, u"Changed"_s, 100'000);
    m_number = 1;
    for (int i = 0; i < 10; ++i) {
        send(reader, u"Changed"_s, 10);
        send(reader, u"Other"_s, 10);
    }
    QTRY_VERIFY((reader.connection.pump(), reader.received.size() == 3));
    QCOMPARE(reader.received, QStringList({u"Changed 0"_s, u"Changed 1"_s, u"Other 1"_s}));
}

void TestPacedSignals::goesOnForOthers()
{
    const Receiver sleeper(m_bus.address());
    Receiver reader(m_bus.address());
    for (m_number = 1; m_number <= 100; ++m_number)
        send(sleeper, u"Changed"_s, 100'000);
    send(reader, u"Changed"_s, 10);
    QTRY_VERIFY((reader.connection.pump(), !reader.received.isEmpty()));
}

void TestPacedSignals::forgetsWhoeverEnds()
{
    auto ending = std::make_unique<Receiver>(m_bus.address());
    for (int i = 0; i < 10; ++i)
        send(*ending, u"Changed"_s, 100'000);
    ending.reset();
    Receiver reader(m_bus.address());
    send(reader, u"Changed"_s, 10);
    QTRY_VERIFY((reader.connection.pump(), !reader.received.isEmpty()));
}

QTEST_GUILESS_MAIN(TestPacedSignals)

#include "tst_pacedsignals.moc"
