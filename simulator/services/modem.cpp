// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "modem.h"

#include "messagemanager.h"
#include "networkregistration.h"
#include "phoneline.h"
#include "simmanager.h"
#include "supplementaryservices.h"
#include "voicecallmanager.h"

#include <QRegularExpression>

#include <utility>

Modem::Modem(QString path, PhoneLine &line, QObject *parent)
    : QObject(parent)
    , m_path(std::move(path))
    , m_line(line)
    , m_bus(QString())
    , m_simManager(new SimManager(*this, line.sim()))
{
    // Before the others follow the line, so that the SIM is told first.
    connect(&line, &PhoneLine::simChanged, this, &Modem::updateSim);
    connect(&line, &PhoneLine::conditionChanged, this, &Modem::followCondition);
    new VoiceCallManager(*this, line);
    new NetworkRegistration(*this, line);
    new MessageManager(*this, line);
    new SupplementaryServices(*this, line);
    m_interfaces = currentInterfaces();
}

bool Modem::isPath(const QString &path)
{
    static const QRegularExpression element(
        QRegularExpression::anchoredPattern(QStringLiteral("/[A-Za-z0-9_]+")));
    return element.match(path).hasMatch();
}

bool Modem::start(const QDBusConnection &bus)
{
    m_bus = bus;
    return m_bus.registerObject(
        m_path, this, QDBusConnection::ExportScriptableContents | QDBusConnection::ExportAdaptors);
}

bool Modem::offers(const QString &interface)
{
    if (has(interface))
        return true;
    sendErrorReply(QDBusError::UnknownMethod,
                   QStringLiteral("Method \"%1\" with signature \"%2\" on interface \"%3\" "
                                  "doesn't exist")
                       .arg(message().member(), message().signature(), interface));
    return false;
}

void Modem::refuse(OfonoError error)
{
    setDelayedReply(true);
    m_bus.send(ofonoError(message(), error));
}

void Modem::updateSim()
{
    m_simManager->setSim(m_line.sim());
    updateInterfaces();
}

void Modem::perform(const QDBusMessage &call, const Command &command)
{
    call.setDelayedReply(true);
    m_line.pace().add([this, call, command] { m_bus.send(command(call)); });
}

QVariantMap Modem::GetProperties() const
{
    return {{QStringLiteral("Powered"), m_powered},
            {QStringLiteral("Online"), m_online},
            {QStringLiteral("Lockdown"), false},
            {QStringLiteral("Emergency"), false},
            {QStringLiteral("Manufacturer"), QStringLiteral("Parley")},
            {QStringLiteral("Model"), QStringLiteral("Simulated modem")},
            {QStringLiteral("Revision"), QStringLiteral("1.0")},
            {QStringLiteral("Serial"), m_path.mid(1)},
            {QStringLiteral("Type"), QStringLiteral("hardware")},
            {QStringLiteral("Features"), features()},
            {QStringLiteral("Interfaces"), m_interfaces}};
}

void Modem::SetProperty(const QString &property, const QDBusVariant &value)
{
    const QVariant wanted = value.variant();
    const bool isBool = wanted.userType() == QMetaType::Bool;
    const bool isGone = m_line.condition() == PhoneLine::Condition::Gone;
    if (isBool && property == QLatin1String("Powered") && !(isGone && wanted.toBool()))
        setPowered(wanted.toBool());
    else if (isBool && property == QLatin1String("Powered"))
        refuse(OfonoError::Failed);
    else if (isBool && property == QLatin1String("Online") && m_powered)
        setOnline(wanted.toBool());
    else if (isBool && property == QLatin1String("Online"))
        refuse(OfonoError::NotAvailable);
    else if (isBool && property == QLatin1String("Lockdown"))
        refuse(OfonoError::NotImplemented);
    else
        refuse(OfonoError::InvalidArguments);
}

/// A modem that is pulled out loses its power. It gets it again when it is back.
void Modem::followCondition()
{
    const bool isGone = m_line.condition() == PhoneLine::Condition::Gone;
    if (isGone)
        setPowered(false);
    if (m_wasPulledOut && !isGone) {
        setPowered(true);
        setOnline(true);
    }
    m_wasPulledOut = isGone;
}

void Modem::setPowered(bool powered)
{
    if (m_powered == powered)
        return;
    m_powered = powered;
    tell(QStringLiteral("Powered"));
    setOnline(false);
    updateInterfaces();
}

void Modem::setOnline(bool online)
{
    if (m_online == online)
        return;
    m_online = online;
    m_line.setOn(online);
    tell(QStringLiteral("Online"));
    updateInterfaces();
}

QStringList Modem::currentInterfaces() const
{
    if (!m_powered)
        return {};
    const QStringList always{SimManager::interface(), VoiceCallManager::interface()};
    const QStringList online{MessageManager::interface(), NetworkRegistration::interface(),
                             SupplementaryServices::interface()};
    return m_line.isReady() ? always + online : always;
}

QStringList Modem::features() const
{
    if (!m_powered)
        return {};
    const QStringList always{QStringLiteral("sim")};
    const QStringList online{QStringLiteral("net"), QStringLiteral("sms"), QStringLiteral("ussd")};
    return m_line.isReady() ? always + online : always;
}

void Modem::updateInterfaces()
{
    const QStringList interfaces = currentInterfaces();
    if (interfaces == m_interfaces)
        return;
    m_interfaces = interfaces;
    tell(QStringLiteral("Interfaces"));
    tell(QStringLiteral("Features"));
    Q_EMIT interfacesChanged();
    if (has(MessageManager::interface()))
        m_line.announceReady();
}

void Modem::tell(const QString &property)
{
    Q_EMIT PropertyChanged(property, QDBusVariant(GetProperties().value(property)));
}
