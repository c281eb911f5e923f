// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "callaudio.h"

#include "answers.h"

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QDBusServiceWatcher>
#include <QPointer>

namespace {

const QLatin1String service("org.mobian_project.CallAudio");
const QLatin1String path("/org/mobian_project/CallAudio");
const QLatin1String interface("org.mobian_project.CallAudio");
const QLatin1String selectMode("SelectMode");

} // namespace

CallAudio::CallAudio(QObject *parent)
    : QObject(parent)
    , m_bus(QString())
    , m_voiceCall{selectMode, &CallAudio::voiceCallChanged}
    , m_speaker{QLatin1String("EnableSpeaker"), &CallAudio::speakerChanged}
    , m_muted{QLatin1String("MuteMic"), &CallAudio::mutedChanged}
{
}

CallAudio::~CallAudio()
{
    for (const Setting *setting : {&m_muted, &m_speaker, &m_voiceCall}) {
        if (m_complete && setting->wanted)
            m_bus.send(callFor(*setting, false));
    }
}

void CallAudio::componentComplete()
{
    m_complete = true;
    requestAllTrue();
}

/// A newly started callaudiod has none of it.
void CallAudio::requestAllTrue()
{
    for (Setting *setting : {&m_voiceCall, &m_speaker, &m_muted}) {
        setting->confirmed = false;
        if (setting->wanted)
            request(*setting);
    }
}

void CallAudio::set(Setting &setting, bool value)
{
    if (value == setting.wanted)
        return;
    setting.wanted = value;
    if (m_complete)
        request(setting);
    Q_EMIT(this->*setting.changed)();
}

void CallAudio::request(Setting &setting)
{
    if (!m_serviceWatcher) {
        m_bus = QDBusConnection::sessionBus();
        m_serviceWatcher = std::make_unique<QDBusServiceWatcher>(service, m_bus);
        connect(m_serviceWatcher.get(), &QDBusServiceWatcher::serviceRegistered, this,
                &CallAudio::requestAllTrue);
    }
    whenOwnerAnswered(m_bus, service, m_bus.asyncCall(callFor(setting, setting.wanted)), this,
                      [this, &setting, number = ++setting.request,
                       requested = setting.wanted](const QDBusMessage &answer) {
                          if (number == setting.request)
                              readAnswer(setting, requested, answer);
                      });
}

void CallAudio::readAnswer(Setting &setting, bool requested, const QDBusMessage &answer)
{
    const bool isDone = answer.type() == QDBusMessage::ReplyMessage
        && answer.signature() == QLatin1String("b") && answer.arguments().constFirst().toBool();
    if (isDone) {
        setting.confirmed = requested;
    } else if (setting.wanted != setting.confirmed) {
        setting.wanted = setting.confirmed;
        Q_EMIT(this->*setting.changed)();
    }
}

QDBusMessage CallAudio::callFor(const Setting &setting, bool value) const
{
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, setting.method);
    if (setting.method == selectMode)
        call.setArguments({value ? 1U : 0U}); // The mode of a voice call, or the default one.
    else
        call.setArguments({value});
    return call;
}
