// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

// Measures what call reminders for 10 to 10,000 numbers cost the UI thread: to read them back at
// the start, and to bind a Reminder to each. Prints the CPU time of that thread, the ratio of each
// figure to the one for a tenth of the numbers, and the peak memory of the process.
//
// Each figure comes from a process of its own, on a private bus. The services run in a thread of
// it.

#include "reminders.h"

#include "growth.h"
#include "privatebus.h"
#include "reminder.h"

#include <notification.h>

#include <QCoreApplication>
#include <QDBusMetaType>
#include <QDBusVirtualObject>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <vector>

using Attributes = QMap<QString, QString>;
using AttributesByCookie = QMap<uint, Attributes>;

Q_DECLARE_METATYPE(AttributesByCookie)
Q_DECLARE_METATYPE(QVector<NotificationData>)

namespace {

QString numberOf(int i)
{
    return QStringLiteral("+4930%1").arg(i, 7, 10, QLatin1Char('0'));
}

/// Both services, with an alarm and a notification for each number.
class Services : public QDBusVirtualObject
{
    Q_OBJECT

public:
    explicit Services(int size)
    {
        for (int i = 1; i <= size; ++i) {
            const auto cookie = static_cast<uint>(i);
            m_cookies.append(cookie);
            m_alarms.insert(cookie,
                            {{QStringLiteral("APPLICATION"), QStringLiteral("nimbo_parley_ui")},
                             {QStringLiteral("TITLE"), QStringLiteral("Somebody")},
                             {QStringLiteral("phoneNumber"), numberOf(i)},
                             {QStringLiteral("triggerTime"), QStringLiteral("1893585600")},
                             {QStringLiteral("type"), QStringLiteral("reminder")}});
            NotificationData notification;
            notification.id = cookie;
            notification.hints.insert(QStringLiteral("x-nimbo-alarm-cookie"), cookie);
            m_notifications.append(notification);
        }
    }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        QVariant answer;
        if (message.member() == QLatin1String("query"))
            answer = m_cookies;
        else if (message.member() == QLatin1String("get_attributes_by_cookies"))
            answer = QVariant::fromValue(m_alarms);
        else
            answer = QVariant::fromValue(m_notifications);
        connection.send(message.createReply(answer));
        if (message.member() == QLatin1String("GetNotificationsByCategory"))
            Q_EMIT askedForNotifications();
        return true;
    }

    QString introspect(const QString &) const override { return {}; }

Q_SIGNALS:
    void askedForNotifications();

private:
    QVariantList m_cookies;
    AttributesByCookie m_alarms;
    QVector<NotificationData> m_notifications;
};

int measure(int size)
{
    QTemporaryDir folder;
    PrivateBus bus;
    if (!bus.start(folder.path(), QStringLiteral("bus")))
        return EXIT_FAILURE;
    qputenv("DBUS_SESSION_BUS_ADDRESS", bus.address().toUtf8());
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", bus.address().toUtf8());
    qDBusRegisterMetaType<Attributes>();
    qDBusRegisterMetaType<AttributesByCookie>();
    qDBusRegisterMetaType<NotificationData>();
    qDBusRegisterMetaType<QVector<NotificationData>>();

    QThread thread;
    Services services(size);
    services.moveToThread(&thread);
    thread.start();
    QDBusConnection connection =
        QDBusConnection::connectToBus(bus.address(), QStringLiteral("services"));
    if (!connection.registerVirtualObject(QStringLiteral("/"), &services, QDBusConnection::SubPath)
        || !connection.registerService(QStringLiteral("com.nimbo.timed"))
        || !connection.registerService(QStringLiteral("org.freedesktop.Notifications")))
        return EXIT_FAILURE;

    const double start = threadTime();
    Reminders reminders;
    Reminder last;
    last.setReminders(&reminders);
    last.setPhoneNumber(numberOf(size));
    QEventLoop loop;
    QObject::connect(&last, &Reminder::existsChanged, &loop, &QEventLoop::quit);
    loop.exec();
    const double rebuilt = threadTime();

    std::vector<std::unique_ptr<Reminder>> watching;
    for (int i = 1; i <= size; ++i) {
        watching.push_back(std::make_unique<Reminder>());
        watching.back()->setReminders(&reminders);
        watching.back()->setPhoneNumber(numberOf(i));
    }
    const double bound = threadTime();
    const bool complete = std::all_of(watching.cbegin(), watching.cend(),
                                      [](const auto &reminder) { return reminder->exists(); });
    std::printf("%f %f %f\n", rebuilt - start, bound - rebuilt, peakMemory());

    thread.quit();
    thread.wait();
    QDBusConnection::disconnectFromBus(QStringLiteral("services"));
    return complete ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() > 1)
        return measure(arguments.at(1).toInt());
    return printGrowth({"numbers",
                        {10, 100, 1000, 10000},
                        {{{},
                          {QStringLiteral("read back, ms"), QStringLiteral("bind all, ms"),
                           QStringLiteral("peak, KiB")}}}});
}

#include "reminders.moc"
