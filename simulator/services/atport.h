// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "atsession.h"

#include <QPointer>
#include <QTcpServer>

class PhoneLine;
class QTcpSocket;

/// A modem that speaks AT over TCP, with programs of this machine only. Whoever connects last
/// speaks with it. When it is pulled out, it hangs up on them.
class AtPort : public QObject
{
    Q_OBJECT

public:
    /// \a line must outlive it.
    explicit AtPort(PhoneLine &line, QObject *parent = nullptr);
    ~AtPort() override;

    /// Listens at \a port if that is free, otherwise at another one. Returns false if there is
    /// none.
    bool listen(quint16 port);
    quint16 port() const { return m_port; }

    AtSession &session() { return m_session; }

private:
    void accept();
    void followCondition();

    PhoneLine &m_line;
    AtSession m_session;
    QTcpServer m_server;
    quint16 m_port = 0;
    QPointer<QTcpSocket> m_socket; ///< A child of the server.
};
