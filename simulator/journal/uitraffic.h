// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "busmessage.h"

#include <QHash>
#include <QMap>
#include <QObject>
#include <QQueue>
#include <QSet>
#include <QStringList>

#include <functional>

/// Finds the messages to and from the call UI among all messages on a bus.
///
/// It asks which connections belong to the call UI as they appear, and keeps messages in order
/// until the answer. Calls of the bus daemon are left out, except for RequestName, and so are the
/// interfaces that control the simulated services.
class UiTraffic : public QObject
{
    Q_OBJECT

public:
    /// Finds out whether the connection \a name belongs to the call UI, and calls \a answer once,
    /// at once or later. A connection that has gone does not.
    using Ask = std::function<void(const QString &name, const std::function<void(bool)> &answer)>;

    explicit UiTraffic(Ask ask, QObject *parent = nullptr);

    /// Takes the next message on the bus.
    void take(const BusMessage &message);

    /// Sets the connections and the owners of well-known names before the first message. Messages
    /// wait until this has been called, because what they tell of owners is newer.
    void start(const QMap<QString, QString> &owners, const QStringList &connections);

Q_SIGNALS:
    /// The call UI receives (\a incoming) or sends a message. \a peer is the well-known name of the
    /// other process, or the name of its connection. It is empty for a broadcast of the call UI.
    void seen(const BusMessage &message, bool incoming, const QString &peer);
    /// The mark with this number, which the handset has sent, was seen after everything before it.
    void marked(const QString &mark);

private:
    void askAbout(const QString &name);
    void settle(const QString &name, bool isUi);
    void drain();
    void handle(const BusMessage &message);
    void noteOwner(const QString &name, const QString &owner);
    bool isUi(const QString &name) const;
    bool reachesUi(const BusMessage &message) const;
    QString peerName(const QString &name) const;

    const Ask m_ask;
    QQueue<BusMessage> m_waiting;
    int m_questions = 1; ///< Without an answer so far; the first one is answered by start().
    QSet<QString> m_known; ///< Connections that have been asked about.
    QSet<QString> m_ui; ///< The connections of the call UI.
    QMap<QString, QString> m_owners; ///< By well-known name.
};
