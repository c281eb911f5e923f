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

/// Tells from all messages on a bus those that the call UI sends or gets.
///
/// Which connections are the call UI's is asked for as they appear; messages wait for the answer,
/// in order. What the bus itself is asked does not count, apart from the call UI's taking a name,
/// nor does the handset's own control of its services.
class UiTraffic : public QObject
{
    Q_OBJECT

public:
    /// Finds out whether the connection \a name is the call UI's, and calls \a answer once with
    /// that, at once or later. One that is gone is not.
    using Ask = std::function<void(const QString &name, const std::function<void(bool)> &answer)>;

    explicit UiTraffic(Ask ask, QObject *parent = nullptr);

    /// The next message on the bus.
    void take(const BusMessage &message);

    /// Says which connections there were before the first message, and who of them owned which
    /// well-known name; what messages tell is newer. They wait until this has been called.
    void start(const QMap<QString, QString> &owners, const QStringList &connections);

Q_SIGNALS:
    /// Something that the call UI gets (\a incoming) or sends. \a peer is the other side, by its
    /// well-known name where it has one; empty where the call UI tells all who care.
    void seen(const BusMessage &message, bool incoming, const QString &peer);
    /// The handset's own mark with this number has come by, after everything before it.
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
    int m_questions = 1; ///< Not answered yet; the first is who owns which name.
    QSet<QString> m_known; ///< Connections asked about.
    QSet<QString> m_ui; ///< Those of the call UI.
    QMap<QString, QString> m_owners; ///< By well-known name.
};
