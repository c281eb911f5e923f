// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QDBusArgument>
#include <QList>
#include <QMetaType>
#include <QObject>
#include <QStringList>

class QDBusAbstractInterface;
class QDBusPendingCall;
class QDBusPendingCallWatcher;
class QOfonoSimWatcher;

/// Whether the SIMs in the phone may dial and receive calls under the device-management call
/// filters. This class only reads the rules, and never changes them.
///
/// Two objects of "org.ofono" on the system bus have the rules: "/mdm/parleyfilter/dial" and
/// "/mdm/parleyfilter/incoming". Both are read again whenever other SIMs are present, and each when
/// it signals that its rules have changed.
class SimFiltersHelper : public QObject
{
    Q_OBJECT
    /// Whether both permissions are known. Once true, this stays true.
    Q_PROPERTY(bool ready READ ready NOTIFY readyChanged)
    /// Whether at least one present SIM may dial. Also true without a SIM, because no filter
    /// applies then; if a SIM is present and the filters cannot be read; and until the permission
    /// is known.
    Q_PROPERTY(bool anyActiveSimCanDial READ anyActiveSimCanDial NOTIFY anyActiveSimCanDialChanged)
    /// The same as anyActiveSimCanDial, for incoming calls.
    Q_PROPERTY(bool anyActiveSimCanReceive READ anyActiveSimCanReceive NOTIFY
                   anyActiveSimCanReceiveChanged)
    /// The number of present SIMs that have been read.
    Q_PROPERTY(int activeSimCount READ activeSimCount NOTIFY activeSimCountChanged)

public:
    /// What happens to a call. Only Allow lets it through; every other value, listed here or not,
    /// stops it.
    enum Action {
        Block = 1,
        Ignore = 1, ///< Has the same value as Block, and this is meant.
        Allow = 2,
        Hangup = 3
    };
    Q_ENUM(Action)

    /// What happens to the calls of one SIM; (su) on the bus.
    struct Rule
    {
        QString imsi; ///< Subscriber identity of the SIM. It is compared exactly.
        quint32 action = Block; ///< An Action, or any other number.
    };

    /// A list in which the first rule for a SIM decides; a(su) on the bus.
    using RuleList = QList<Rule>;

    /// Blocks until the bus daemon has told the owner of "org.ofono", and for no other process.
    explicit SimFiltersHelper(QObject *parent);

    bool ready() const { return m_dial.ready && m_incoming.ready; }
    bool anyActiveSimCanDial() const { return m_dial.allowed; }
    bool anyActiveSimCanReceive() const { return m_incoming.allowed; }
    int activeSimCount() const { return static_cast<int>(m_activeImsis.size()); }

Q_SIGNALS:
    void readyChanged();
    void anyActiveSimCanDialChanged();
    void anyActiveSimCanReceiveChanged();
    void activeSimCountChanged();

private Q_SLOTS:
    void requestDialRules();
    void requestIncomingRules();
    void dialGetAllFinished(QDBusPendingCallWatcher *watcher);
    void incomingGetAllFinished(QDBusPendingCallWatcher *watcher);
    void updateSims();

private:
    Q_DISABLE_COPY(SimFiltersHelper)

    /// One of the two rule sets, and what it means for the present SIMs.
    struct Filter
    {
        const char *name; ///< For the log.
        QDBusAbstractInterface *interface;
        bool ready = false; ///< Whether \a allowed has had a value.
        bool allowed = true; ///< Whether any SIM is allowed the call.
        bool requestPending = false;
    };
    using Notification = void (SimFiltersHelper::*)();
    using ReplyHandler = void (SimFiltersHelper::*)(QDBusPendingCallWatcher *);

    void connectSignals();
    void requestRules(Filter &filter, ReplyHandler finished);
    void getAllFinished(Filter &filter, QDBusPendingCallWatcher *watcher, Notification changed);
    bool evaluate(const Filter &filter, const QDBusPendingCall &call) const;
    bool anyActiveSimAllowed(quint32 defaultAction, const RuleList &rules) const;
    void setReady(Filter &filter);
    void applyNoSimState();

    QOfonoSimWatcher *m_simWatcher;
    Filter m_dial;
    Filter m_incoming;
    QStringList m_activeImsis; ///< Of the present SIMs, in the order of the watcher.
};

Q_DECLARE_METATYPE(SimFiltersHelper::Rule)
Q_DECLARE_METATYPE(SimFiltersHelper::RuleList)

QDBusArgument &operator<<(QDBusArgument &argument, const SimFiltersHelper::Rule &rule);
const QDBusArgument &operator>>(const QDBusArgument &argument, SimFiltersHelper::Rule &rule);
