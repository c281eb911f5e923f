// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "telephony.h"
#include "turns.h"

#include "answers.h"

#include <QDBusConnection>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <QVariantList>
#include <QVector>

#include <chrono>
#include <functional>
#include <map>
#include <memory>

class CallQueue;
class QDBusMessage;
class QDBusServiceWatcher;

/// A client of oFono ("org.ofono" on the system bus), with a connection for this module alone. It
/// knows the modems and whether oFono is there, and hands on what oFono says.
///
/// No function waits for an answer. Only the owner of the name is believed: its signals are the
/// only ones that the bus is asked for, and an answer from another process counts as none. All
/// signals and handlers run one after the other, also if one of them runs an event loop.
class Ofono : public QObject
{
    Q_OBJECT

public:
    /// For how long oFono may be silent.
    struct Patience
    {
        std::chrono::milliseconds silence{3000}; ///< Twice this time makes it count as hung.
        std::chrono::milliseconds command{30000};
        std::chrono::milliseconds network{120000}; ///< A command that the network answers.
    };

    /// A method of an object, and what it is called with.
    struct Command
    {
        QString path;
        QString interface;
        QString method;
        QVariantList arguments;
        bool isUrgent = false; ///< Whether it is given however many others are unanswered.
    };

    /// Does nothing until start().
    Ofono();
    ~Ofono() override;

    /// Sets how patient this object is. Call this before start().
    void setPatience(const Patience &patience) { m_patience = patience; }
    const Patience &patience() const { return m_patience; }

    /// Makes received() report the signal \a member of all objects with \a interface, if its
    /// arguments have the \a signature. Call this before start().
    void follow(const QString &interface, const QString &member, const QString &signature);

    /// Connects to the bus. The first time this blocks for the bus daemon's greeting, and for
    /// nothing else.
    void start();

    Telephony::Status status() const { return m_status; }

    /// Returns whether \a modem has \a interface.
    bool has(const QString &modem, const QString &interface) const;
    bool isOnline(const QString &modem) const;
    /// Returns the paths of the modems that are online and have \a interface.
    QStringList onlineModems(const QString &interface) const;
    /// Returns \a wanted if that modem has \a interface. If \a wanted is empty, returns the first
    /// modem that is online and has it, preferably one with a SIM. Otherwise returns nothing.
    QString modemFor(const QString &wanted, const QString &interface) const;
    /// Returns a modem that has \a interface, in any case if there is one: \a wanted if possible,
    /// or one that is online, or any.
    QString anyModem(const QString &wanted, const QString &interface) const;

    /// Runs \a action from the event loop, and not while another handler runs.
    void later(const std::function<void()> &action);
    /// Does the same when the modems are known, or when it turns out that they will not be.
    void whenKnown(const std::function<void()> &action);

    /// Asks an object of oFono for something that has no effect. \a handler gets the answer, or an
    /// invalid message if it has not the \a signature or oFono refuses, for which there is a line
    /// in the log. It gets nothing if \a context is destroyed or oFono stops before.
    void ask(const Command &question, const QString &signature, QObject *context,
             const AnswerHandler &handler);

    /// Tells oFono to do something. \a handler gets the answer or an error, also if oFono is not
    /// there or stops, or has too many commands to answer (LimitsExceeded), unless \a context is
    /// destroyed before.
    void command(const Command &command, std::chrono::milliseconds patience, QObject *context,
                 const AnswerHandler &handler);

Q_SIGNALS:
    void statusChanged();
    /// A modem has come or gone, has other interfaces than before, or is online or is not any more.
    void modemChanged(const QString &modem);
    /// oFono has sent a signal that this object was told to follow.
    void received(const QDBusMessage &message);

private Q_SLOTS:
    void loseBus();
    void receive(const QDBusMessage &message);

private:
    Q_DISABLE_COPY(Ofono)

    struct Modem
    {
        bool online = false;
        QStringList interfaces;
    };
    struct Followed
    {
        QString interface;
        QString member;
        QString signature;
    };
    using SignalSwitch = bool (QDBusConnection::*)(const QString &, const QString &,
                                                   const QString &, const QString &,
                                                   const QStringList &, const QString &, QObject *,
                                                   const char *);

    void askForOwner();
    void setOwner(const QString &owner);
    void switchSignals(SignalSwitch change);
    void forgetModems();
    void askForModems();
    void readModems(const QDBusMessage &answer);
    void handle(const QDBusMessage &message);
    void changeModem(const QDBusMessage &message);
    void setModem(const QString &path, const Modem &modem);
    void removeModem(const QString &path);
    void readQuery(const Command &question, const QString &signature,
                   const QPointer<QObject> &context, const AnswerHandler &handler,
                   const QDBusMessage &answer);
    bool isFromStranger(const QDBusMessage &answer, const QString &owner) const;
    bool awaitsAnswers() const { return m_questions + m_commands > 0; }
    void watchForSilence();
    void suspectSilence();
    Telephony::Status currentStatus() const;
    void updateStatus();

    QDBusConnection m_bus;
    std::unique_ptr<QDBusServiceWatcher> m_serviceWatcher;
    QVector<Followed> m_followed;
    Patience m_patience;
    Turns m_turns;

    bool m_hasBus = true;
    bool m_ownerKnown = false;
    QString m_owner; ///< The unique name of oFono; empty without one.
    std::unique_ptr<QObject> m_life; ///< The context of the answers of this owner.
    std::unique_ptr<CallQueue> m_calls; ///< The questions to this owner.
    bool m_refused = false; ///< Whether oFono has not told its modems.
    bool m_known = false; ///< Whether the first questions are answered.
    int m_questions = 0;
    int m_commands = 0;
    QTimer m_silence;
    bool m_pinged = false;
    bool m_hung = false;
    std::map<QString, Modem> m_modems; ///< By path.
    QVector<std::function<void()>> m_waiting; ///< Until the modems are known.
    Telephony::Status m_status = Telephony::Starting;
};
