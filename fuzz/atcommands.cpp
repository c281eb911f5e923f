// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// Sends any bytes to a simulated modem, in pieces, while the network and the other sides of its
// calls do something as well. The calls have to be possible ones all the time, only numbers are
// dialled, and in the end the modem has to answer.
//
// A byte from 0xf0 on ends a piece and says what the network does.

#include "atsession.h"
#include "phoneline.h"

#include <QCoreApplication>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

void check(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

void checkNumber(const QString &number)
{
    check(PhoneLine::isNumber(number));
}

void checkCalls(const NetworkCalls &calls)
{
    int beingSetUp = 0;
    for (const auto &[id, call] : calls.all()) {
        check(id >= 1 && id <= NetworkCalls::MostCalls && call.id == id);
        if (call.state != NetworkCall::State::Active && call.state != NetworkCall::State::Held)
            ++beingSetUp;
    }
    check(beingSetUp <= 1);
}

void actAsNetwork(PhoneLine &line, int what)
{
    NetworkCalls &calls = line.calls();
    const int id = calls.all().empty() ? 1 : calls.all().crbegin()->first;
    switch (what) {
    case 0:
        line.ring(QStringLiteral("5550100"));
        break;
    case 1:
        line.ring({});
        break;
    case 2:
        calls.alertRemote(id);
        break;
    case 3:
        calls.answerRemote(id);
        break;
    case 4:
        calls.endRemote(id);
        break;
    case 5:
        calls.holdRemote(id, true);
        break;
    case 6:
        line.setSim({});
        break;
    case 7:
        line.setSim({QStringLiteral("262011111111111"), false});
        break;
    case 8:
        line.setSim({QStringLiteral("262011111111111"), true});
        break;
    case 9:
        line.setCondition(PhoneLine::Condition::Lost);
        break;
    case 10:
        line.setCondition(PhoneLine::Condition::Refuse);
        break;
    default:
        line.setCondition(PhoneLine::Condition::Back);
        break;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static int count = 1;
    static char name[] = "fuzz_atcommands";
    static char *arguments[] = {name, nullptr};
    static const QCoreApplication application(count, arguments);

    PhoneLine line({QStringLiteral("262011111111111"), false});
    AtSession session(line);
    QByteArray said;
    QObject::connect(&session, &AtSession::sent, &session,
                     [&said](const QByteArray &bytes) { said += bytes; });
    QObject::connect(&line, &PhoneLine::dialled, &session, &checkNumber);
    QObject::connect(&line, &PhoneLine::messageSent, &session,
                     [](const QString &number) { check(number.size() < 300); });

    QByteArray piece;
    for (std::size_t i = 0; i < size; ++i) {
        if (data[i] < 0xf0) {
            piece.append(static_cast<char>(data[i]));
            continue;
        }
        session.receive(piece);
        piece.clear();
        actAsNetwork(line, data[i] - 0xf0);
        checkCalls(line.calls());
    }
    session.receive(piece);
    checkCalls(line.calls());

    // The end of a line may still be expected, and then a message.
    session.receive(QByteArrayLiteral("\x1b\r"));
    session.receive(QByteArrayLiteral("\x1b\r"));
    said.clear();
    session.receive(QByteArrayLiteral("AT\r"));
    check(said == "\r\nOK\r\n");
    return 0;
}
