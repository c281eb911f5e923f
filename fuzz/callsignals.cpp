// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// Sends the calls module signals of oFono with anything that D-Bus allows in them, over a real
// connection. Afterwards every role of every call has its type, and texts that may be shown.
//
// The signals are made from the bytes of the input.

#include "calls.h"
#include "fakebus.h"
#include "randomvalues.h"

#include <QCoreApplication>
#include <QTimer>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

struct Signal
{
    const char *interface;
    const char *member;
    const char *signature;
};

const Signal allSignals[] = {
    {"org.ofono.Manager", "ModemAdded", "oa{sv}"},
    {"org.ofono.Manager", "ModemRemoved", "o"},
    {"org.ofono.Modem", "PropertyChanged", "sv"},
    {"org.ofono.VoiceCallManager", "CallAdded", "oa{sv}"},
    {"org.ofono.VoiceCallManager", "CallRemoved", "o"},
    {"org.ofono.VoiceCallManager", "PropertyChanged", "sv"},
    {"org.ofono.VoiceCall", "PropertyChanged", "sv"},
    {"org.ofono.VoiceCall", "DisconnectReason", "s"},
    {"org.ofono.SupplementaryServices", "PropertyChanged", "sv"},
    {"org.ofono.SupplementaryServices", "NotificationReceived", "s"},
    {"org.ofono.SupplementaryServices", "RequestReceived", "s"},
};

const QByteArray paths[] = {"/", "/ril_0", "/ril_0/voicecall01", "/ril_0/voicecall02"};
const QByteArray modemProperties[] = {"Online", "Interfaces"};
const QByteArray callProperties[] = {"State",     "LineIdentification", "Name",
                                     "StartTime", "Multiparty",         "RemoteHeld",
                                     "Emergency", "EmergencyNumbers"};
const QByteArray words[] = {"active",        "held",
                            "dialing",       "alerting",
                            "incoming",      "waiting",
                            "withheld",      "idle",
                            "user-response", "disconnected",
                            "local",         "remote",
                            "112",           "2026-03-29T01:30:00+0100"};

constexpr auto markerModem = "/ril_9";
constexpr auto markerCall = "/ril_9/voicecall01";

template <typename Item, std::size_t size>
const Item &choose(RandomValues &values, const Item (&items)[size])
{
    return items[values.next() % size];
}

/// The input, whose texts often are words that oFono uses.
class Input final : public RandomValues
{
public:
    using RandomValues::RandomValues;

    QByteArray nextText() override
    {
        const std::uint8_t choice = next();
        return choice < 128 ? words[choice % std::size(words)] : RandomValues::nextText(choice / 4);
    }
};

FakeBus &bus()
{
    static FakeBus &one = *new FakeBus;
    return one;
}

Calls &calls()
{
    static Calls &one = *new Calls;
    return one;
}

/// Adds a variant, often with the interfaces of a modem or with a type that oFono uses.
void addValue(RandomValues &values, bool ofModem)
{
    const int choice = values.next();
    if (ofModem && choice < 160) {
        values.body().addSignature("as");
        values.body().addArray(4, [&] {
            if (choice % 4 != 0)
                values.body().addString("org.ofono.VoiceCallManager");
            if (choice % 3 != 0)
                values.body().addString("org.ofono.SupplementaryServices");
        });
    } else if (choice < 192) {
        values.addVariant(choice % 3 == 0 ? "b" : "s");
    } else {
        values.addVariant();
    }
}

void addProperty(RandomValues &values, bool ofModem)
{
    values.body().addString(ofModem ? choose(values, modemProperties)
                                    : choose(values, callProperties));
    addValue(values, ofModem);
}

void sendSignal(RandomValues &values)
{
    const Signal &signal = choose(values, allSignals);
    const QByteArray &path = choose(values, paths);
    QByteArray signature = signal.signature;
    const bool ofModem = QByteArray(signal.interface) == "org.ofono.Modem"
        || QByteArray(signal.interface) == "org.ofono.Manager";
    if (values.next() >= 224) {
        signature = values.makeType();
        values.addValues(signature);
    } else if (signature == "sv") {
        addProperty(values, ofModem);
    } else if (signature == "s") {
        values.body().addString(values.nextText());
    } else {
        values.body().addString(choose(values, paths));
        if (signature == "oa{sv}") {
            values.body().addArray(8, [&] {
                for (int left = values.next() % 8; left > 0; --left) {
                    values.body().align(8);
                    addProperty(values, ofModem);
                }
            });
        }
    }
    bus().emitSignal(path, signal.interface, signal.member, signature, values.takeBody().bytes());
}

template <typename Condition>
void waitUntil(const Condition &condition)
{
    QTimer patience;
    QObject::connect(&patience, &QTimer::timeout, [] { qFatal("The signals do not arrive."); });
    patience.start(10000);
    while (!condition())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

QVariant roleOf(int row, int role)
{
    return calls().data(calls().index(row), role);
}

/// Waits until all signals that were sent have arrived.
void settle()
{
    static int count = 0;
    const QByteArray name = QByteArray::number(++count);
    WireFormat body;
    body.addString("Name");
    body.addSignature("s");
    body.addString(name);
    bus().emitSignal(markerCall, "org.ofono.VoiceCall", "PropertyChanged", "sv", body.bytes());
    waitUntil([&name] { return roleOf(0, Call::Name).toString() == QString::fromLatin1(name); });
}

bool isSafe(const QString &text, int limit)
{
    return text.size() <= limit && safeLines(text) == text;
}

bool isSound(int row)
{
    static const QStringList states{{},
                                    QStringLiteral("active"),
                                    QStringLiteral("held"),
                                    QStringLiteral("dialing"),
                                    QStringLiteral("alerting"),
                                    QStringLiteral("incoming"),
                                    QStringLiteral("waiting"),
                                    QStringLiteral("disconnected")};
    for (const int role : {Call::Number, Call::Name, Call::Direction, Call::State, Call::Modem}) {
        if (roleOf(row, role).userType() != QMetaType::QString
            || !isSafe(roleOf(row, role).toString(), 200))
            return false;
    }
    for (const int role : {Call::Withheld, Call::RemoteHeld, Call::Conference, Call::Emergency}) {
        if (roleOf(row, role).userType() != QMetaType::Bool)
            return false;
    }
    return states.contains(roleOf(row, Call::State).toString());
}

} // namespace

// NOLINTNEXTLINE(readability-non-const-parameter): libFuzzer prescribes this type
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    new QCoreApplication(*argc, *argv);
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &) {
        if (type == QtFatalMsg)
            std::abort();
    });
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", bus().address());
    WireFormat modems;
    modems.addArray(8, [&modems] {
        modems.align(8);
        modems.addString(markerModem);
        modems.addArray(8, [&modems] {
            modems.align(8);
            modems.addString("Interfaces");
            modems.addSignature("as");
            modems.addArray(4, [&modems] { modems.addString("org.ofono.VoiceCallManager"); });
        });
    });
    WireFormat none;
    none.addArray(8, [] {});
    bus().setAnswer("a(oa{sv})", modems.bytes(), "GetModems");
    bus().setAnswer("a(oa{sv})", none.bytes(), "GetCalls");
    bus().setAnswer("a{sv}", none.bytes(), "GetProperties");
    calls().componentComplete();
    waitUntil([] { return calls().status() == Telephony::Ready; });

    WireFormat call;
    call.addString(markerCall);
    call.addArray(8, [] {});
    bus().emitSignal(markerModem, "org.ofono.VoiceCallManager", "CallAdded", "oa{sv}",
                     call.bytes());
    settle();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Input input(data, size);
    for (int left = 32; left > 0 && !input.atEnd(); --left)
        sendSignal(input);
    settle();
    for (int row = 0; row < calls().count(); ++row) {
        if (!isSound(row))
            std::abort();
    }
    if (!isSafe(calls().dialogue()->text(), 2000) || !isSafe(calls().dialogue()->state(), 20))
        std::abort();
    return 0;
}
