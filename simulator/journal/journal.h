// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "busmessage.h"
#include "command.h"
#include "transcript.h"
#include "watchedbus.h"

#include <QAbstractListModel>
#include <QHash>
#include <QTimer>
#include <QVector>

#include <deque>
#include <memory>
#include <vector>

/// The last 1,000 messages between the call UI and the others on its buses, each call with what
/// came of it. A newer entry has a higher row.
class Journal : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role {
        TimeRole = Qt::UserRole, ///< "time": local, hh:mm:ss.zzz.
        BusRole, ///< "bus": as given to watch().
        KindRole, ///< "kind": "call" or "signal".
        IncomingRole, ///< "incoming": to the call UI, not from it.
        /// "peer": the other side, by its well-known name where it has one; empty where the call UI
        /// tells all who care.
        PeerRole,
        InterfaceRole, ///< "interface": empty where the message names none.
        MemberRole, ///< "member".
        PathRole, ///< "path".
        ArgumentsRole, ///< "arguments": a short line.
        /// "outcome": the values of the reply as a short line ("done" where there are none), or the
        /// error's name and message. Empty for a signal, and for a call that has no reply yet.
        OutcomeRole,
        FailedRole, ///< "failed": the reply is an error.
        /// "milliseconds": from the call to the reply. -1 where there is none, or none yet.
        MillisecondsRole
    };

    explicit Journal(Transcript &transcript, QObject *parent = nullptr);
    ~Journal() override;

    /// Takes down what the call UI, which is \a uiProgram, sends and gets on \a bus from now on.
    /// Where that cannot be done, or no longer, says so.
    void watch(const WatchedBus::Bus &bus, const QString &uiProgram);

    /// Adds a message of the bus \a bus: a new entry, or the end of the call that it answers.
    /// Otherwise as UiTraffic::seen().
    void add(const QString &bus, const BusMessage &message, bool incoming, const QString &peer);

    /// Removes all entries.
    void clear();

    /// An entry in one line.
    QString line(int row) const;

    QVector<Command> commands();

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    struct Entry
    {
        BusMessage::Type type;
        qint64 time;
        QString bus;
        bool isIncoming;
        QString peer;
        QString path;
        QString interface;
        QString member;
        QString arguments;
        QString call; ///< Its key among the open calls; empty where no reply is awaited.
        QString outcome;
        bool hasFailed;
        double milliseconds;
    };

    void append(const Entry &entry);
    void complete(const QString &call, const BusMessage &reply);
    void print(const QStringList &arguments, const Finish &finish);
    void printLast(int count, const Finish &finish);
    void catchUp();
    void caughtUp();

    Transcript &m_transcript;
    std::deque<Entry> m_entries;
    qint64 m_removed = 0; ///< How many entries were there before those that are left.
    QHash<QString, qint64> m_open; ///< Counts from the first entry ever; by bus, caller and cookie.
    std::vector<std::unique_ptr<WatchedBus>> m_buses;
    int m_mark = 0;
    int m_awaited = 0; ///< Buses that the mark is yet to come by on.
    QTimer m_patience;
    std::function<void()> m_whenCaughtUp;
};
