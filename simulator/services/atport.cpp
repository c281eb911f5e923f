// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "atport.h"

#include "phoneline.h"

#include <QHostAddress>
#include <QTcpSocket>

AtPort::AtPort(PhoneLine &line, QObject *parent)
    : QObject(parent)
    , m_line(line)
    , m_session(line)
{
    m_line.setOn(false);
    connect(&m_server, &QTcpServer::newConnection, this, &AtPort::accept);
    connect(&m_line, &PhoneLine::conditionChanged, this, &AtPort::followCondition);
    connect(&m_session, &AtSession::sent, this, [this](const QByteArray &bytes) {
        if (m_socket)
            m_socket->write(bytes);
    });
}

AtPort::~AtPort() = default;

bool AtPort::listen(quint16 port)
{
    const bool listens =
        m_server.listen(QHostAddress::LocalHost, port) || m_server.listen(QHostAddress::LocalHost);
    if (listens)
        m_port = m_server.serverPort();
    return listens;
}

void AtPort::accept()
{
    while (QTcpSocket *const socket = m_server.nextPendingConnection()) {
        if (m_socket)
            m_socket->disconnect(this);
        delete m_socket;
        m_socket = socket;
        // A modem's lines do not wait for the other side to confirm the previous one.
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        m_session.reset();
        connect(socket, &QTcpSocket::readyRead, this,
                [this, socket] { m_session.receive(socket->readAll()); });
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }
}

/// It is found again where it was.
void AtPort::followCondition()
{
    if (m_line.condition() == PhoneLine::Condition::Gone) {
        m_server.close();
        m_line.setOn(false);
        if (m_socket)
            m_socket->abort();
    } else if (!m_server.isListening()) {
        m_server.listen(QHostAddress::LocalHost, m_port);
    }
}
