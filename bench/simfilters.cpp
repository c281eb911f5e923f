// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// Measures what one answer of a call filter with 10 to 100,000 rules costs the UI thread with 1 to
// 8 SIMs. This is the worst case: no SIM has a rule, and none is allowed by default. Prints the CPU
// time of that thread, from the signal that the rules have changed to the change of the permission,
// and the ratio of each figure to the one for a tenth of the rules.
//
// Each figure comes from processes of its own, on a private bus. The telephony stack runs in a
// thread.

#include "growth.h"
#include "privatebus.h"
#include "simfiltershelper.h"
#include "telephonystack.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVirtualObject>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QThread>
#include <QVariantMap>

#include <atomic>
#include <cstdio>
#include <vector>

namespace {

constexpr int answers = 9;

const QString filterInterface = QStringLiteral("org.cobalt.ofono.mdm.ParleyFilter");
const QString dialPath = QStringLiteral("/mdm/parleyfilter/dial");

QString imsiOf(int i)
{
    return QStringLiteral("26201%1").arg(i, 10, 10, QLatin1Char('0'));
}

/// A number of SIMs, each in a modem, and a number of rules for other SIMs.
class Stack : public QDBusVirtualObject
{
public:
    Stack(int ruleCount, int simCount)
    {
        for (int i = 0; i < ruleCount; ++i)
            m_rules.append({imsiOf(i), SimFiltersHelper::Allow});
        const QStringList interfaces{QStringLiteral("org.ofono.SimManager")};
        for (int i = 0; i < simCount; ++i)
            m_modems.append({QDBusObjectPath(QLatin1Char('/') + imsiOf(ruleCount + i)),
                             {{QStringLiteral("Interfaces"), interfaces}}});
    }

    /// Whether the next answer is the one to measure. Otherwise it allows everything.
    void setBlocking(bool blocking) { m_blocking = blocking; }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        QVariantList values;
        if (message.member() == QLatin1String("GetModems"))
            values.append(QVariant::fromValue(m_modems));
        else if (message.member() == QLatin1String("GetProperties"))
            values.append(
                QVariantMap{{QStringLiteral("Present"), true},
                            {QStringLiteral("SubscriberIdentity"), message.path().mid(1)}});
        else if (message.member() != QLatin1String("GetAll"))
            return false;
        else if (m_blocking && message.path() == dialPath)
            values = {1U, uint(SimFiltersHelper::Block), QVariant::fromValue(m_rules)};
        else
            values = {1U, uint(SimFiltersHelper::Allow),
                      QVariant::fromValue(SimFiltersHelper::RuleList())};
        return connection.send(message.createReply(values));
    }

    QString introspect(const QString &) const override { return {}; }

private:
    SimFiltersHelper::RuleList m_rules;
    OfonoObjects m_modems;
    std::atomic<bool> m_blocking = false;
};

int measure(int ruleCount, int simCount)
{
    QTemporaryDir folder;
    PrivateBus bus;
    if (!bus.start(folder.path(), QStringLiteral("bus")))
        return EXIT_FAILURE;
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", bus.address().toUtf8());
    qDBusRegisterMetaType<OfonoObject>();
    qDBusRegisterMetaType<OfonoObjects>();
    qDBusRegisterMetaType<SimFiltersHelper::Rule>();
    qDBusRegisterMetaType<SimFiltersHelper::RuleList>();

    Stack stack(ruleCount, simCount);
    QDBusConnection connection =
        QDBusConnection::connectToBus(bus.address(), QStringLiteral("stack"));
    if (!connection.registerVirtualObject(QStringLiteral("/"), &stack, QDBusConnection::SubPath)
        || !connection.registerService(QStringLiteral("org.ofono")))
        return EXIT_FAILURE;
    QThread thread;
    stack.moveToThread(&thread);
    thread.start();

    SimFiltersHelper helper(nullptr);
    QEventLoop loop;
    QObject::connect(&helper, &SimFiltersHelper::readyChanged, &loop, &QEventLoop::quit);
    loop.exec();
    QObject::connect(&helper, &SimFiltersHelper::anyActiveSimCanDialChanged, &loop,
                     &QEventLoop::quit);
    const QDBusMessage signal =
        QDBusMessage::createSignal(dialPath, filterInterface, QStringLiteral("RulesChanged"));
    bool complete = helper.activeSimCount() == simCount;
    std::vector<double> times;
    for (int i = 0; i < answers; ++i) {
        for (const bool blocking : {true, false}) {
            stack.setBlocking(blocking);
            connection.send(signal);
            const double start = threadTime();
            loop.exec();
            if (blocking)
                times.push_back(threadTime() - start);
            complete = complete && helper.anyActiveSimCanDial() != blocking;
        }
    }
    std::printf("%f\n", median(times));

    thread.quit();
    thread.wait();
    QDBusConnection::disconnectFromBus(QStringLiteral("stack"));
    return complete ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() > 2)
        return measure(arguments.at(1).toInt(), arguments.at(2).toInt());
    Growth growth{"rules", {10, 100, 1000, 10000, 100000}, {}};
    for (const int simCount : {1, 2, 4, 8})
        growth.processes.push_back({{QString::number(simCount)},
                                    {QStringLiteral("%1 SIM%2, ms")
                                         .arg(QString::number(simCount),
                                              simCount == 1 ? QString() : QStringLiteral("s"))}});
    return printGrowth(growth);
}
