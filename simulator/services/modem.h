// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "ofonoerror.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <functional>

class PhoneLine;
class SimManager;

/// A modem of the telephony stack as in oFono's D-Bus API (org.ofono.Modem). It is powered at
/// first. The scriptable members are its interface. Its other interfaces come and go: without a SIM
/// that can be read there are only calls, and without power nothing.
class Modem : public QObject, public QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.ofono.Modem")

public:
    /// \a path is its object path, for which isPath() must be true. \a line must outlive it.
    Modem(QString path, PhoneLine &line, QObject *parent = nullptr);

    /// Returns whether a modem can be at \a path, which has one element, as in "/ril_0".
    static bool isPath(const QString &path);

    /// Registers the object on \a bus.
    bool start(const QDBusConnection &bus);

    const QString &path() const { return m_path; }
    QDBusConnection &bus() { return m_bus; }
    bool isOnline() const { return m_online; }
    /// Returns whether it has an interface now.
    bool has(const QString &interface) const { return m_interfaces.contains(interface); }
    /// Returns whether it has the interface of the call that is being handled. Otherwise replies
    /// with an error.
    bool offers(const QString &interface);

    /// Replies to the call that is being handled with \a error.
    void refuse(OfonoError error);

    using Command = std::function<QDBusMessage(const QDBusMessage &call)>;

    /// Does what \a call tells the modem, at the modem's pace. \a command returns the reply.
    void perform(const QDBusMessage &call, const Command &command);

    Q_SCRIPTABLE QVariantMap GetProperties() const;
    /// "Powered" and, when it is, "Online" can be set. Other properties are refused as oFono
    /// refuses them.
    Q_SCRIPTABLE void SetProperty(const QString &property, const QDBusVariant &value);

Q_SIGNALS:
    Q_SCRIPTABLE void PropertyChanged(const QString &name, const QDBusVariant &value);

    void interfacesChanged();

private:
    void updateSim();
    void followCondition();
    void setPowered(bool powered);
    void setOnline(bool online);
    QStringList currentInterfaces() const;
    QStringList features() const;
    void updateInterfaces();
    void tell(const QString &property);

    const QString m_path;
    PhoneLine &m_line;
    QDBusConnection m_bus;
    bool m_powered = true;
    bool m_online = true;
    bool m_wasPulledOut = false;
    QStringList m_interfaces; ///< As they were told last.
    SimManager *m_simManager; ///< A child object.
};
