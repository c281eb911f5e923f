// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "fakeofono.h"

#include "literals.h"

#include <QDBusMetaType>
#include <QDBusVariant>

namespace {

const QString managerInterface = u"org.ofono.Manager"_s;
const QString voiceCallManager = u"org.ofono.VoiceCallManager"_s;
const QString voiceCall = u"org.ofono.VoiceCall"_s;
const QString supplementaryServices = u"org.ofono.SupplementaryServices"_s;

QString parentOf(const QString &path)
{
    return path.section(u'/', 0, -2);
}

QVariant pathVariant(const QString &path)
{
    return QVariant::fromValue(QDBusObjectPath(path));
}

} // namespace

QDBusArgument &operator<<(QDBusArgument &argument, const FakeObject &object)
{
    argument.beginStructure();
    argument << object.path << object.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, FakeObject &object)
{
    argument.beginStructure();
    argument >> object.path >> object.properties;
    argument.endStructure();
    return argument;
}

FakeOfono::FakeOfono(const QString &address, const QStringList &modems)
    : ScriptedService(address, u"org.ofono"_s, u"/"_s)
    , m_emergencyNumbers({u"112"_s, u"911"_s})
    , m_dialogueState(u"idle"_s)
{
    qDBusRegisterMetaType<FakeObject>();
    qDBusRegisterMetaType<QList<FakeObject>>();
    for (const QString &path : modems)
        m_modems.insert(path, modem());
}

QVariantMap FakeOfono::modem(bool online)
{
    return {{u"Online"_s, online},
            {u"Interfaces"_s,
             QStringList{u"org.ofono.SimManager"_s, voiceCallManager, supplementaryServices,
                         u"org.ofono.MessageManager"_s}}};
}

QVariantMap FakeOfono::call(const QString &state, const QString &number)
{
    return {{u"State"_s, state},      {u"LineIdentification"_s, number},
            {u"Name"_s, u"Ada"_s},    {u"Multiparty"_s, false},
            {u"RemoteHeld"_s, false}, {u"RemoteMultiparty"_s, false},
            {u"Emergency"_s, false}};
}

void FakeOfono::addModem(const QString &path, const QVariantMap &properties)
{
    m_modems.insert(path, properties);
    emitSignal(managerInterface, u"ModemAdded"_s, {pathVariant(path), properties}, u"/"_s);
}

void FakeOfono::removeModem(const QString &path)
{
    m_modems.remove(path);
    emitSignal(managerInterface, u"ModemRemoved"_s, {pathVariant(path)}, u"/"_s);
}

void FakeOfono::addCall(const QString &path, const QVariantMap &properties)
{
    m_calls[parentOf(path)].append({QDBusObjectPath(path), properties});
    emitSignal(voiceCallManager, u"CallAdded"_s, {pathVariant(path), properties}, parentOf(path));
}

void FakeOfono::removeCall(const QString &path)
{
    emitSignal(voiceCallManager, u"CallRemoved"_s, {pathVariant(path)}, parentOf(path));
}

void FakeOfono::change(const QString &path, const QString &interface, const QString &name,
                       const QVariant &value)
{
    emitSignal(interface, u"PropertyChanged"_s, {name, QVariant::fromValue(QDBusVariant(value))},
               path);
}

void FakeOfono::changeCall(const QString &path, const QString &name, const QVariant &value)
{
    change(path, voiceCall, name, value);
}

void FakeOfono::endCall(const QString &path, const QString &reason)
{
    emitSignal(voiceCall, u"DisconnectReason"_s, {reason}, path);
    changeCall(path, u"State"_s, u"disconnected"_s);
    removeCall(path);
}

void FakeOfono::take(const QDBusMessage &call)
{
    const std::optional<QVariant> answer = m_answers ? answerTo(call) : std::nullopt;
    if (!answer) {
        ScriptedService::take(call);
        return;
    }
    ++m_answered;
    reply(call, {*answer});
}

/// Returns nothing if it is no question.
std::optional<QVariant> FakeOfono::answerTo(const QDBusMessage &call) const
{
    const bool wantsProperties = call.member() == u"GetProperties"_s;
    if (call.member() == u"GetModems"_s) {
        QList<FakeObject> modems;
        for (auto it = m_modems.cbegin(); it != m_modems.cend(); ++it)
            modems.append({QDBusObjectPath(it.key()), it.value()});
        return QVariant::fromValue(modems);
    }
    if (call.member() == u"GetCalls"_s)
        return QVariant::fromValue(m_calls.value(call.path()));
    if (wantsProperties && call.interface() == voiceCallManager)
        return QVariantMap{{u"EmergencyNumbers"_s, m_emergencyNumbers}};
    if (wantsProperties && call.interface() == supplementaryServices)
        return QVariantMap{{u"State"_s, m_dialogueState}};
    return std::nullopt;
}
