// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "buses.h"

#include "receivelimits.h"

#include <QDBusConnectionInterface>
#include <QDBusError>

namespace {

bool isConnected(const QDBusConnection &bus, const char *name)
{
    if (!bus.isConnected())
        qCritical("There is no %s bus: %s", name, qUtf8Printable(bus.lastError().message()));
    return bus.isConnected();
}

void watch(QDBusConnection bus, QObject *receiver, const char *slot)
{
    const QLatin1String local("org.freedesktop.DBus.Local");
    bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"), local,
                QStringLiteral("Disconnected"), receiver, slot);
    removeReceiveLimits(bus);
}

} // namespace

Buses::Buses(QObject *parent)
    : QObject(parent)
{
    watch(m_session, this, SLOT(sessionBusLost()));
    watch(m_system, this, SLOT(systemBusLost()));
}

Buses::Claim Buses::claim(const QString &name)
{
    if (!isConnected(m_session, "session") || !isConnected(m_system, "system"))
        return Claim::Failed;
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
        m_session.interface()->registerService(name);
    if (!reply.isValid()) {
        qCritical("The name %s is not to be had: %s", qUtf8Printable(name),
                  qUtf8Printable(reply.error().message()));
        return Claim::Failed;
    }
    if (reply != QDBusConnectionInterface::ServiceRegistered) {
        qInfo("%s runs in this session already.", qUtf8Printable(name));
        return Claim::Taken;
    }
    return Claim::Succeeded;
}

void Buses::sessionBusLost()
{
    qCritical("The session bus has ended.");
    Q_EMIT lost();
}

void Buses::systemBusLost()
{
    qCritical("The system bus has ended.");
    Q_EMIT lost();
}
