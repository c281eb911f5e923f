// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// Answers the question for the rules of a call filter with anything that D-Bus allows, of any
// signature. The real SimFiltersHelper asks over a real connection, and has to decide as the rules
// say. Invalid messages are left out, because libdbus closes a connection that sends one.
//
// The answer is made from the bytes of the input, followed by zeros.

#include "fakebus.h"
#include "fakeplatform.h"
#include "randomvalues.h"
#include "simfiltershelper.h"

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

class Answer final : private RandomValues
{
public:
    Answer(const std::uint8_t *data, std::size_t size)
        : RandomValues(data, size)
    {
        const int kind = next() % 4;
        if (kind < 3)
            addRules();
        const int others = kind == 0 ? 0 : next() % 4;
        for (int i = 0; i < others; ++i) {
            const QByteArray type = makeType();
            if (m_signature.size() + type.size() > 200)
                break;
            m_signature += type;
            addValues(type);
        }
    }

    QByteArray signature() const { return m_signature; }
    QByteArray bytes() { return body().bytes(); }
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
    /// Returns a number that often is a known action.
    quint32 nextAction()
    {
        const std::uint8_t byte = next();
        return byte < 8 ? byte : static_cast<quint32>(nextNumber(4));
    }

    /// Often returns the identity of the SIM.
    QByteArray nextText() override
    {
        const std::uint8_t size = next();
        return size % 4 == 1 ? sim : RandomValues::nextText(size / 4);
    }

    void addRules()
    {
        m_hasRules = true;
        m_signature = ruleSignature;
        body().add(static_cast<quint32>(nextNumber(1)));
        m_action = nextAction();
        body().add(m_action);
        bool found = false;
        body().addArray(8, [this, &found] {
            for (int left = next(); left > 0; --left) {
                const QByteArray identity = nextText();
                const quint32 action = nextAction();
                body().align(8);
                body().addString(identity);
                body().add(action);
                if (identity == sim && !found) {
                    found = true;
                    m_action = action;
                }
            }
        });
    }

    QByteArray m_signature;
    bool m_hasRules = false;
    quint32 m_action = 0;
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
    Answer blocked(nullptr, 0);
    world().bus.setAnswer(blocked.signature(), blocked.bytes());
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
    Answer answer(data, size);
    world().bus.setAnswer(answer.signature(), answer.bytes());
    if (!QMetaObject::invokeMethod(world().filters, "requestDialRules"))
        std::abort();
    settle(*world().filters);
    if (answer.allowed() && *answer.allowed() != world().filters->anyActiveSimCanDial())
        std::abort();
    return 0;
}
