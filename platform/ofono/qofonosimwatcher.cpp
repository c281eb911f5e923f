// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "qofonosimwatcher.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QDebug>
#include <QPointer>

#include <algorithm>
#include <limits>

namespace {

const QLatin1String service("org.ofono");
const QLatin1String managerPath("/");
const QLatin1String managerInterface("org.ofono.Manager");
const QLatin1String modemInterface("org.ofono.Modem");
const QLatin1String simManagerInterface("org.ofono.SimManager");
const QLatin1String propertyChanged("PropertyChanged");
const QLatin1String interfacesProperty("Interfaces");
const QLatin1String presentProperty("Present");
const QLatin1String subscriberIdentityProperty("SubscriberIdentity");

/// Returns whether \a answer has the signature. Logs a warning if it has not.
bool hasShape(const QDBusMessage &answer, const char *signature, const QString &method)
{
    if (answer.type() == QDBusMessage::ErrorMessage) {
        // Without oFono no SIM can be known, and its start will be noticed. Without a bus there
        // will be no oFono.
        const QDBusError::ErrorType type = QDBusError(answer).type();
        if (type != QDBusError::ServiceUnknown && type != QDBusError::Disconnected)
            qWarning() << "Could not ask oFono for" << method << QDBusError(answer);
        return false;
    }
    if (answer.signature() == QLatin1String(signature))
        return true;
    qWarning() << "oFono has answered" << method << "with" << answer.signature();
    return false;
}

QVariant valueOf(const QDBusMessage &propertyChange)
{
    return propertyChange.arguments().at(1).value<QDBusVariant>().variant();
}

} // namespace

QOfonoSimWatcher::QOfonoSimWatcher(QObject *parent)
    : QObject(parent)
    , m_bus(QDBusConnection::systemBus())
    , m_serviceWatcher(service, m_bus)
{
    connect(
        &m_serviceWatcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
        [this](const QString &, const QString &, const QString &owner) { ownerChanged(owner); });
    m_bus.connect(service, managerPath, managerInterface, QStringLiteral("ModemAdded"), this,
                  SLOT(modemAdded(QDBusMessage)));
    m_bus.connect(service, managerPath, managerInterface, QStringLiteral("ModemRemoved"), this,
                  SLOT(modemRemoved(QDBusMessage)));
    // Subscribe to the changes of all modems.
    m_bus.connect(service, QString(), modemInterface, propertyChanged, this,
                  SLOT(modemPropertyChanged(QDBusMessage)));
    m_bus.connect(service, QString(), simManagerInterface, propertyChanged, this,
                  SLOT(simPropertyChanged(QDBusMessage)));
    askForModems();
}

void QOfonoSimWatcher::setRequireSubscriberIdentity(bool required)
{
    m_identityRequired = required;
    update();
}

QList<QSharedPointer<QOfonoSimManager>> QOfonoSimWatcher::presentSimList() const
{
    QList<QSharedPointer<QOfonoSimManager>> sims;
    for (const QString &identity : m_presentSims)
        sims.append(QSharedPointer<QOfonoSimManager>::create(identity));
    return sims;
}

/// Waits for the answer as long as oFono lives: an oFono that hangs may go on after minutes, and
/// would not be asked again. \a handler is not called once \a context is destroyed.
void QOfonoSimWatcher::ask(const QString &path, const QString &interface, const QString &method,
                           QObject *context, const AnswerHandler &handler)
{
    const auto call = [bus = m_bus, path, interface, method] {
        return bus.asyncCall(QDBusMessage::createMethodCall(service, path, interface, method),
                             std::numeric_limits<int>::max());
    };
    m_calls->add(context, call, handler);
}

void QOfonoSimWatcher::ownerChanged(const QString &owner)
{
    m_manager.reset();
    m_modems.clear();
    m_modemsKnown = false;
    if (!owner.isEmpty())
        askForModems();
    update();
}

void QOfonoSimWatcher::askForModems()
{
    m_calls = std::make_unique<CallQueue>();
    m_manager = std::make_unique<QObject>();
    ask(managerPath, managerInterface, QStringLiteral("GetModems"), m_manager.get(),
        [this](const QDBusMessage &answer) { readModems(answer); });
}

void QOfonoSimWatcher::readModems(const QDBusMessage &answer)
{
    if (!hasShape(answer, "a(oa{sv})", QStringLiteral("GetModems")))
        return;
    m_modemsKnown = true;
    const auto modems = answer.arguments().constFirst().value<QDBusArgument>();
    modems.beginArray();
    while (!modems.atEnd()) {
        QDBusObjectPath path;
        QVariantMap properties;
        modems.beginStructure();
        modems >> path >> properties;
        modems.endStructure();
        setInterfaces(path.path(), properties.value(interfacesProperty).toStringList());
    }
    modems.endArray();
    update();
}

void QOfonoSimWatcher::modemAdded(const QDBusMessage &message)
{
    // A modem that is added before the list of modems comes is in the list as well.
    if (!m_modemsKnown || message.signature() != QLatin1String("oa{sv}"))
        return;
    const QString path = message.arguments().at(0).value<QDBusObjectPath>().path();
    const auto properties = qdbus_cast<QVariantMap>(message.arguments().at(1));
    setInterfaces(path, properties.value(interfacesProperty).toStringList());
    update();
}

void QOfonoSimWatcher::modemRemoved(const QDBusMessage &message)
{
    if (message.signature() != QLatin1String("o"))
        return;
    m_modems.erase(message.arguments().constFirst().value<QDBusObjectPath>().path());
    update();
}

void QOfonoSimWatcher::modemPropertyChanged(const QDBusMessage &message)
{
    if (m_modems.count(message.path()) == 0 || message.signature() != QLatin1String("sv")
        || message.arguments().constFirst() != interfacesProperty)
        return;
    setInterfaces(message.path(), valueOf(message).toStringList());
    update();
}

void QOfonoSimWatcher::setInterfaces(const QString &path, const QStringList &interfaces)
{
    Modem &modem = m_modems[path];
    const bool hasSimManager = interfaces.contains(simManagerInterface);
    if (hasSimManager == (modem.simManager != nullptr))
        return;
    modem = {};
    if (hasSimManager) {
        modem.simManager = std::make_unique<QObject>();
        askForSim(path);
    }
}

void QOfonoSimWatcher::askForSim(const QString &path)
{
    ask(path, simManagerInterface, QStringLiteral("GetProperties"),
        m_modems.at(path).simManager.get(),
        [this, path](const QDBusMessage &answer) { readSim(path, answer); });
}

/// A SIM manager that gives no properties counts as one without a SIM.
void QOfonoSimWatcher::readSim(const QString &path, const QDBusMessage &answer)
{
    QVariantMap properties;
    if (hasShape(answer, "a{sv}", QStringLiteral("GetProperties")))
        properties = qdbus_cast<QVariantMap>(answer.arguments().constFirst());
    Modem &modem = m_modems.at(path);
    modem.simKnown = true;
    modem.simPresent = properties.value(presentProperty).toBool();
    modem.subscriberIdentity = properties.value(subscriberIdentityProperty).toString();
    update();
}

void QOfonoSimWatcher::simPropertyChanged(const QDBusMessage &message)
{
    const auto found = m_modems.find(message.path());
    // Properties that change before the answer to GetProperties are in that answer.
    if (found == m_modems.end() || !found->second.simKnown
        || message.signature() != QLatin1String("sv"))
        return;
    Modem &modem = found->second;
    const QVariant name = message.arguments().constFirst();
    if (name == presentProperty) {
        const bool comes = valueOf(message).toBool() && !modem.simPresent;
        modem.simPresent = valueOf(message).toBool();
        // The next SIM has another identity, which oFono signals later or has already.
        if (comes)
            askForSim(message.path());
        if (!modem.simPresent)
            modem.subscriberIdentity.clear();
    } else if (name == subscriberIdentityProperty) {
        modem.subscriberIdentity = valueOf(message).toString();
    }
    update();
}

bool QOfonoSimWatcher::isEverySimKnown() const
{
    return std::all_of(m_modems.cbegin(), m_modems.cend(), [](const auto &entry) {
        return entry.second.simKnown || !entry.second.simManager;
    });
}

QStringList QOfonoSimWatcher::findPresentSims() const
{
    QStringList identities;
    for (const auto &[path, modem] : m_modems) {
        if (modem.simPresent && !(m_identityRequired && modem.subscriberIdentity.isEmpty()))
            identities.append(modem.subscriberIdentity);
    }
    return identities;
}

/// Emits the signals last, because a handler may destroy this object.
void QOfonoSimWatcher::update()
{
    const bool valid = m_modemsKnown && (m_valid || isEverySimKnown());
    const bool validityChanges = valid != m_valid;
    m_valid = valid;
    const QStringList sims = findPresentSims();
    const bool listChanges = sims != m_presentSims;
    m_presentSims = sims;

    const QPointer<QOfonoSimWatcher> self(this);
    if (validityChanges)
        Q_EMIT validChanged();
    if (self && listChanges)
        Q_EMIT presentSimListChanged();
}
