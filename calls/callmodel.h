// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "call.h"

#include <QAbstractListModel>
#include <QVector>

/// A list of calls, one in each row, in the order in which they have come.
///
/// Every function that changes it emits its signals last. A handler may destroy the model, but not
/// one of rowsAboutToBeInserted() and rowsAboutToBeRemoved(), which Qt emits in between.
class CallModel : public QAbstractListModel
{
    Q_OBJECT
    /// The number of calls.
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    /// The id of the first call that may be answered, which is incoming or waiting; 0 if there is
    /// none. The signals of this property and the next are also emitted when a role of the call
    /// changes, so that a binding with call() follows it.
    Q_PROPERTY(int ringing READ ringing NOTIFY ringingChanged)
    /// The id of the call that the user speaks in: the first active one, or one that is being
    /// dialled, or one that is held; 0 if there is none.
    Q_PROPERTY(int ongoing READ ongoing NOTIFY ongoingChanged)

public:
    explicit CallModel(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    int count() const { return rowCount(); }
    int ringing() const { return m_ringing; }
    int ongoing() const { return m_ongoing; }

    /// Returns the call with that id with all its roles by name; empty if there is none.
    Q_INVOKABLE QVariantMap call(int call) const;
    /// Returns for how long the call with that id has been active, in milliseconds, or 0 if it has
    /// not been. It does not follow the clock when that is set.
    Q_INVOKABLE double duration(int call) const;

Q_SIGNALS:
    void countChanged();
    void ringingChanged();
    void ongoingChanged();
    /// A call has ended, and its row is gone. \a call has all its roles as they were, and as
    /// "reason" why it has ended: "local", "remote", "network", or an empty text if nobody knows.
    void ended(const QVariantMap &call);

protected:
    /// Adds a call of \a modem, unless its path is taken or there are too many.
    void add(const QString &modem, const BusObject &object);
    void change(const QString &path, const BusProperty &property);
    void setReason(const QString &path, const QString &reason);
    /// Removes the call of \a modem with that path.
    void remove(const QString &modem, const QString &path);
    void removeAll(const QString &modem);

    const QVector<Call> &calls() const { return m_calls; }
    const Call *find(int id) const;

private:
    int rowOf(const QString &path) const;
    void removeRow(int row);
    int firstRinging() const;
    int firstOngoing() const;
    /// Emits the signals of the properties that have changed, or whose call has the id \a changed.
    /// Returns whether the model still exists.
    bool updateProperties(int changed = -1);

    QVector<Call> m_calls;
    int m_lastId = 0;
    int m_count = 0;
    int m_ringing = 0;
    int m_ongoing = 0;
};
