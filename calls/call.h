// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "busvalues.h"

#include <QDateTime>
#include <QString>
#include <QVariantMap>

#include <optional>

/// A call, as oFono describes it (org.ofono.VoiceCall). Texts are safe to be shown.
class Call
{
public:
    /// The parts of a call, as roles of a model.
    enum Role {
        Id = Qt::UserRole,
        Number,
        Name,
        Direction,
        State,
        StartTime,
        Modem,
        Withheld,
        RemoteHeld,
        Conference,
        Emergency
    };

    /// Reads \a properties of any types. What has another type than oFono gives it is left out.
    Call(int id, QString modem, const BusObject &object);

    int id() const { return m_id; }
    QString path() const { return m_path; }
    QString modem() const { return m_modem; }
    QString number() const { return m_number; }
    QString state() const { return m_state; }
    /// Returns whether the user may answer it.
    bool isRinging() const;
    /// Returns whether it is being set up by this side.
    bool isBeingDialled() const;

    /// Takes a property of oFono's. Returns the roles that have other values now, or none if its
    /// type or its value is not one of oFono's.
    QVector<int> set(const BusProperty &property);
    /// Sets why it has ended: "local", "remote" or "network". Other texts are ignored.
    void setReason(const QString &reason);

    /// Returns for how long it has been active, in milliseconds, or 0 before. The clock may be set
    /// meanwhile.
    qint64 duration() const;

    /// Returns the part \a role.
    QVariant value(int role) const;
    /// Returns all parts, with why it has ended as "reason", by name.
    QVariantMap values() const;
    /// Returns the names of the roles.
    static QHash<int, QByteArray> roleNames();

private:
    void begin(const QString &stateBefore);

    int m_id;
    QString m_path;
    QString m_modem;
    QString m_number;
    QString m_name;
    QString m_direction; ///< Empty if the call was answered before it was first seen.
    QString m_state;
    QString m_reason;
    QDateTime m_startTime;
    std::optional<qint64> m_start; ///< The same in milliseconds of a clock that nobody sets.
    bool m_withheld = false;
    bool m_remoteHeld = false;
    bool m_conference = false;
    bool m_emergency = false;
};
