// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "networkcalls.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusVariant>
#include <QDateTime>
#include <QObject>
#include <QVariantMap>

class Modem;
class PhoneLine;
class VoiceCallManager;

/// A call of a modem as in oFono's D-Bus API. The scriptable members are its interface.
class VoiceCall : public QObject, public QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.ofono.VoiceCall")

public:
    /// Registers the object. \a modem, \a manager and \a line must outlive it.
    VoiceCall(Modem &modem, const VoiceCallManager &manager, PhoneLine &line,
              const NetworkCall &call);
    /// Takes the object from the bus.
    ~VoiceCall() override;

    const QString &path() const { return m_path; }
    const NetworkCall &call() const { return m_call; }

    /// Emits PropertyChanged for what is different in \a call.
    void update(const NetworkCall &call);
    /// Tells why the call has ended.
    void end(NetworkCalls::Ending ending);

    Q_SCRIPTABLE QVariantMap GetProperties() const;
    /// Only an incoming call can be answered so.
    Q_SCRIPTABLE void Answer();
    Q_SCRIPTABLE void Hangup();
    /// Is refused, as most modems refuse it.
    Q_SCRIPTABLE void Deflect(const QString &number);

Q_SIGNALS:
    Q_SCRIPTABLE void PropertyChanged(const QString &name, const QDBusVariant &value);
    Q_SCRIPTABLE void DisconnectReason(const QString &reason);

private:
    void tell(const QString &property, const QVariant &value);
    void send(const QString &signal, const QVariantList &arguments);

    Modem &m_modem;
    const VoiceCallManager &m_manager;
    PhoneLine &m_line;
    QDBusConnection m_bus;
    const QString m_path;
    const bool m_isEmergency;
    NetworkCall m_call;
    QDateTime m_start; ///< When it was active first; invalid before.
};
