// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QQmlParserStatus>

#include <memory>

class QDBusMessage;
class QDBusServiceWatcher;

/// The path of the sound during a call, through callaudiod (org.mobian_project.CallAudio on the
/// session bus).
///
/// Each property is what the screens have asked for. If callaudiod refuses, or is not there, it
/// returns to what it was. The destructor ends what is true.
class CallAudio : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    /// Whether the sound goes where a voice call needs it.
    Q_PROPERTY(bool voiceCall READ voiceCall WRITE setVoiceCall NOTIFY voiceCallChanged)
    /// Whether the loudspeaker is on.
    Q_PROPERTY(bool speaker READ speaker WRITE setSpeaker NOTIFY speakerChanged)
    /// Whether the microphone is off.
    Q_PROPERTY(bool muted READ muted WRITE setMuted NOTIFY mutedChanged)

public:
    explicit CallAudio(QObject *parent = nullptr);
    ~CallAudio() override;

    void classBegin() override { }
    void componentComplete() override;

    bool voiceCall() const { return m_voiceCall.wanted; }
    void setVoiceCall(bool voiceCall) { set(m_voiceCall, voiceCall); }
    bool speaker() const { return m_speaker.wanted; }
    void setSpeaker(bool speaker) { set(m_speaker, speaker); }
    bool muted() const { return m_muted.wanted; }
    void setMuted(bool muted) { set(m_muted, muted); }

Q_SIGNALS:
    void voiceCallChanged();
    void speakerChanged();
    void mutedChanged();

private:
    Q_DISABLE_COPY(CallAudio)

    struct Setting
    {
        QLatin1String method;
        void (CallAudio::*changed)();
        bool wanted = false;
        bool confirmed = false; ///< What callaudiod has done.
        int request = 0; ///< The number of the last request.
    };

    void set(Setting &setting, bool value);
    void request(Setting &setting);
    void readAnswer(Setting &setting, bool requested, const QDBusMessage &answer);
    QDBusMessage callFor(const Setting &setting, bool value) const;
    void requestAllTrue();

    QDBusConnection m_bus;
    std::unique_ptr<QDBusServiceWatcher> m_serviceWatcher;
    bool m_complete = false;
    Setting m_voiceCall;
    Setting m_speaker;
    Setting m_muted;
};
