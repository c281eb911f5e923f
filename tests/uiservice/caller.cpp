// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// caller ADDRESS UID GID STEP...: calls the call UI as a user, and prints a line for each step.
//
// The steps are "own NAME", "release NAME", "toggle", "toggle-elsewhere" (through another
// connection), "send" (a toggle without waiting for the answer; prints the name of the connection)
// and "forge" (a toggle together with forged answers of the bus daemon, which say that the caller
// is the call UI itself).

#include "rawconnection.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>

#include <cstdio>

#include <grp.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace {

constexpr int patience = 30000;

bool becomeUser(uid_t user, gid_t group)
{
    // Make the process dumpable again, as every program is that the user starts: /proc shows its
    // owner then.
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
    // The bus has the call when it answers this question.
    connection.interface()->isServiceRegistered(QString());
    return connection.baseService();
}

/// Returns the process of the call UI according to the bus.
quint32 processOfUi(RawConnection &connection)
{
    const RawMessage question =
        RawConnection::makeCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                "org.freedesktop.DBus", "GetConnectionUnixProcessID");
    const char *name = "com.nimbo.parley.ui";
    dbus_message_append_args(question.get(), DBUS_TYPE_STRING, &name, DBUS_TYPE_INVALID);
    const RawMessage answer = connection.call(question.get(), patience);
    quint32 process = 0;
    dbus_message_get_args(answer.get(), nullptr, DBUS_TYPE_UINT32, &process, DBUS_TYPE_INVALID);
    return process;
}

/// The last serial of the call UI, which every answer reveals, and its name on the bus.
RawMessage dial(RawConnection &connection)
{
    const RawMessage call =
        RawConnection::makeCall("com.nimbo.parley.ui", "/", "com.nimbo.parley.ui", "dial");
    const char *number = "1";
    dbus_message_append_args(call.get(), DBUS_TYPE_STRING, &number, DBUS_TYPE_INVALID);
    return connection.call(call.get(), patience);
}

QString forge(const QString &address)
{
    RawConnection connection(address);
    const quint32 process = processOfUi(connection);
    const RawMessage dialled = dial(connection);
    const quint32 serial = dbus_message_get_serial(dialled.get());
    // Send so many that some arrive before the daemon's answer.
    const auto sendForgeries = [&] {
        for (quint32 i = 0; i < 300; ++i) {
            const RawMessage reply = RawConnection::makeReply(
                dbus_message_get_sender(dialled.get()), serial + 1 + i % 3);
            dbus_message_append_args(reply.get(), DBUS_TYPE_UINT32, &process, DBUS_TYPE_INVALID);
            connection.send(reply.get());
        }
    };
    const RawMessage toggle =
        RawConnection::makeCall("com.nimbo.parley.ui", "/", "com.nimbo.parley.ui", "toggleCall");
    const RawMessage answer = connection.call(toggle.get(), patience, sendForgeries);
    const bool isRefused = dbus_message_get_type(answer.get()) == DBUS_MESSAGE_TYPE_ERROR;
    return isRefused ? QStringLiteral("refused") : QStringLiteral("admitted");
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
        else if (step == QLatin1String("forge"))
            result = forge(address);
        std::puts(qUtf8Printable(result));
    }
    return EXIT_SUCCESS;
}
