// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// Answers the question for the rules of a call filter with anything that D-Bus allows, of any
// signature. The real SimFiltersHelper asks over a real connection, and has to decide as the rules
// say. Invalid messages are left out, because libdbus closes a connection that sends one.
//
// The answer is made from the bytes of the input, followed by zeros.

#include "fakebus.h"
#include "fakeplatform.h"
#include "simfiltershelper.h"
#include "wireformat.h"

#include <qofonosimwatcher.h>

#include <QCoreApplication>
#include <QDBusPendingCallWatcher>
#include <QEventLoop>
#include <QTimer>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>

namespace {

const QByteArray ruleSignature = QByteArrayLiteral("uua(su)");
const QByteArray sim = QByteArrayLiteral("262011111111111");

class Answer
{
public:
    Answer(const std::uint8_t *data, std::size_t size)
        : m_next(data)
        , m_end(data + size)
    {
        const int kind = next() % 4;
        if (kind < 3)
            addRules();
        const int others = kind == 0 ? 0 : next() % 4;
        for (int i = 0; i < others; ++i) {
            const QByteArray type = makeType(0);
            if (m_signature.size() + type.size() > 200)
                break;
            m_signature += type;
            addValue(type);
        }
    }

    QByteArray signature() const { return m_signature; }
    QByteArray body() const { return m_body.bytes(); }
    /// Whether the filter lets the SIM through. Unknown if a random answer has the form of rules.
    std::optional<bool> allowed() const
    {
        if (m_hasRules)
            return m_action == SimFiltersHelper::Allow;
        if (m_signature.startsWith(ruleSignature))
            return std::nullopt;
        return true; // Rules that cannot be read stop no call.
    }

private:
    std::uint8_t next() { return m_next == m_end ? std::uint8_t(0) : *m_next++; }

    quint64 nextNumber(int size)
    {
        quint64 number = 0;
        for (int i = 0; i < size; ++i)
            number = number << 8U | next();
        return number;
    }

    /// Returns a number that often is a known action.
    quint32 nextAction()
    {
        const std::uint8_t byte = next();
        return byte < 8 ? byte : static_cast<quint32>(nextNumber(4));
    }

    /// Returns UTF-8 text without NULs, often the identity of the SIM.
    QByteArray nextText()
    {
        const std::uint8_t size = next();
        if (size % 4 == 1)
            return sim;
        QByteArray bytes;
        for (int i = 0; i < size / 4; ++i)
            bytes.append(static_cast<char>(next()));
        return QString::fromUtf8(bytes).remove(QChar(0)).toUtf8();
    }

    void addRules()
    {
        m_hasRules = true;
        m_signature = ruleSignature;
        m_body.add(static_cast<quint32>(nextNumber(1)));
        m_action = nextAction();
        m_body.add(m_action);
        bool found = false;
        m_body.addArray(8, [this, &found] {
            for (int left = next(); left > 0; --left) {
                const QByteArray identity = nextText();
                const quint32 action = nextAction();
                m_body.align(8);
                m_body.addString(identity);
                m_body.add(action);
                if (identity == sim && !found) {
                    found = true;
                    m_action = action;
                }
            }
        });
    }

    /// Returns one complete type.
    QByteArray makeType(int depth)
    {
        static const QByteArray basic = QByteArrayLiteral("ybnqiuxtdsogv");
        const int choice = next();
        if (choice < 128 || depth == 6)
            return basic.mid(choice % basic.size(), 1);
        if (choice < 192)
            return 'a' + makeType(depth + 1);
        if (choice < 208)
            return "a{" + basic.mid(choice % (basic.size() - 1), 1) + makeType(depth + 1) + '}';
        QByteArray members;
        for (int left = choice % 3; left >= 0; --left)
            members += makeType(depth + 1);
        return '(' + members + ')';
    }

    /// Returns the first complete type of \a signature.
    static QByteArray firstType(const QByteArray &signature)
    {
        if (signature.startsWith('a'))
            return 'a' + firstType(signature.mid(1));
        int open = 0;
        int size = 0;
        do {
            const char type = signature.at(size++);
            if (type == '(' || type == '{')
                ++open;
            else if (type == ')' || type == '}')
                --open;
        } while (open > 0);
        return signature.left(size);
    }

    static int alignmentOf(char type)
    {
        switch (type) {
        case 'y':
        case 'g':
        case 'v':
            return 1;
        case 'n':
        case 'q':
            return 2;
        case 'x':
        case 't':
        case 'd':
        case '(':
        case '{':
            return 8;
        default:
            return 4;
        }
    }

    void addValue(const QByteArray &type)
    {
        switch (type.front()) {
        case 'y':
            m_body.addByte(static_cast<char>(next()));
            break;
        case 'b':
            m_body.add(quint32(next() % 2));
            break;
        case 'n':
        case 'q':
            m_body.add(static_cast<quint16>(nextNumber(2)));
            break;
        case 'i':
        case 'u':
            m_body.add(static_cast<quint32>(nextNumber(4)));
            break;
        case 'x':
        case 't':
        case 'd':
            m_body.add(nextNumber(8));
            break;
        case 's':
            m_body.addString(nextText());
            break;
        case 'o':
            m_body.addString("/path");
            break;
        case 'g':
            m_body.addSignature("a(su)");
            break;
        case 'v':
            addVariant();
            break;
        case 'a':
            m_body.addArray(alignmentOf(type.at(1)), [this, &type] {
                for (int left = next() % 4; left > 0; --left)
                    addValue(type.mid(1));
            });
            break;
        default:
            addMembers(type);
        }
    }

    void addVariant()
    {
        const QByteArray type = ++m_variants < 8 ? makeType(4) : QByteArray("y");
        m_body.addSignature(type);
        addValue(type);
    }

    void addMembers(const QByteArray &type)
    {
        m_body.align(8);
        QByteArray left = type.mid(1, type.size() - 2);
        while (!left.isEmpty()) {
            const QByteArray member = firstType(left);
            addValue(member);
            left.remove(0, member.size());
        }
    }

    const std::uint8_t *m_next;
    const std::uint8_t *m_end;
    QByteArray m_signature;
    WireFormat m_body;
    bool m_hasRules = false;
    quint32 m_action = 0;
    int m_variants = 0;
};

/// Waits until the filters have got their answers.
void settle(const SimFiltersHelper &filters)
{
    const auto *const call = filters.findChild<QDBusPendingCallWatcher *>();
    if (!call)
        return;
    QEventLoop loop;
    QObject::connect(call, &QObject::destroyed, &loop, &QEventLoop::quit);
    QTimer::singleShot(10000, &loop, [] { qFatal("The filters got no answer."); });
    loop.exec();
    settle(filters);
}

/// The objects of a process that runs until it is ended.
struct World
{
    FakePlatform platform;
    FakeBus bus;
    SimFiltersHelper *filters = nullptr;
};

World &world()
{
    static World &one = *new World;
    return one;
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
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", world().bus.address());
    const Answer blocked(nullptr, 0);
    world().bus.setAnswer(blocked.signature(), blocked.body());
    world().platform.simsValid = true;
    world().platform.sims = QStringList(QString::fromLatin1(sim));
    world().filters = new SimFiltersHelper(nullptr);
    Q_EMIT world().filters->findChild<QOfonoSimWatcher *>()->presentSimListChanged();
    settle(*world().filters);
    if (!world().filters->ready() || world().filters->anyActiveSimCanDial())
        std::abort();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const Answer answer(data, size);
    world().bus.setAnswer(answer.signature(), answer.body());
    if (!QMetaObject::invokeMethod(world().filters, "requestDialRules"))
        std::abort();
    settle(*world().filters);
    if (answer.allowed() && *answer.allowed() != world().filters->anyActiveSimCanDial())
        std::abort();
    return 0;
}
