// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "callqueue.h"

#include <QDBusConnection>
#include <QHash>
#include <QMap>
#include <QObject>
#include <QString>
#include <QVariantList>

#include <functional>

/// Sends signals of an object to single connections, no faster than those read them. What a
/// connection has not read is kept by the bus, and counts against the sender: beyond a limit
/// (max_incoming_bytes, dbus-daemon(1)) the bus would read nothing more from this process.
///
/// A connection that is behind gets only the last signal of each member when it has caught up. The
/// bus also limits how many connections can be asked at a time whether they have, so that those
/// which never answer can keep the others of the same object behind.
class PacedSignals : public QObject
{
    Q_OBJECT

public:
    /// Makes the arguments of a signal when it is sent.
    using Arguments = std::function<QVariantList()>;

    struct Signal
    {
        QString interface;
        QString member;
        qsizetype size; ///< About how many bytes the arguments have.
        Arguments arguments;
    };

    PacedSignals(QDBusConnection bus, QString path, QObject *parent = nullptr);

    void send(const QString &connection, const Signal &signal);

private:
    struct Receiver
    {
        /// The bytes that were sent since it was last known to have read all.
        qsizetype unread = 0;
        /// It was asked whether it has read all.
        bool isBehind = false;
        /// By member.
        QMap<QString, Signal> waiting;
    };

    void ask(const QString &connection);
    void goOn(const QString &connection);

    QDBusConnection m_bus;
    const QString m_path;
    CallQueue m_questions;
    QHash<QString, Receiver> m_receivers; ///< By unique name.
};
