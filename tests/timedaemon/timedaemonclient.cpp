// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "timedaemonclient.h"

#include "callmeanwhile.h"

#include <QDBusArgument>

#include <utility>

#include <unistd.h>

namespace {

constexpr int patience = 30000;

} // namespace

void asUser(uint user, const std::function<void()> &connect)
{
    const uid_t own = geteuid();
    if (seteuid(user) != 0)
        qFatal("The user cannot be changed");
    connect();
    if (seteuid(own) != 0)
        qFatal("The user cannot be changed back");
}

TimeDaemonClient::TimeDaemonClient(const QString &address, uint user, const QString &name)
    : m_bus(name)
{
    asUser(user, [&] { m_bus = QDBusConnection::connectToBus(address, name); });
    for (const auto &[interface, member] :
         {std::pair(timed, u"alarm_triggers_changed"_s), std::pair(dueAlarms, u"Changed"_s)})
        m_bus.connect(timed, timedPath, interface, member, this, SLOT(hear(QDBusMessage)));
}

TimeDaemonClient::~TimeDaemonClient()
{
    QDBusConnection::disconnectFromBus(m_bus.name());
}

QDBusMessage TimeDaemonClient::call(const QString &method, const QVariantList &arguments,
                                    const QString &interface) const
{
    QDBusMessage message = QDBusMessage::createMethodCall(timed, timedPath, interface, method);
    message.setArguments(arguments);
    return callMeanwhile(m_bus, message, patience);
}

uint TimeDaemonClient::add(qlonglong ticker, const QString &title) const
{
    const Alarm alarm{3, ticker, {{u"TITLE"_s, title}}};
    return call(u"add_event"_s, {QVariant::fromValue(alarm)}).arguments().value(0).toUInt();
}

QVariantList TimeDaemonClient::query() const
{
    return qdbus_cast<QVariantList>(call(u"query"_s, {QVariantMap()}).arguments().value(0));
}

AttributesByCookie TimeDaemonClient::attributes(const QList<uint> &cookies) const
{
    return qdbus_cast<AttributesByCookie>(
        call(u"get_attributes_by_cookies"_s, {QVariant::fromValue(cookies)}).arguments().value(0));
}

QList<uint> TimeDaemonClient::due() const
{
    return qdbus_cast<QList<uint>>(call(u"List"_s, {}, dueAlarms).arguments().value(0));
}

void TimeDaemonClient::forget()
{
    m_told.clear();
    m_dueChanges = 0;
}

void TimeDaemonClient::hear(const QDBusMessage &message)
{
    if (message.signature() == u"a{ux}"_s)
        m_told.append(qdbus_cast<TickersByCookie>(message.arguments().at(0)));
    else
        ++m_dueChanges;
}
