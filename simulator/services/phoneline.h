// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "networkcalls.h"
#include "pace.h"
#include "sim.h"

#include <QStringList>
#include <QTimer>

#include <optional>

/// What the network is for one modem: its calls, its messages and its services. It knows nothing of
/// how the modem speaks with the telephony stack.
class PhoneLine : public QObject
{
    Q_OBJECT

public:
    /// What is the matter with the network or the modem.
    enum class Condition {
        Back, ///< Nothing.
        Lost, ///< There is no network, except for emergency calls.
        Refuse, ///< The network is there, but takes no calls and no messages.
        Slow, ///< The modem needs seconds for all that it is told.
        Hang, ///< The modem does nothing.
        Gone, ///< The modem has been pulled out.
    };
    Q_ENUM(Condition)

    /// What the network says to a request such as *100#.
    struct ServiceAnswer
    {
        QString text;
        bool wantsReply = false;
    };

    /// Returns whether \a text can be dialled or sent to.
    static bool isNumber(const QString &text, int mostDigits = 80);

    explicit PhoneLine(const Sim &sim, QObject *parent = nullptr);

    NetworkCalls &calls() { return m_calls; }
    /// Modems give what they are told to this queue.
    Pace &pace() { return m_pace; }

    /// Switches the radio of the modem. It is on at first.
    void setOn(bool on);
    void setSim(const Sim &sim);
    const Sim &sim() const { return m_sim; }
    void setCondition(Condition condition);
    Condition condition() const { return m_condition; }

    /// Returns whether the SIM can be read, and the radio is on. There may be no network.
    bool isReady() const;
    /// Returns whether the modem is in the network.
    bool isRegistered() const { return m_isRegistered; }
    /// Returns the name of the network, or an empty one without it.
    QString networkName() const;
    static QString homeNetwork() { return QStringLiteral("Nimbo Mobile"); }
    /// Returns the strength of the signal in percent.
    uchar strength() const { return m_isRegistered ? 80 : 0; }

    /// Returns the numbers that reach the emergency services (3GPP TS 22.101, 10.1.1).
    QStringList emergencyNumbers() const;

    /// The telephony stack offers all that the line has: calls, messages, services.
    void announceReady() { Q_EMIT ready(); }

    /// Calls a number. Returns the id of the call, or 0 if that is not possible.
    int dial(const QString &number);
    /// A call comes in. Returns its id, or 0 if that is not possible.
    int ring(const QString &number);
    /// Sends tones to the other side. Returns false without an active call.
    bool sendTones(const QString &tones);
    /// Returns whether the network takes messages.
    bool takesMessages() const;
    /// Hands a message to the network. Returns whether it takes it.
    bool sendMessage(const QString &number, const QString &text);
    /// Asks the network for a service. Returns its answer, or nothing if it does not know it.
    std::optional<ServiceAnswer> request(const QString &code);
    /// Replies to an answer that wants it.
    std::optional<ServiceAnswer> reply(const QString &text);
    /// Returns whether the network waits for a reply.
    bool isAsked() const { return m_isAsked; }
    void cancelService() { m_isAsked = false; }

Q_SIGNALS:
    void simChanged();
    void registeredChanged();
    /// The telephony stack offers all that the line has.
    void ready();
    void conditionChanged();
    void dialled(const QString &number);
    void tonesSent(const QString &tones);
    void messageSent(const QString &number, const QString &text);
    void serviceRequested(const QString &code);

private:
    void update();
    void followDialled();

    NetworkCalls m_calls;
    Pace m_pace;
    Sim m_sim;
    bool m_isOn = true;
    Condition m_condition = Condition::Back;
    bool m_isRegistered = false;
    bool m_isAsked = false;
    QTimer m_search; ///< For the phone that is called.
};
