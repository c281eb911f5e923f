// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "modemswitch.h"

#include "answers.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusReply>
#include <QDBusVariant>

#include <utility>

namespace {

const QLatin1String service("org.ofono");
const QLatin1String modemInterface("org.ofono.Modem");
const QLatin1String poweredProperty("Powered");
const QLatin1String onlineProperty("Online");

/// A SIM is being read, and a modem that hangs may go on.
constexpr int patience = 120'000;

} // namespace

ModemSwitch::ModemSwitch(QObject *parent)
    : QObject(parent)
    , m_bus(QString())
{
    connect(&m_watcher, &QDBusServiceWatcher::serviceRegistered, this, &ModemSwitch::begin);
    connect(&m_watcher, &QDBusServiceWatcher::serviceUnregistered, this, [this] {
        m_powered.clear();
        m_online.clear();
        m_ready.clear();
        Q_EMIT stopped();
    });
}

void ModemSwitch::start(const QDBusConnection &bus, const QStringList &modems)
{
    m_bus = bus;
    m_modems = modems;
    m_watcher.setConnection(m_bus);
    m_watcher.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    m_watcher.addWatchedService(service);
    m_bus.connect(service, QStringLiteral("/"), QStringLiteral("org.ofono.Manager"),
                  QStringLiteral("ModemAdded"), this, SLOT(modemAdded(QDBusMessage)));
    m_bus.connect(service, QString(), modemInterface, QStringLiteral("PropertyChanged"), this,
                  SLOT(modemChanged(QDBusMessage)));
    if (m_bus.interface()->isServiceRegistered(service))
        begin();
}

void ModemSwitch::retry()
{
    for (const QString &modem : std::as_const(m_modems)) {
        if (!m_powered.contains(modem))
            power(modem);
        else if (!m_online.contains(modem))
            m_again.insert(modem);
    }
}

void ModemSwitch::enterPin(const QString &modem, const QString &pin)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        service, modem, QStringLiteral("org.ofono.SimManager"), QStringLiteral("EnterPin"));
    call.setArguments({QStringLiteral("pin"), pin});
    whenAnswered(m_bus.asyncCall(call, patience), this, [this, modem](const QDBusMessage &answer) {
        if (answer.type() == QDBusMessage::ErrorMessage)
            Q_EMIT pinRefused(modem);
    });
}

void ModemSwitch::modemAdded(const QDBusMessage &message)
{
    const QString modem = message.arguments().value(0).value<QDBusObjectPath>().path();
    if (m_modems.contains(modem) && !m_powered.contains(modem))
        power(modem);
}

void ModemSwitch::modemChanged(const QDBusMessage &message)
{
    const QString modem = message.path();
    const QString property = message.arguments().value(0).toString();
    const QVariant value = message.arguments().value(1).value<QDBusVariant>().variant();
    if (!m_modems.contains(modem))
        return;
    if (property == QLatin1String("Interfaces")) {
        readInterfaces(modem, value.toStringList());
    } else if (property == onlineProperty && !value.toBool()) {
        m_online.remove(modem);
    } else if (property == poweredProperty && !value.toBool() && m_powered.remove(modem)) {
        m_online.remove(modem);
        power(modem);
    }
}

void ModemSwitch::readInterfaces(const QString &modem, const QStringList &interfaces)
{
    const bool isReady = interfaces.contains(QLatin1String("org.ofono.MessageManager"))
        && interfaces.contains(QLatin1String("org.ofono.NetworkRegistration"))
        && interfaces.contains(QLatin1String("org.ofono.SupplementaryServices"));
    const bool wasReady = m_ready.contains(modem);
    if (isReady)
        m_ready.insert(modem);
    else
        m_ready.remove(modem);
    if (isReady && !wasReady)
        Q_EMIT ready(modem);
}

void ModemSwitch::begin()
{
    m_powered.clear();
    m_online.clear();
    m_ready.clear();
    m_again.clear();
    retry();
}

/// If that fails, the modem is not there yet, or does not answer. It is announced later, or
/// retry() is called, perhaps before the failure is known.
void ModemSwitch::power(const QString &modem)
{
    m_powered.insert(modem);
    set(modem, poweredProperty, [this, modem](bool isDone) {
        const bool isTriedAgain = m_again.remove(modem);
        if (!isDone) {
            m_powered.remove(modem);
            if (isTriedAgain)
                power(modem);
            return;
        }
        set(modem, onlineProperty, [this, modem](bool isOnline) {
            if (isOnline)
                m_online.insert(modem);
            if (m_online.size() == m_modems.size())
                Q_EMIT online();
        });
    });
}

void ModemSwitch::set(const QString &modem, const QString &property, const Handler &handler)
{
    QDBusMessage call = QDBusMessage::createMethodCall(service, modem, modemInterface,
                                                       QStringLiteral("SetProperty"));
    call.setArguments({property, QVariant::fromValue(QDBusVariant(true))});
    whenAnswered(m_bus.asyncCall(call, patience), this, [handler](const QDBusMessage &answer) {
        handler(answer.type() == QDBusMessage::ReplyMessage);
    });
}
