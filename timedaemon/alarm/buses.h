// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDBusConnection>
#include <QObject>

/// The session bus and the system bus of a program that cannot do without either.
class Buses : public QObject
{
    Q_OBJECT

public:
    /// What the program does after claim().
    enum class Claim {
        Succeeded,
        Taken, ///< Another process has the name.
        Failed,
    };

    /// Connects to both.
    explicit Buses(QObject *parent = nullptr);

    /// Takes \a name on the session bus, and logs why if it does not succeed. It fails without
    /// either bus. Blocks until the session bus answers.
    Claim claim(const QString &name);

    QDBusConnection session() const { return m_session; }
    QDBusConnection system() const { return m_system; }

Q_SIGNALS:
    /// A bus has ended, as was logged. The program cannot connect to it again.
    void lost();

private Q_SLOTS:
    void sessionBusLost();
    void systemBusLost();

private:
    QDBusConnection m_session = QDBusConnection::sessionBus();
    QDBusConnection m_system = QDBusConnection::systemBus();
};
