// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "atinput.h"
#include "networkcalls.h"
#include "submittedmessage.h"

#include <QByteArrayList>
#include <QHash>
#include <QMap>
#include <QObject>
#include <QTimer>

class PhoneLine;

/// What a modem says to those who speak AT with it: 3GPP TS 27.007 for calls and the network, TS
/// 27.005 for messages, as far as oFono's modem for simulators needs them. It answers ERROR to what
/// it does not know, and survives any input. All that it does, it does at the pace of the line.
class AtSession : public QObject
{
    Q_OBJECT

public:
    /// \a line must outlive it.
    explicit AtSession(PhoneLine &line, QObject *parent = nullptr);

    /// Begins anew. The calls stay.
    void reset();
    void receive(const QByteArray &bytes) { m_input.receive(bytes); }

    /// The PIN of a locked SIM.
    static constexpr char Pin[] = "1234";

Q_SIGNALS:
    void sent(const QByteArray &bytes);
    /// The PIN has been entered, and was right.
    void pinEntered();

private:
    using Handler = QByteArray (AtSession::*)(const QByteArray &arguments);

    void take(AtInput::Kind kind, const QByteArray &text);
    void runLine(const QByteArray &line);
    QByteArray run(const QByteArray &command);
    void say(const QByteArray &text);
    void announce(const QByteArray &text);

    QByteArray dial(const QByteArray &number);
    QByteArray answer(const QByteArray &arguments);
    QByteArray hangUp(const QByteArray &arguments);
    QByteArray listCalls(const QByteArray &arguments);
    QByteArray handleCalls(const QByteArray &arguments);
    QByteArray collectTone(const QByteArray &tone);
    QByteArray request(const QByteArray &arguments);
    QByteArray switchRadio(const QByteArray &arguments);
    QByteArray tellSimState(const QByteArray &arguments);
    QByteArray tellPin(const QByteArray &arguments);
    QByteArray enterPin(const QByteArray &arguments);
    QByteArray tellIdentity(const QByteArray &arguments);
    QByteArray readSim(const QByteArray &arguments);
    QByteArray tellRegistration(const QByteArray &arguments);
    QByteArray tellOperator(const QByteArray &arguments);
    QByteArray chooseOperatorForm(const QByteArray &arguments);
    QByteArray tellSignal(const QByteArray &arguments);
    QByteArray beginMessage(const QByteArray &arguments);
    void sendMessage(const QByteArray &text);

    void announceCall(const NetworkCall &call);
    void ring();
    void followCall(const NetworkCall &call);
    void followSim();
    void followRegistration();
    QByteArray registration() const;

    PhoneLine &m_line;
    AtInput m_input;
    const QHash<QByteArray, Handler> m_handlers;
    int m_waiting = 0; ///< The lines that wait for their turn.
    QByteArrayList m_afterwards; ///< What is said after the result of this line.
    QByteArray m_tones; ///< Those of the line that is being run.
    bool m_wantsOperatorCode = false;
    int m_messageLength = 0; ///< Of the message that is expected.
    int m_lastMessage = 0;
    QMap<int, QMap<int, SubmittedMessage>> m_parts; ///< By reference and number.
    QMap<int, bool> m_remoteHeld; ///< What was told last, by the call's id.
    QTimer m_ring; ///< While a call is incoming, it is announced again and again.
    bool m_hasSim;
    bool m_simIsLocked;
};
