// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// A process that calls the call UI as some user: caller ADDRESS UID GID STEP...
// Each step prints a line: "own NAME", "release NAME", "toggle", "toggle-elsewhere" (through
// another connection), "send" (a toggle whose answer is not waited for; prints the connection's
// name).

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>

#include <cstdio>

#include <grp.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace {

bool becomeUser(uid_t user, gid_t group)
{
    // Dumpable again, as every program is that was started by that user: /proc shows who it is.
    return setgroups(0, nullptr) == 0 && setresgid(group, group, group) == 0
        && setresuid(user, user, user) == 0 && prctl(PR_SET_DUMPABLE, 1) == 0;
}

QDBusMessage toggleCall()
{
    return QDBusMessage::createMethodCall(
        QStringLiteral("com.nimbo.parley.ui"), QStringLiteral("/"),
        QStringLiteral("com.nimbo.parley.ui"), QStringLiteral("toggleCall"));
}

QString toggle(const QDBusConnection &connection)
{
    const QDBusMessage reply = connection.call(toggleCall());
    if (reply.type() == QDBusMessage::ReplyMessage)
        return QStringLiteral("admitted");
    return reply.errorName() + QLatin1String(": ") + reply.errorMessage();
}

QString sendToggle(const QDBusConnection &connection)
{
    connection.send(toggleCall());
    connection.interface()->isServiceRegistered(QString()); // the bus has the call when it answers
    return connection.baseService();
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QStringList steps = QCoreApplication::arguments().mid(1);
    const QString address = steps.takeFirst();
    const uid_t user = steps.takeFirst().toUInt();
    const gid_t group = steps.takeFirst().toUInt();
    if (!becomeUser(user, group))
        return EXIT_FAILURE;

    QDBusConnection connection = QDBusConnection::connectToBus(address, QStringLiteral("first"));
    while (!steps.isEmpty()) {
        const QString step = steps.takeFirst();
        QString result = QStringLiteral("done");
        if (step == QLatin1String("own"))
            result =
                connection.registerService(steps.takeFirst()) ? result : QStringLiteral("taken");
        else if (step == QLatin1String("release"))
            connection.unregisterService(steps.takeFirst());
        else if (step == QLatin1String("toggle"))
            result = toggle(connection);
        else if (step == QLatin1String("toggle-elsewhere"))
            result = toggle(QDBusConnection::connectToBus(address, QStringLiteral("second")));
        else if (step == QLatin1String("send"))
            result = sendToggle(connection);
        std::puts(qUtf8Printable(result));
    }
    return EXIT_SUCCESS;
}
