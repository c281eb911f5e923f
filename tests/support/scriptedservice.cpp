// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "scriptedservice.h"

#include <QCoreApplication>
#include <QDBusPendingCallWatcher>
#include <QEventLoop>
#include <QTimer>

#include <chrono>

namespace {

constexpr std::chrono::seconds patience(30);

QString connectionName(const ScriptedService *service)
{
    return QStringLiteral("scripted-%1").arg(reinterpret_cast<quintptr>(service));
}

void waitForBus(const QDBusConnection &connection)
{
    const QDBusPendingCallWatcher call(connection.asyncCall(QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/"),
        QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId"))));
    QEventLoop loop;
    QObject::connect(&call, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

ScriptedService::ScriptedService(const QString &address, const QString &service,
                                 const QString &path)
    : m_bus(QDBusConnection::connectToBus(address, connectionName(this)))
    , m_service(service)
    , m_path(path)
{
    if (!m_bus.registerVirtualObject(path, this, QDBusConnection::SubPath)
        || !m_bus.registerService(service))
        qFatal("%s is not on the bus.", qUtf8Printable(service));
}

ScriptedService::~ScriptedService()
{
    m_bus.unregisterService(m_service);
    QDBusConnection::disconnectFromBus(connectionName(this));
}

QDBusMessage ScriptedService::next()
{
    if (m_calls.isEmpty()) {
        QEventLoop loop;
        connect(this, &ScriptedService::called, &loop, &QEventLoop::quit);
        QTimer::singleShot(patience, &loop, &QEventLoop::quit);
        loop.exec();
    }
    return m_calls.isEmpty() ? QDBusMessage() : m_calls.takeFirst();
}

QDBusMessage ScriptedService::next(const QString &method)
{
    const QDBusMessage call = next();
    if (call.member() == method)
        return call;
    qWarning("%s was called, not %s", qUtf8Printable(call.member()), qUtf8Printable(method));
    return {};
}

void ScriptedService::reply(const QDBusMessage &call, const QVariantList &values)
{
    m_bus.send(call.createReply(values));
}

void ScriptedService::fail(const QDBusMessage &call, const QString &error, const QString &text)
{
    m_bus.send(call.createErrorReply(error, text));
}

void ScriptedService::emitSignal(const QString &interface, const QString &name,
                                 const QVariantList &values)
{
    QDBusMessage message = QDBusMessage::createSignal(m_path, interface, name);
    message.setArguments(values);
    m_bus.send(message);
}

void ScriptedService::settle()
{
    // There and back on either connection: what was sent before is through then.
    waitForBus(QDBusConnection::sessionBus());
    waitForBus(QDBusConnection::systemBus());
    waitForBus(m_bus);
    waitForBus(QDBusConnection::sessionBus());
    waitForBus(QDBusConnection::systemBus());
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

bool ScriptedService::handleMessage(const QDBusMessage &message, const QDBusConnection &)
{
    message.setDelayedReply(true);
    m_calls.append(message);
    Q_EMIT called();
    return true;
}
