// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "voicecallmanager.h"

#include "modem.h"
#include "phoneline.h"
#include "voicecall.h"

#include <QRegularExpression>

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

using State = NetworkCall::State;

/// With the pause that follows it, as oFono counts it.
constexpr std::chrono::seconds tone(1);

/// A request such as *100# is none.
bool canBeDialled(const QString &text)
{
    static const QRegularExpression request(
        QRegularExpression::anchoredPattern(QStringLiteral("[*#].*#")));
    return PhoneLine::isNumber(text) && !request.match(text).hasMatch();
}

bool isTones(const QString &text)
{
    static const QRegularExpression tones(
        QRegularExpression::anchoredPattern(QStringLiteral("[0-9*#A-Da-dPpWw]+")));
    return tones.match(text).hasMatch();
}

} // namespace

VoiceCallManager::VoiceCallManager(Modem &modem, PhoneLine &line)
    : QDBusAbstractAdaptor(&modem)
    , m_modem(modem)
    , m_line(line)
    , m_emergencyNumbers(line.emergencyNumbers())
{
    registerOfonoObjectTypes();
    connect(&line, &PhoneLine::simChanged, this, &VoiceCallManager::followEmergencyNumbers);
    connect(&line.calls(), &NetworkCalls::added, this, &VoiceCallManager::add);
    connect(&line.calls(), &NetworkCalls::changed, this,
            [this](const NetworkCall &call) { m_calls.at(call.id)->update(call); });
    connect(
        &line.calls(), &NetworkCalls::ended, this,
        [this](const NetworkCall &call, NetworkCalls::Ending ending) { remove(call.id, ending); });
    m_toneTimer.setSingleShot(true);
    connect(&m_toneTimer, &QTimer::timeout, this, [this] { endTones(m_tones.createReply()); });
}

VoiceCallManager::~VoiceCallManager() = default;

QVariantMap VoiceCallManager::GetProperties()
{
    m_modem.offers(interface());
    return {{QStringLiteral("EmergencyNumbers"), m_emergencyNumbers}};
}

OfonoObjects VoiceCallManager::GetCalls()
{
    OfonoObjects calls;
    if (!m_modem.offers(interface()))
        return calls;
    for (const auto &[id, call] : m_calls)
        calls.append({QDBusObjectPath(call->path()), call->GetProperties()});
    return calls;
}

QDBusObjectPath VoiceCallManager::Dial(const QString &number, const QString &callerId)
{
    const QStringList callerIds{QString(), QStringLiteral("default"), QStringLiteral("enabled"),
                                QStringLiteral("disabled")};
    if (!takes())
        return {};
    if (!canBeDialled(number) || !callerIds.contains(callerId))
        m_modem.refuse(OfonoError::InvalidFormat);
    else if (!m_modem.isOnline())
        m_modem.refuse(OfonoError::NotAvailable);
    else
        m_modem.perform(m_modem.message(), [this, number](const QDBusMessage &message) {
            return dial(message, number);
        });
    return {};
}

void VoiceCallManager::HangupAll()
{
    perform([](NetworkCalls &calls) {
        calls.hangUp();
        return true;
    });
}

void VoiceCallManager::SwapCalls()
{
    perform([](NetworkCalls &calls) { return !calls.has(State::Waiting) && calls.swap(); });
}

void VoiceCallManager::ReleaseAndSwap()
{
    perform([](NetworkCalls &calls) { return !calls.has(State::Waiting) && calls.endActive(); });
}

void VoiceCallManager::ReleaseAndAnswer()
{
    perform([](NetworkCalls &calls) { return calls.has(State::Waiting) && calls.endActive(); });
}

void VoiceCallManager::HoldAndAnswer()
{
    perform([](NetworkCalls &calls) { return calls.has(State::Waiting) && calls.swap(); });
}

void VoiceCallManager::Transfer()
{
    perform([](NetworkCalls &calls) { return calls.transfer(); });
}

QList<QDBusObjectPath> VoiceCallManager::PrivateChat(const QDBusObjectPath &call)
{
    const auto isIt = [&call](const auto &entry) { return entry.second->path() == call.path(); };
    const auto found = std::find_if(m_calls.cbegin(), m_calls.cend(), isIt);
    if (!takes())
        return {};
    if (found == m_calls.cend() || !found->second->call().isInConference)
        m_modem.refuse(OfonoError::NotFound);
    else
        performOnConference([id = found->first](NetworkCalls &calls) { return calls.split(id); });
    return {};
}

QList<QDBusObjectPath> VoiceCallManager::CreateMultiparty()
{
    if (takes())
        performOnConference([](NetworkCalls &calls) { return calls.join(); });
    return {};
}

void VoiceCallManager::HangupMultiparty()
{
    perform([](NetworkCalls &calls) {
        calls.endConference();
        return true;
    });
}

void VoiceCallManager::SendTones(const QString &tones)
{
    if (!takes())
        return;
    if (!isTones(tones)) {
        m_modem.refuse(OfonoError::InvalidFormat);
        return;
    }
    m_tones = m_modem.message();
    m_tones.setDelayedReply(true);
    m_line.pace().add([this, tones] {
        if (m_line.sendTones(tones))
            m_toneTimer.start(tone * tones.size());
        else
            endTones(ofonoError(m_tones, OfonoError::Failed));
    });
}

void VoiceCallManager::endTones(const QDBusMessage &reply)
{
    m_toneTimer.stop();
    m_tones = QDBusMessage();
    m_modem.bus().send(reply);
}

/// Returns whether the method that is being called can do something now. Otherwise replies with an
/// error.
bool VoiceCallManager::takes()
{
    if (!m_modem.offers(interface()))
        return false;
    if (isSendingTones())
        m_modem.refuse(OfonoError::InProgress);
    return !isSendingTones();
}

void VoiceCallManager::perform(const Action &action)
{
    if (!takes())
        return;
    m_modem.perform(m_modem.message(), [this, action](const QDBusMessage &message) {
        return action(m_line.calls()) ? message.createReply()
                                      : ofonoError(message, OfonoError::Failed);
    });
}

void VoiceCallManager::performOnConference(const Action &action)
{
    m_modem.perform(m_modem.message(), [this, action](const QDBusMessage &message) {
        return action(m_line.calls()) ? message.createReply(QVariant::fromValue(conference()))
                                      : ofonoError(message, OfonoError::Failed);
    });
}

QDBusMessage VoiceCallManager::dial(const QDBusMessage &message, const QString &number)
{
    const int id = m_line.dial(number);
    return id == 0
        ? ofonoError(message, OfonoError::Failed)
        : message.createReply(QVariant::fromValue(QDBusObjectPath(m_calls.at(id)->path())));
}

QList<QDBusObjectPath> VoiceCallManager::conference() const
{
    QList<QDBusObjectPath> paths;
    for (const auto &[id, call] : m_calls) {
        if (call->call().isInConference)
            paths.append(QDBusObjectPath(call->path()));
    }
    return paths;
}

void VoiceCallManager::add(const NetworkCall &call)
{
    const auto &added =
        m_calls.emplace(call.id, std::make_unique<VoiceCall>(m_modem, *this, m_line, call))
            .first->second;
    Q_EMIT CallAdded(QDBusObjectPath(added->path()), added->GetProperties());
}

void VoiceCallManager::remove(int id, NetworkCalls::Ending ending)
{
    const auto removed = m_calls.extract(id);
    VoiceCall *const call = removed.mapped().get();
    call->end(ending);
    Q_EMIT CallRemoved(QDBusObjectPath(call->path()));
    if (m_toneTimer.isActive() && !m_line.calls().has(State::Active))
        endTones(ofonoError(m_tones, OfonoError::Failed));
}

void VoiceCallManager::followEmergencyNumbers()
{
    const QStringList before = std::exchange(m_emergencyNumbers, m_line.emergencyNumbers());
    if (before == m_emergencyNumbers || !m_modem.has(interface()))
        return;
    Q_EMIT PropertyChanged(QStringLiteral("EmergencyNumbers"), QDBusVariant(m_emergencyNumbers));
}
