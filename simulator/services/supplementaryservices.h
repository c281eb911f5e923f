// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "phoneline.h"

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QVariantMap>

class Modem;

/// The dialogue of a modem with the network (USSD), as in oFono's D-Bus API.
class SupplementaryServices : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.ofono.SupplementaryServices")

public:
    static QString interface() { return QStringLiteral("org.ofono.SupplementaryServices"); }

    /// An adaptor on the object of \a modem, which owns it. \a line must outlive it.
    SupplementaryServices(Modem &modem, PhoneLine &line);

public Q_SLOTS:
    QVariantMap GetProperties();
    /// Returns "USSD", and what the network says.
    QString Initiate(const QString &command, QDBusVariant &answer);
    /// Returns what the network says.
    QString Respond(const QString &text);
    void Cancel();

Q_SIGNALS:
    void PropertyChanged(const QString &name, const QDBusVariant &value);

private:
    using Answer = std::optional<PhoneLine::ServiceAnswer>;

    bool isIdle() const;
    QDBusMessage reply(const QDBusMessage &message, const Answer &answer,
                       const QVariantList &arguments);
    void setState(const QString &state);

    Modem &m_modem;
    PhoneLine &m_line;
    QString m_state = QStringLiteral("idle");
};
