// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QSet>
#include <QStringList>

#include <functional>

class QDBusMessage;

/// Switches modems on in oFono ("org.ofono" on the system bus), as a handset does it when it
/// starts: they get power, and then go online. A modem that has lost its power gets it again.
class ModemSwitch : public QObject
{
    Q_OBJECT

public:
    explicit ModemSwitch(QObject *parent = nullptr);

    /// Follows oFono on \a bus. \a modems are the paths of the modems.
    void start(const QDBusConnection &bus, const QStringList &modems);

    /// Tries again with those that are off.
    void retry();
    /// Enters the PIN of the SIM in \a modem. If oFono does not take it, pinRefused() is emitted.
    void enterPin(const QString &modem, const QString &pin);

Q_SIGNALS:
    /// All modems are online now.
    void online();
    /// oFono offers calls, messages and services for a modem.
    void ready(const QString &modem);
    /// oFono has ended.
    void stopped();
    void pinRefused(const QString &modem);

private Q_SLOTS:
    void modemAdded(const QDBusMessage &message);
    void modemChanged(const QDBusMessage &message);

private:
    /// Takes whether it is done.
    using Handler = std::function<void(bool isDone)>;

    void begin();
    void readInterfaces(const QString &modem, const QStringList &interfaces);
    void power(const QString &modem);
    void set(const QString &modem, const QString &property, const Handler &handler);

    QDBusConnection m_bus;
    QDBusServiceWatcher m_watcher;
    QStringList m_modems;
    QSet<QString> m_powered; ///< Or being switched on.
    QSet<QString> m_online;
    QSet<QString> m_ready;
    QSet<QString> m_again; ///< To be switched on once more if it fails this time.
};
