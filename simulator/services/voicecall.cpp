// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "voicecall.h"

#include "modem.h"
#include "phoneline.h"
#include "voicecallmanager.h"

#include <QDBusMessage>
#include <QLocale>

VoiceCall::VoiceCall(Modem &modem, const VoiceCallManager &manager, PhoneLine &line,
                     const NetworkCall &call)
    : m_modem(modem)
    , m_manager(manager)
    , m_line(line)
    , m_bus(modem.bus())
    , m_path(
          QStringLiteral("%1/voicecall%2").arg(modem.path()).arg(call.id, 2, 10, QLatin1Char('0')))
    , m_isEmergency(!call.isIncoming && line.emergencyNumbers().contains(call.number))
    , m_call(call)
{
    m_bus.registerObject(m_path, this, QDBusConnection::ExportScriptableContents);
}

VoiceCall::~VoiceCall()
{
    m_bus.unregisterObject(m_path);
}

void VoiceCall::update(const NetworkCall &call)
{
    const QVariantMap before = GetProperties();
    m_call = call;
    if (call.state == NetworkCall::State::Active && !m_start.isValid())
        m_start = QDateTime::currentDateTimeUtc();
    const QVariantMap now = GetProperties();
    for (auto it = now.cbegin(); it != now.cend(); ++it) {
        if (before.value(it.key()) != it.value())
            tell(it.key(), it.value());
    }
}

void VoiceCall::end(NetworkCalls::Ending ending)
{
    send(QStringLiteral("DisconnectReason"), {nameOf(ending)});
    tell(QStringLiteral("State"), QStringLiteral("disconnected"));
}

QVariantMap VoiceCall::GetProperties() const
{
    QVariantMap properties{{QStringLiteral("State"), nameOf(m_call.state)},
                           {QStringLiteral("LineIdentification"),
                            m_call.number.isEmpty() ? QStringLiteral("withheld") : m_call.number},
                           {QStringLiteral("Name"), QString()},
                           {QStringLiteral("Multiparty"), m_call.isInConference},
                           {QStringLiteral("RemoteHeld"), m_call.isHeldByRemote},
                           {QStringLiteral("RemoteMultiparty"), false},
                           {QStringLiteral("Emergency"), m_isEmergency}};
    if (m_start.isValid())
        properties.insert(
            QStringLiteral("StartTime"),
            // In digits that every locale can read.
            QLocale::c().toString(m_start, QStringLiteral("yyyy-MM-ddTHH:mm:ss+0000")));
    return properties;
}

/// The command may destroy this object.
void VoiceCall::Answer()
{
    m_modem.perform(message(), [&line = m_line, id = m_call.id](const QDBusMessage &message) {
        const NetworkCall *const call = line.calls().find(id);
        const bool isIncoming = call != nullptr && call->state == NetworkCall::State::Incoming;
        return isIncoming && line.calls().answer() ? message.createReply()
                                                   : ofonoError(message, OfonoError::Failed);
    });
}

/// The command destroys this object.
void VoiceCall::Hangup()
{
    if (m_manager.isSendingTones()) {
        message().setDelayedReply(true);
        m_bus.send(ofonoError(message(), OfonoError::InProgress));
        return;
    }
    m_modem.perform(message(), [&line = m_line, id = m_call.id](const QDBusMessage &message) {
        return line.calls().end(id) ? message.createReply()
                                    : ofonoError(message, OfonoError::Failed);
    });
}

void VoiceCall::Deflect(const QString &)
{
    m_modem.perform(message(), [](const QDBusMessage &message) {
        return ofonoError(message, OfonoError::NotImplemented);
    });
}

void VoiceCall::tell(const QString &property, const QVariant &value)
{
    send(QStringLiteral("PropertyChanged"), {property, QVariant::fromValue(QDBusVariant(value))});
}

/// QtDBus relays a signal later, and not at all if the object is gone by then.
void VoiceCall::send(const QString &signal, const QVariantList &arguments)
{
    QDBusMessage message =
        QDBusMessage::createSignal(m_path, QStringLiteral("org.ofono.VoiceCall"), signal);
    message.setArguments(arguments);
    m_bus.send(message);
}
