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

/// A list of the last 1,000 calls and signals between the call UI and other processes. A call has
/// its reply. The newest entry has the highest row.
class Journal : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role {
        TimeRole = Qt::UserRole, ///< "time": the local time as hh:mm:ss.zzz.
        BusRole, ///< "bus": the name that was given to watch().
        KindRole, ///< "kind": "call" or "signal".
        IncomingRole, ///< "incoming": whether it went to the call UI.
        /// "peer": the well-known name of the other process, or the name of its connection. Empty
        /// for a broadcast of the call UI.
        PeerRole,
        InterfaceRole, ///< "interface": empty if the message has none.
        MemberRole, ///< "member".
        PathRole, ///< "path".
        ArgumentsRole, ///< "arguments": the values as a short line.
        /// "outcome": the values of the reply as a short line ("done" if it has none), or the name
        /// and the message of the error. Empty for a signal and for a call without a reply so far.
        OutcomeRole,
        FailedRole, ///< "failed": whether the reply is an error.
        /// "milliseconds": the time from the call to the reply. -1 if there is no reply so far.
        MillisecondsRole
    };

    explicit Journal(Transcript &transcript, QObject *parent = nullptr);
    ~Journal() override;

    /// Records the messages to and from the call UI on \a bus from now on. The call UI is any
    /// process that runs \a uiProgram. Prints a message if the bus cannot, or can no longer, be
    /// watched.
    void watch(const WatchedBus::Bus &bus, const QString &uiProgram);

    /// Adds an entry for a message on \a bus, or completes the entry of the call that it answers.
    /// The other arguments are those of UiTraffic::seen().
    void add(const QString &bus, const BusMessage &message, bool incoming, const QString &peer);

    /// Removes all entries.
    void clear();

    /// Returns an entry as one line.
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
        QString call; ///< The key in m_open; empty if no reply is expected.
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
    qint64 m_removed = 0; ///< The number of entries that were removed so far.
    QHash<QString, qint64> m_open; ///< Entries without a reply, counted from the first one ever.
    std::vector<std::unique_ptr<WatchedBus>> m_buses;
    int m_mark = 0;
    int m_awaited = 0; ///< The number of buses whose mark has not been seen.
    QTimer m_patience;
    std::function<void()> m_whenCaughtUp;
};
