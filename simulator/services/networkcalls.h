// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QObject>
#include <QString>

#include <functional>
#include <map>

/// A call of a modem, as the network has it.
struct NetworkCall
{
    /// The values are those of +CLCC (3GPP TS 27.007, 7.18).
    enum class State { Active, Held, Dialing, Alerting, Incoming, Waiting };

    int id = 0; ///< From 1 on. The id of a call that has ended is used again.
    State state = State::Active;
    bool isIncoming = false;
    QString number; ///< Empty if the other side withholds it.
    bool isInConference = false;
    bool isHeldByRemote = false;
};

/// Returns oFono's name of a state, such as "active".
QString nameOf(NetworkCall::State state);

/// The calls of one modem as the network has them: which there are, and what becomes of them when
/// the user or the other side does something (3GPP TS 22.030, 6.5.5). Calls that are active at the
/// same time are in one conference, and so are calls that are held at the same time.
///
/// A function that cannot be done now returns false, or 0 in place of an id, and changes nothing.
class NetworkCalls : public QObject
{
    Q_OBJECT

public:
    enum class Ending { Local, Remote, Network };

    using State = NetworkCall::State;
    using ById = std::map<int, NetworkCall>;

    static constexpr int MostCalls = 7;
    static constexpr int MostInConference = 5;

    using QObject::QObject;

    const ById &all() const { return m_calls; }
    /// Returns the call with this id, or null.
    const NetworkCall *find(int id) const;
    bool has(State state) const;

    /// Calls a number. The active calls are held. Returns the id of the call.
    int dial(const QString &number);
    /// Answers the call that is incoming.
    bool answer();
    /// Ends all calls but a waiting one.
    bool hangUp();
    /// Rejects the waiting call or, without one, ends the calls that are held.
    bool endHeldOrWaiting();
    /// Ends the active calls, and answers the waiting call or takes the held ones back.
    bool endActive();
    /// Ends one call.
    bool end(int id);
    /// Holds the active calls, and answers the waiting call or takes the held ones back.
    bool swap();
    /// Holds all active calls but this one.
    bool split(int id);
    /// Makes one conference of the active and the held calls.
    bool join();
    /// Ends all calls of the conference.
    bool endConference();
    /// Connects the active and the held call with each other, and leaves them.
    bool transfer();

    /// A call comes in from \a number, which is empty if it is withheld. If there are other calls,
    /// it waits. Only one call may be incoming or waiting. Returns its id.
    int ring(const QString &number);
    /// The phone of the other side rings.
    bool alertRemote(int id);
    bool answerRemote(int id);
    /// The other side ends or rejects the call.
    bool endRemote(int id);
    /// The other side holds the call, or takes it back.
    bool holdRemote(int id, bool held);
    /// The network loses all calls.
    void lose();

Q_SIGNALS:
    void added(const NetworkCall &call);
    /// A part of the call other than its id and its number has changed.
    void changed(const NetworkCall &call);
    /// The call is not in the list any more.
    void ended(const NetworkCall &call, NetworkCalls::Ending ending);

private:
    using Test = bool (*)(const NetworkCall &);

    int add(State state, const QString &number);
    void update(const std::function<void()> &change, Ending ending = Ending::Local);
    void settle();
    bool endWhere(Test test, Ending ending = Ending::Local);
    void remove(Test test);
    void set(State from, State to);
    bool isDialing() const;
    bool isBusy() const;
    int freeId() const;
    int count(State state) const;

    ById m_calls;
};

/// Returns oFono's name of a reason: "local", "remote" or "network".
QString nameOf(NetworkCalls::Ending ending);
