// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "qofonosimmanager.h"

#include "callqueue.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QList>
#include <QObject>
#include <QSharedPointer>
#include <QStringList>
#include <QVariantMap>

#include <map>
#include <memory>

class QDBusMessage;

/// The SIMs that are present in the modems of oFono: "org.ofono" on the system bus, with the
/// interfaces org.ofono.Manager, org.ofono.Modem and org.ofono.SimManager of its D-Bus API.
///
/// No function blocks until oFono answers. oFono may start, stop and start again at any time.
class QOfonoSimWatcher : public QObject
{
    Q_OBJECT

public:
    explicit QOfonoSimWatcher(QObject *parent = nullptr);

    /// Returns whether the SIMs are known: oFono has listed its modems, and the SIM of each. False
    /// while there is no oFono. A modem that is added later does not make it false.
    bool isValid() const { return m_valid; }

    /// Sets whether only SIMs with a subscriber identity are listed, which are those that have been
    /// read. The default is to list all.
    void setRequireSubscriberIdentity(bool required);

    /// Returns the SIMs that are present, in the order of their modems' paths.
    QList<QSharedPointer<QOfonoSimManager>> presentSimList() const;
    int presentSimCount() const { return static_cast<int>(m_presentSims.size()); }

Q_SIGNALS:
    void validChanged();
    /// A SIM was added or removed, or has another subscriber identity than before.
    void presentSimListChanged();

private Q_SLOTS:
    void modemAdded(const QDBusMessage &message);
    void modemRemoved(const QDBusMessage &message);
    void modemPropertyChanged(const QDBusMessage &message);
    void simPropertyChanged(const QDBusMessage &message);

private:
    struct Modem
    {
        std::unique_ptr<QObject> simManager; ///< The context of its answers; null if there is none.
        bool simKnown = false;
        bool simPresent = false;
        QString subscriberIdentity;
    };

    void ask(const QString &path, const QString &interface, const QString &method, QObject *context,
             const AnswerHandler &handler);
    void ownerChanged(const QString &owner);
    void askForModems();
    void readModems(const QDBusMessage &answer);
    void setInterfaces(const QString &path, const QStringList &interfaces);
    void askForSim(const QString &path);
    void readSim(const QString &path, const QDBusMessage &answer);
    bool isEverySimKnown() const;
    QStringList findPresentSims() const;
    void update();

    QDBusConnection m_bus;
    QDBusServiceWatcher m_serviceWatcher;
    std::unique_ptr<CallQueue> m_calls; ///< The calls to the current oFono.
    std::unique_ptr<QObject> m_manager; ///< The context of the current oFono's answers.
    bool m_modemsKnown = false;
    std::map<QString, Modem> m_modems; ///< By path.
    bool m_identityRequired = false;
    bool m_valid = false;
    QStringList m_presentSims; ///< Their subscriber identities.
};
