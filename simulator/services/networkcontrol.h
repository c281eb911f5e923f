// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "phoneline.h"

#include <QDBusAbstractAdaptor>
#include <QList>
#include <QMetaType>

#include <utility>

class ModemSet;
class QDBusArgument;

/// A call on a line, for a list. Its D-Bus signature is (sss).
struct LineCall
{
    QString modem; ///< The path.
    QString number; ///< "withheld" if it is.
    QString state; ///< As NetworkControl::CallChanged() tells it.
};

/// The D-Bus signature is a(sss).
using LineCalls = QList<LineCall>;

QDBusArgument &operator<<(QDBusArgument &argument, const LineCall &call);
const QDBusArgument &operator>>(const QDBusArgument &argument, LineCall &call);

/// Registers these types with QtDBus.
void registerLineCallTypes();

Q_DECLARE_METATYPE(LineCall)
Q_DECLARE_METATYPE(LineCalls)

/// The interface through which the simulator acts as the network and as the other sides of calls. A
/// method whose arguments are wrong, or that is not possible now, replies with an error that says
/// why.
///
/// A modem is given as its path, with or without the slash. A number that is withheld is
/// "withheld".
class NetworkControl : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.nimbo.simulator.Network")

public:
    /// An adaptor on the object of \a modems, which owns it.
    explicit NetworkControl(ModemSet &modems);

public Q_SLOTS:
    LineCalls ListCalls() const;
    /// A call comes in, at the first modem that is in the network unless one is named. Returns the
    /// path of the modem.
    QString Ring(const QString &number, const QString &modem);
    /// The other side of a call does something: "answer", "busy", "hangup", "hold" or "resume". The
    /// number may be left empty if only one call can be meant.
    void Remote(const QString &action, const QString &number);
    /// Something happens to the network or to the modem: the name of a PhoneLine::Condition, in
    /// small letters. If no modem is named, it happens to all.
    void SetNetwork(const QString &condition, const QString &modem);

Q_SIGNALS:
    void Dialled(const QString &modem, const QString &number);
    void CallChanged(const QString &modem, const QString &number, const QString &state);
    /// \a reason is oFono's: "local", "remote" or "network".
    void CallEnded(const QString &modem, const QString &number, const QString &reason);
    void TonesSent(const QString &modem, const QString &tones);
    void MessageSent(const QString &modem, const QString &number, const QString &text);
    void ServiceRequested(const QString &modem, const QString &code);
    void NetworkChanged(const QString &modem, const QString &condition);
    /// The telephony stack has read the SIM, and offers calls, messages and services.
    void Ready(const QString &modem);

private:
    /// A call of a line.
    using Place = std::pair<PhoneLine *, NetworkCall>;

    void follow(const QString &path);
    void refuse(const QString &why);

    ModemSet &m_modems;
};
