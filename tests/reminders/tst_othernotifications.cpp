// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "fakeplatform.h"
#include "literals.h"
#include "messagelog.h"
#include "privatebus.h"
#include "reminder.h"
#include "reminders.h"
#include "scriptedservice.h"

#include <notification.h>

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using AttributesByCookie = QMap<uint, QMap<QString, QString>>;

Q_DECLARE_METATYPE(AttributesByCookie)
Q_DECLARE_METATYPE(QVector<NotificationData>)

/// Reminders on a handset whose notification library lists notifications in another form.
class TestOtherNotifications : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void areMatchedByTheirCookies();
    void areNotTakenForThoseOfOurOwnLibrary();

private:
    void answer(const QVariant &notifications);

    QTemporaryDir m_folder;
    PrivateBus m_bus;
    std::unique_ptr<MessageLog> m_log;
    FakePlatform m_platform;
    std::unique_ptr<ScriptedService> m_daemon;
    std::unique_ptr<ScriptedService> m_notifications;
    std::unique_ptr<Reminders> m_reminders;
};

void TestOtherNotifications::initTestCase()
{
    useAnotherNotificationForm();
    QVERIFY(m_bus.start(m_folder.path(), u"bus"_s));
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address().toUtf8());
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address().toUtf8());
    QVERIFY(QDBusConnection::sessionBus().isConnected());
    QVERIFY(QDBusConnection::systemBus().isConnected());
    qDBusRegisterMetaType<NotificationData>();
    qDBusRegisterMetaType<QVector<NotificationData>>();
    qDBusRegisterMetaType<QMap<QString, QString>>();
    qDBusRegisterMetaType<AttributesByCookie>();
}

void TestOtherNotifications::init()
{
    m_log.reset();
    m_log = std::make_unique<MessageLog>();
    m_daemon = std::make_unique<ScriptedService>(m_bus.address(), u"com.nimbo.timed"_s,
                                                 u"/com/nimbo/timed"_s);
    m_notifications = std::make_unique<ScriptedService>(
        m_bus.address(), u"org.freedesktop.Notifications"_s, u"/org/freedesktop/Notifications"_s);
}

void TestOtherNotifications::cleanup()
{
    m_daemon->settle();
    m_reminders.reset();
    m_daemon->settle();
    QCOMPARE(m_daemon->waiting() + m_notifications->waiting(), 0);
    m_daemon.reset();
    m_notifications.reset();
    QCOMPARE(m_log->take(), QStringList());
}

/// Starts with one alarm, and answers with \a notifications.
void TestOtherNotifications::answer(const QVariant &notifications)
{
    m_reminders = std::make_unique<Reminders>();
    m_daemon->reply(m_daemon->next(u"query"_s), {QVariant(QVariantList{5U})});
    m_daemon->reply(
        m_daemon->next(u"get_attributes_by_cookies"_s),
        {QVariant::fromValue(AttributesByCookie{{5, {{u"phoneNumber"_s, u"5550100"_s}}}})});
    m_notifications->reply(m_notifications->next(u"GetNotificationsByCategory"_s), {notifications});
}

void TestOtherNotifications::areMatchedByTheirCookies()
{
    NotificationData ours;
    ours.id = 7;
    ours.hints.insert(u"x-nimbo-alarm-cookie"_s, 5U);
    NotificationData leftover;
    leftover.id = 8;
    leftover.hints.insert(u"x-nimbo-alarm-cookie"_s, 6U);
    answer(QVariant::fromValue(QVector<NotificationData>{ours, leftover}));
    const QDBusMessage close = m_notifications->next(u"CloseNotification"_s);
    QCOMPARE(close.arguments(), QVariantList{8U});
    m_notifications->reply(close, {});
    Reminder reminder;
    reminder.setReminders(m_reminders.get());
    reminder.setPhoneNumber(u"5550100"_s);
    QVERIFY(reminder.exists());
}

void TestOtherNotifications::areNotTakenForThoseOfOurOwnLibrary()
{
    answer(QVariant(QVariantList{1U}));
    QStringList lines;
    QTRY_VERIFY(!(lines += m_log->take()).isEmpty());
    QCOMPARE(lines,
             QStringList(u"warning: Unable to read reminder notifications of the form \"av\" "
                         "instead of \"a(ua{sv})\""_s));
}

QTEST_GUILESS_MAIN(TestOtherNotifications)

#include "tst_othernotifications.moc"
