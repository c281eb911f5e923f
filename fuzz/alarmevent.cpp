// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// Receives an event with anything that D-Bus allows in it, over a real connection, and adds it to a
// user's alarms. It is read as what was sent, and kept if it is within the bounds.
//
// The event is made from the bytes of the input, followed by zeros.

#include "alarm.h"
#include "fakebus.h"
#include "useralarms.h"
#include "wireformat.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

class Input
{
public:
    Input(const std::uint8_t *data, std::size_t size)
        : m_next(data)
        , m_end(data + size)
    {
    }

    int next() { return m_next == m_end ? 0 : *m_next++; }

    quint64 nextNumber(int size)
    {
        quint64 number = 0;
        for (int i = 0; i < size; ++i)
            number = number << 8U | static_cast<quint64>(next());
        return number;
    }

    /// Returns text without NULs, sometimes a long one.
    QString nextText()
    {
        const int size = next();
        if (size >= 250)
            return {(size - 249) * 12'000, QChar(0x430)};
        QByteArray bytes;
        for (int i = 0; i < size / 16; ++i)
            bytes.append(static_cast<char>(next()));
        return QString::fromUtf8(bytes).remove(QChar(0));
    }

private:
    const std::uint8_t *m_next;
    const std::uint8_t *m_end;
};

/// Makes an event and writes it to \a body. Keys may come twice: the last one counts.
Alarm makeEvent(Input input, WireFormat &body)
{
    Alarm alarm;
    alarm.flags = static_cast<uint>(input.nextNumber(4));
    alarm.ticker = static_cast<qlonglong>(input.nextNumber(8));
    body.align(8);
    body.add(alarm.flags);
    body.add(alarm.ticker);
    body.addArray(8, [&input, &alarm, &body] {
        for (int left = input.next() % 80; left > 0; --left) {
            // D-Bus carries UTF-8: a text that is none would come out as another one.
            const QByteArray key = input.nextText().toUtf8();
            const QByteArray value = input.nextText().toUtf8();
            body.align(8);
            body.addString(key);
            body.addString(value);
            alarm.attributes.insert(QString::fromUtf8(key), QString::fromUtf8(value));
        }
    });
    return alarm;
}

int bytesOf(const Alarm &alarm)
{
    int bytes = 0;
    for (auto it = alarm.attributes.cbegin(); it != alarm.attributes.cend(); ++it)
        bytes += it.key().toUtf8().size() + it.value().toUtf8().size();
    return bytes;
}

FakeBus &bus()
{
    static FakeBus &one = *new FakeBus;
    return one;
}

/// Returns what the bus sends.
QDBusMessage receive()
{
    static const QDBusConnection connection =
        QDBusConnection::connectToBus(QString::fromLatin1(bus().address()), QStringLiteral("fuzz"));
    return connection.call(QDBusMessage::createMethodCall(
        QStringLiteral("com.example.any"), QStringLiteral("/"), QStringLiteral("com.example.any"),
        QStringLiteral("GetAll")));
}

} // namespace

// NOLINTNEXTLINE(readability-non-const-parameter): libFuzzer prescribes this type
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    new QCoreApplication(*argc, *argv);
    registerAlarmTypes();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    WireFormat body;
    const Alarm sent = makeEvent(Input(data, size), body);
    bus().setAnswer("(uxa{ss})", body.bytes());
    const QDBusMessage message = receive();
    if (message.signature() != QLatin1String("(uxa{ss})"))
        std::abort();
    const auto alarm = qdbus_cast<Alarm>(message.arguments().constFirst());
    if (!(alarm == sent))
        std::abort();

    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("1000.json"));
    const bool added = std::holds_alternative<uint>(UserAlarms(path).add(alarm));
    const bool fits = alarm.attributes.size() <= UserAlarms::maxAttributes
        && bytesOf(alarm) <= UserAlarms::maxAlarmSize;
    if (added != fits)
        std::abort();
    if (added && UserAlarms(path).pending() != AlarmsByCookie{{1, alarm}})
        std::abort();
    return 0;
}
