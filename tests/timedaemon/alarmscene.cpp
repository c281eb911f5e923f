// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "alarmscene.h"

#include "literals.h"

#include <QDateTime>
#include <QDebug>

#include <utility>

namespace {

const QString notifications = u"org.freedesktop.Notifications"_s;
const QString notificationPath = u"/org/freedesktop/Notifications"_s;
const QString dueAlarms = u"com.nimbo.parley.DueAlarms"_s;
const QString callUiName = u"com.nimbo.parley.ui"_s;

} // namespace

Alarm AlarmScene::alarm(const QString &number)
{
    return {4, QDateTime::currentSecsSinceEpoch() + 60, {{u"phoneNumber"_s, number}}};
}

bool AlarmScene::start()
{
    registerAlarmTypes();
    const bool started = m_sessionBus.start(m_folder.path(), u"session"_s)
        && m_systemBus.start(m_folder.path(), u"system"_s);
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_sessionBus.address().toUtf8());
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_systemBus.address().toUtf8());
    return started && QDBusConnection::sessionBus().isConnected()
        && QDBusConnection::systemBus().isConnected();
}

void AlarmScene::begin()
{
    m_log.reset();
    m_log = std::make_unique<MessageLog>();
    startDaemon();
    startServer();
    m_callUi = std::make_unique<ScriptedService>(m_sessionBus.address(), callUiName, u"/"_s);
}

QStringList AlarmScene::end()
{
    settle();
    QStringList left;
    for (const auto *service : {&m_daemon, &m_server, &m_callUi}) {
        while (*service && (*service)->waiting() > 0)
            left << u"call: "_s + (*service)->next().member();
    }
    m_daemon.reset();
    m_server.reset();
    m_callUi.reset();
    return left + m_log->take();
}

void AlarmScene::settle()
{
    m_callUi->settle();
}

void AlarmScene::startDaemon()
{
    m_daemon = std::make_unique<ScriptedService>(m_systemBus.address(), u"com.nimbo.timed"_s,
                                                 u"/com/nimbo/timed"_s);
}

void AlarmScene::change()
{
    m_daemon->emitSignal(dueAlarms, u"Changed"_s, {});
}

void AlarmScene::list(const QList<uint> &cookies)
{
    m_daemon->reply(take(*m_daemon, dueAlarms, u"List"_s, {}), {QVariant::fromValue(cookies)});
}

QDBusMessage AlarmScene::takeGet(uint cookie)
{
    return take(*m_daemon, dueAlarms, u"Get"_s, {cookie});
}

void AlarmScene::get(uint cookie, const Alarm &alarm)
{
    m_daemon->reply(takeGet(cookie), {QVariant::fromValue(alarm)});
}

QDBusMessage AlarmScene::takeDismiss(uint cookie)
{
    return take(*m_daemon, dueAlarms, u"Dismiss"_s, {cookie});
}

void AlarmScene::dismiss(uint cookie)
{
    m_daemon->reply(takeDismiss(cookie), {true});
}

void AlarmScene::startServer()
{
    m_server =
        std::make_unique<ScriptedService>(m_sessionBus.address(), notifications, notificationPath);
}

void AlarmScene::answerCapabilities(const QStringList &capabilities)
{
    m_server->reply(take(*m_server, notifications, u"GetCapabilities"_s, {}), {capabilities});
}

void AlarmScene::show(uint id, const QString &number)
{
    const QDBusMessage call = m_server->next(u"Notify"_s);
    if (call.arguments().value(3) != number)
        qWarning() << "Notify" << call.arguments() << "instead of" << number;
    m_server->reply(call, {id});
    settle();
}

void AlarmScene::takeClose(uint id)
{
    take(*m_server, notifications, u"CloseNotification"_s, {id});
}

void AlarmScene::closed(uint id, uint reason)
{
    m_server->emitSignal(notifications, u"NotificationClosed"_s, {id, reason});
    settle();
}

void AlarmScene::invoked(uint id, const QString &action)
{
    m_server->emitSignal(notifications, u"ActionInvoked"_s, {id, action});
    settle();
}

void AlarmScene::answerInformation()
{
    m_server->reply(take(*m_server, notifications, u"GetServerInformation"_s, {}), {});
}

QDBusMessage AlarmScene::takeDial(const QString &number)
{
    return take(*m_callUi, callUiName, u"dial"_s, {number});
}

QDBusMessage AlarmScene::take(ScriptedService &service, const QString &interface,
                              const QString &method, const QVariantList &arguments)
{
    QDBusMessage call = service.next(method);
    if (call.type() == QDBusMessage::InvalidMessage)
        return call; // It was logged.
    if (call.interface() != interface || call.arguments() != arguments)
        qWarning() << call << "instead of" << interface << method << arguments;
    return call;
}
