// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "scriptedservice.h"

#include "patience.h"

#include <QCoreApplication>
#include <QDBusPendingCallWatcher>
#include <QDBusVirtualObject>
#include <QEventLoop>
#include <QTimer>

namespace {

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

/// Forwards the calls from the bus.
class ScriptedService::Objects : public QDBusVirtualObject
{
public:
    explicit Objects(ScriptedService &service)
        : m_service(service)
    {
    }

    QString introspect(const QString &) const override { return {}; }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &) override
    {
        if (message.interface() == QLatin1String("org.freedesktop.DBus.Introspectable"))
            return false;
        message.setDelayedReply(true);
        QMetaObject::invokeMethod(
            &m_service, [this, message] { m_service.take(message); }, Qt::QueuedConnection);
        return true;
    }

private:
    ScriptedService &m_service;
};

ScriptedService::ScriptedService(const QString &address, const QString &service,
                                 const QString &path)
    : m_bus(QDBusConnection::connectToBus(address, connectionName(this)))
    , m_service(service)
    , m_path(path)
    , m_objects(std::make_unique<Objects>(*this))
{
    if (!m_bus.registerVirtualObject(path, m_objects.get(), QDBusConnection::SubPath))
        qFatal("%s has no objects on the bus.", qUtf8Printable(service));
    m_objects->moveToThread(&m_thread);
    m_thread.start();
    if (!m_bus.registerService(service))
        qFatal("%s is not on the bus.", qUtf8Printable(service));
}

ScriptedService::~ScriptedService()
{
    m_bus.unregisterService(m_service);
    QDBusConnection::disconnectFromBus(connectionName(this));
    m_thread.quit();
    m_thread.wait();
}

QDBusMessage ScriptedService::next()
{
    if (m_calls.isEmpty()) {
        QEventLoop loop;
        connect(this, &ScriptedService::called, &loop, &QEventLoop::quit);
        QTimer timer;
        connect(&timer, &QTimer::timeout, &loop, &QEventLoop::quit);
        timer.start(patience());
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
    if (call.type() == QDBusMessage::MethodCallMessage)
        m_bus.send(call.createReply(values));
}

void ScriptedService::fail(const QDBusMessage &call, const QString &error, const QString &text)
{
    if (call.type() == QDBusMessage::MethodCallMessage)
        m_bus.send(call.createErrorReply(error, text));
}

void ScriptedService::emitSignal(const QString &interface, const QString &name,
                                 const QVariantList &values, const QString &path)
{
    QDBusMessage message =
        QDBusMessage::createSignal(path.isEmpty() ? m_path : path, interface, name);
    message.setArguments(values);
    m_bus.send(message);
}

void ScriptedService::settle()
{
    // Settle twice: handled messages may lead to others, such as a question for the owner of a
    // name.
    for (int i = 0; i < 2; ++i)
        settleOnce();
}

void ScriptedService::settleOnce()
{
    // After a round trip on each connection, all earlier messages have arrived.
    waitForBus(QDBusConnection::sessionBus());
    waitForBus(QDBusConnection::systemBus());
    waitForBus(m_bus);
    waitForBus(QDBusConnection::sessionBus());
    waitForBus(QDBusConnection::systemBus());
    QMetaObject::invokeMethod(
        m_objects.get(), [] {}, Qt::BlockingQueuedConnection);
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void ScriptedService::take(const QDBusMessage &call)
{
    m_calls.append(call);
    Q_EMIT called();
}
