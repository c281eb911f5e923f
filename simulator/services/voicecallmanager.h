// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "networkcalls.h"
#include "ofonoobject.h"

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QTimer>

#include <functional>
#include <map>
#include <memory>

class Modem;
class PhoneLine;
class VoiceCall;

/// The calls of a modem as in oFono's D-Bus API. What oFono refuses is refused with oFono's errors.
class VoiceCallManager : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.ofono.VoiceCallManager")

public:
    static QString interface() { return QStringLiteral("org.ofono.VoiceCallManager"); }

    /// An adaptor on the object of \a modem, which owns it. \a line must outlive it.
    VoiceCallManager(Modem &modem, PhoneLine &line);
    ~VoiceCallManager() override;

    /// Returns whether tones are being sent. Everything else is refused meanwhile.
    bool isSendingTones() const { return m_tones.type() == QDBusMessage::MethodCallMessage; }

public Q_SLOTS:
    QVariantMap GetProperties();
    OfonoObjects GetCalls();
    /// \a callerId is "", "default", "enabled" or "disabled".
    QDBusObjectPath Dial(const QString &number, const QString &callerId);
    /// Ends all calls but a waiting one.
    void HangupAll();
    void SwapCalls();
    void ReleaseAndSwap();
    void ReleaseAndAnswer();
    void HoldAndAnswer();
    void Transfer();
    QList<QDBusObjectPath> PrivateChat(const QDBusObjectPath &call);
    QList<QDBusObjectPath> CreateMultiparty();
    void HangupMultiparty();
    /// Replies when they are sent, which takes a second for each.
    void SendTones(const QString &tones);

Q_SIGNALS:
    void CallAdded(const QDBusObjectPath &path, const QVariantMap &properties);
    void CallRemoved(const QDBusObjectPath &path);
    void PropertyChanged(const QString &name, const QDBusVariant &value);

private:
    /// Does something with the calls. Returns whether it is possible.
    using Action = std::function<bool(NetworkCalls &calls)>;

    bool takes();
    void endTones(const QDBusMessage &reply);
    void perform(const Action &action);
    void performOnConference(const Action &action);
    QDBusMessage dial(const QDBusMessage &message, const QString &number);
    QList<QDBusObjectPath> conference() const;
    void add(const NetworkCall &call);
    void remove(int id, NetworkCalls::Ending ending);
    void followEmergencyNumbers();

    Modem &m_modem;
    PhoneLine &m_line;
    QStringList m_emergencyNumbers;
    std::map<int, std::unique_ptr<VoiceCall>> m_calls; ///< By id.
    QDBusMessage m_tones; ///< The call that sends tones; invalid without one.
    QTimer m_toneTimer;
};
