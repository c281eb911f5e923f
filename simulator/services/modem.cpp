// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "modem.h"

#include "simmanager.h"

#include <QRegularExpression>

#include <utility>

Modem::Modem(QString path, const Sim &sim, QObject *parent)
    : QObject(parent)
    , m_path(std::move(path))
    , m_simManager(new SimManager(*this, sim))
{
}

bool Modem::isPath(const QString &path)
{
    static const QRegularExpression element(
        QRegularExpression::anchoredPattern(QStringLiteral("/[A-Za-z0-9_]+")));
    return element.match(path).hasMatch();
}

bool Modem::start(QDBusConnection bus)
{
    return bus.registerObject(
        m_path, this, QDBusConnection::ExportScriptableContents | QDBusConnection::ExportAdaptors);
}

void Modem::setSim(const Sim &sim)
{
    m_simManager->setSim(sim);
}

void Modem::reset(const Sim &sim)
{
    m_simManager->setSim({});
    m_simManager->setSim({sim.imsi, true});
}

QVariantMap Modem::GetProperties() const
{
    const QStringList interfaces{QStringLiteral("org.ofono.SimManager")};
    const QStringList features{QStringLiteral("sim")};
    return {{QStringLiteral("Powered"), m_powered},
            {QStringLiteral("Online"), m_online},
            {QStringLiteral("Lockdown"), false},
            {QStringLiteral("Emergency"), false},
            {QStringLiteral("Manufacturer"), QStringLiteral("Parley")},
            {QStringLiteral("Model"), QStringLiteral("Simulated modem")},
            {QStringLiteral("Revision"), QStringLiteral("1.0")},
            {QStringLiteral("Serial"), m_path.mid(1)},
            {QStringLiteral("Type"), QStringLiteral("hardware")},
            {QStringLiteral("Features"), m_powered ? features : QStringList()},
            {QStringLiteral("Interfaces"), m_powered ? interfaces : QStringList()}};
}

void Modem::SetProperty(const QString &property, const QDBusVariant &value)
{
    const QVariant wanted = value.variant();
    const bool isBool = wanted.userType() == QMetaType::Bool;
    if (isBool && property == QLatin1String("Powered"))
        setPowered(wanted.toBool());
    else if (isBool && property == QLatin1String("Online") && m_powered)
        setOnline(wanted.toBool());
    else if (isBool && property == QLatin1String("Online"))
        sendErrorReply(QStringLiteral("org.ofono.Error.NotAvailable"),
                       QStringLiteral("Operation currently not available"));
    else if (isBool && property == QLatin1String("Lockdown"))
        sendErrorReply(QStringLiteral("org.ofono.Error.NotImplemented"),
                       QStringLiteral("Implementation not provided"));
    else
        sendErrorReply(QStringLiteral("org.ofono.Error.InvalidArguments"),
                       QStringLiteral("Invalid arguments in method call"));
}

void Modem::setPowered(bool powered)
{
    if (m_powered == powered)
        return;
    m_powered = powered;
    tell(QStringLiteral("Powered"));
    setOnline(false);
    tell(QStringLiteral("Interfaces"));
    tell(QStringLiteral("Features"));
}

void Modem::setOnline(bool online)
{
    if (m_online == online)
        return;
    m_online = online;
    tell(QStringLiteral("Online"));
}

void Modem::tell(const QString &property)
{
    Q_EMIT PropertyChanged(property, QDBusVariant(GetProperties().value(property)));
}
