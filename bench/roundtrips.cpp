// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// roundtrips [OPTION ...] ROUNDS CALLS METHOD ...
//
// Measures how long the call UI takes to answer another process on the session bus. In each round
// it makes a number of blocking calls of each method in turn, and prints a line with the medians,
// in microseconds. "Ping" is the method of org.freedesktop.DBus.Peer, which is answered without any
// code of the call UI. The other methods are those of com.nimbo.parley.ui.
//
// --longest    call each method for CALLS milliseconds, and print the longest time instead
// --own NAME   own that bus name
// --refused    expect that toggleCall is refused
// --self       serve the calls as well, to measure the calls of a process to itself

#include "parleyuiadaptor.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>
#include <vector>

namespace {

constexpr int patience = 120'000; ///< In milliseconds. A call UI may hang for a while.

struct Task
{
    QString ownName;
    bool refused = false;
    bool longest = false;
    int rounds = 0;
    int calls = 0; ///< Milliseconds if the longest time is measured.
    QStringList methods;
};

QDBusMessage callOf(const QString &method)
{
    const QString service = QStringLiteral("com.nimbo.parley.ui");
    const QString interface =
        method == QLatin1String("Ping") ? QStringLiteral("org.freedesktop.DBus.Peer") : service;
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, QStringLiteral("/"), interface, method);
    if (method == QLatin1String("dial"))
        call.setArguments({QStringLiteral("+49305551234")});
    else if (method == QLatin1String("show"))
        call.setArguments({QStringList()});
    return call;
}

bool isExpected(const Task &task, const QString &method, const QDBusMessage &answer)
{
    if (task.refused && method == QLatin1String("toggleCall"))
        return answer.errorName() == QLatin1String("org.freedesktop.DBus.Error.AccessDenied");
    if (method == QLatin1String("dial"))
        return answer.arguments() == QVariantList{true};
    return answer.type() == QDBusMessage::ReplyMessage;
}

/// Returns how long the answer takes, in microseconds; nothing if it is not the expected one.
std::optional<double> measureCall(const QDBusConnection &bus, const Task &task,
                                  const QString &method)
{
    const QDBusMessage call = callOf(method);
    QElapsedTimer timer;
    timer.start();
    const QDBusMessage answer = bus.call(call, QDBus::Block, patience);
    const auto time = static_cast<double>(timer.nsecsElapsed()) / 1e3;
    if (isExpected(task, method, answer))
        return time;
    std::fprintf(stderr, "%s was answered with %s %s\n", qUtf8Printable(method),
                 qUtf8Printable(answer.errorName()), qUtf8Printable(answer.errorMessage()));
    return {};
}

std::optional<double> measureMedian(const QDBusConnection &bus, const Task &task,
                                    const QString &method)
{
    std::vector<double> times;
    for (int i = 0; i < task.calls; ++i) {
        const auto time = measureCall(bus, task, method);
        if (!time)
            return {};
        times.push_back(*time);
    }
    std::sort(times.begin(), times.end());
    return times.at(times.size() / 2);
}

/// Makes each call as soon as the one before is answered, so that no wait is missed.
std::optional<double> measureLongest(const QDBusConnection &bus, const Task &task,
                                     const QString &method)
{
    double most = 0;
    const QDeadlineTimer end(task.calls);
    do {
        const auto time = measureCall(bus, task, method);
        if (!time)
            return {};
        most = std::max(most, *time);
    } while (!end.hasExpired());
    return most;
}

int run(const Task &task)
{
    QDBusConnection bus =
        QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("caller"));
    if (!task.ownName.isEmpty() && !bus.registerService(task.ownName))
        return EXIT_FAILURE;
    for (int round = 0; round < task.rounds; ++round) {
        for (const QString &method : task.methods) {
            const auto time =
                task.longest ? measureLongest(bus, task, method) : measureMedian(bus, task, method);
            if (!time)
                return EXIT_FAILURE;
            std::printf("%.1f ", *time);
        }
        std::printf("\n");
    }
    return EXIT_SUCCESS;
}

int runWithin(QCoreApplication &application, const Task &task)
{
    const ParleyUiAdaptor ui;
    int status = EXIT_FAILURE;
    const std::unique_ptr<QThread> caller(QThread::create([&] { status = run(task); }));
    QObject::connect(caller.get(), &QThread::finished, &application, &QCoreApplication::quit);
    caller->start();
    QCoreApplication::exec();
    caller->wait();
    return status;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QCommandLineOption own(QStringLiteral("own"), QString(), QStringLiteral("name"));
    const QCommandLineOption refused(QStringLiteral("refused"));
    const QCommandLineOption longest(QStringLiteral("longest"));
    const QCommandLineOption self(QStringLiteral("self"));
    QCommandLineParser parser;
    parser.addOptions({own, refused, longest, self});
    parser.process(application);
    const QStringList arguments = parser.positionalArguments();
    if (arguments.size() < 3) {
        std::fputs("roundtrips [--own NAME] [--refused] [--longest] [--self] ROUNDS CALLS METHOD "
                   "...\n",
                   stderr);
        return EXIT_FAILURE;
    }
    const Task task{parser.value(own),
                    parser.isSet(refused),
                    parser.isSet(longest),
                    arguments.at(0).toInt(),
                    std::max(1, arguments.at(1).toInt()),
                    arguments.mid(2)};
    return parser.isSet(self) ? runWithin(application, task) : run(task);
}
