// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// Measures what a user's 10 to 10,000 alarms cost the time daemon: to add one after the other, to
// read them back, to load them at the start, and to fire all at once. Prints the CPU time of the
// daemon's thread, the time that passes for a client that adds them, the ratio of each figure to
// the one for a tenth of the alarms, and the peak memory of the process.
//
// Each figure comes from a process of its own, on a private bus. The client runs in a thread of it.

#include "timedaemon.h"

#include "growth.h"
#include "privatebus.h"
#include "wallclock.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusMessage>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QThread>

#include <cstdio>
#include <memory>

#include <unistd.h>

namespace {

constexpr qint64 due = 1893585600;

/// A clock that stands still until the alarms are due.
class StoppedClock : public WallClock
{
    Q_OBJECT

public:
    qint64 now() const override { return m_now; }
    void wakeAt(qint64) override { }
    void letSleep() override { }

    void passTo(qint64 seconds)
    {
        m_now = seconds;
        Q_EMIT woke();
    }

private:
    qint64 m_now = 0;
};

QDBusMessage callOf(const QString &method, const QVariantList &arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("com.nimbo.timed"),
                                                       QStringLiteral("/com/nimbo/timed"),
                                                       QStringLiteral("com.nimbo.timed"), method);
    call.setArguments(arguments);
    return call;
}

Alarm reminderFor(int i)
{
    return {3,
            due,
            {{QStringLiteral("APPLICATION"), QStringLiteral("nimbo_parley_ui")},
             {QStringLiteral("TITLE"), QStringLiteral("Somebody")},
             {QStringLiteral("phoneNumber"), QStringLiteral("+4930%1").arg(i)},
             {QStringLiteral("triggerTime"), QString::number(due)},
             {QStringLiteral("type"), QStringLiteral("reminder")}}};
}

/// Runs \a client in a thread of its own, and serves it meanwhile. Returns the CPU time of this
/// thread in milliseconds.
template <typename Client>
double serve(const Client &client)
{
    const double before = threadTime();
    const std::unique_ptr<QThread> thread(QThread::create(client));
    QEventLoop loop;
    QObject::connect(thread.get(), &QThread::finished, &loop, &QEventLoop::quit);
    thread->start();
    loop.exec();
    thread->wait();
    return threadTime() - before;
}

int measure(int size)
{
    QTemporaryDir folder;
    PrivateBus bus;
    if (!bus.start(folder.path(), QStringLiteral("bus")))
        return EXIT_FAILURE;
    constexpr int addedLater = 10;
    Alarms alarms;
    for (int i = 1; i <= size - addedLater; ++i)
        alarms.pending.insert(++alarms.lastCookie, reminderFor(i));
    const QString state = folder.filePath(QStringLiteral("alarms"));
    if (!AlarmFile(QStringLiteral("%1/%2.json").arg(state).arg(geteuid())).save(alarms).isEmpty())
        return EXIT_FAILURE;
    alarms = {};

    StoppedClock clock;
    const QDBusConnection client =
        QDBusConnection::connectToBus(bus.address(), QStringLiteral("client"));
    const double beforeLoad = threadTime();
    auto daemon = std::make_unique<TimeDaemon>(
        state, clock, QDBusConnection::connectToBus(bus.address(), QStringLiteral("daemon")));
    if (!daemon->start())
        return EXIT_FAILURE;
    const double loaded = threadTime() - beforeLoad;

    qint64 passed = 0;
    const double added = serve([&] {
        QElapsedTimer timer;
        timer.start();
        for (int i = 0; i < addedLater; ++i)
            client.call(callOf(QStringLiteral("add_event"), {QVariant::fromValue(reminderFor(i))}));
        passed = timer.nsecsElapsed();
    });
    qsizetype found = 0;
    const double listed = serve([&] {
        const QDBusMessage reply = client.call(callOf(QStringLiteral("query"), {QVariantMap()}));
        QList<uint> cookies;
        for (const QVariant &cookie : qdbus_cast<QVariantList>(reply.arguments().value(0)))
            cookies.append(cookie.toUInt());
        const QDBusMessage attributes = client.call(
            callOf(QStringLiteral("get_attributes_by_cookies"), {QVariant::fromValue(cookies)}));
        found = qdbus_cast<AttributesByCookie>(attributes.arguments().value(0)).size();
    });

    const double beforeFire = threadTime();
    int fired = 0;
    QObject::connect(daemon.get(), &TimeDaemon::fired, daemon.get(), [&fired] { ++fired; });
    clock.passTo(due);
    QCoreApplication::sendPostedEvents(); // The signals on the bus.
    const double allFired = threadTime() - beforeFire;
    std::printf("%f %f %f %f %f %f\n", loaded, added, static_cast<double>(passed) / 1e6, listed,
                allFired, peakMemory());

    daemon.reset();
    QDBusConnection::disconnectFromBus(QStringLiteral("daemon"));
    QDBusConnection::disconnectFromBus(QStringLiteral("client"));
    return found == size && fired == size ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() > 1)
        return measure(arguments.at(1).toInt());
    return printGrowth({"alarms",
                        {10, 100, 1000, 10000},
                        {{{},
                          {QStringLiteral("load, ms"), QStringLiteral("add 10, ms"),
                           QStringLiteral("client, ms"), QStringLiteral("list all, ms"),
                           QStringLiteral("fire all, ms"), QStringLiteral("peak, KiB")}}}});
}

#include "timedaemon.moc"
