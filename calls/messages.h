// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "busvalues.h"
#include "ofono.h"

#include <QAbstractListModel>
#include <QDBusMessage>
#include <QQmlParserStatus>
#include <QVariantMap>
#include <QVector>

/// Text messages on their way, one in each row, from send() until they are sent or have failed. It
/// follows oFono's interfaces org.ofono.MessageManager and org.ofono.Message, and has the messages
/// of this object alone.
class Messages : public QAbstractListModel, public QQmlParserStatus
{
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    /// Whether there is a telephony stack.
    Q_PROPERTY(Telephony::Status status READ status NOTIFY statusChanged)
    /// The number of messages on their way.
    Q_PROPERTY(int count READ count NOTIFY countChanged)

public:
    enum Role {
        Id = Qt::UserRole,
        Number,
        Text,
        Modem,
        State ///< "sending" until the stack has taken it, then "pending".
    };

    explicit Messages(QObject *parent = nullptr);

    void classBegin() override { }
    /// Connects to the bus.
    void componentComplete() override { m_ofono.start(); }

    /// Sets how patient this object is with the stack. Call this before componentComplete().
    void setPatience(const Ofono::Patience &patience) { m_ofono.setPatience(patience); }

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    Telephony::Status status() const { return m_ofono.status(); }
    int count() const { return rowCount(); }

    /// Sends \a text to \a number, in any usual form, through \a modem or the first that is online.
    /// Returns the id of the message. Its row and its signals come later.
    Q_INVOKABLE int send(const QString &number, const QString &text,
                         const QString &modem = QString());

Q_SIGNALS:
    void statusChanged();
    void countChanged();
    /// The network has taken \a message, which has all its roles. Its row is gone.
    void sent(const QVariantMap &message);
    /// \a message is not sent. Its row is gone, if there was one. \a explanation tells the user
    /// why, in the user's language.
    void failed(const QVariantMap &message, int error, const QString &explanation);

private:
    struct Message
    {
        int id = 0;
        QString number;
        QString text;
        QString modem;
        QString path; ///< Empty while the stack has not taken it.
    };

    void accept(Message message);
    void sendNext();
    void readPath(int id, const QDBusMessage &answer);
    void receive(const QDBusMessage &message);
    void change(int row, const BusProperty &property);
    void followModem(const QString &modem);
    int rowOf(int id) const;
    int rowOf(const QString &path) const;
    /// Returns whether this object still exists.
    bool removeRow(int row);
    void failRow(int row, Telephony::Error error);
    void fail(const Message &message, Telephony::Error error);

    static QVariant valueOf(const Message &message, int role);
    QVariantMap valuesOf(const Message &message) const;

    Ofono m_ofono;
    QVector<Message> m_messages;
    bool m_isSending = false; ///< Whether the stack is about to take a message.
    /// The signals of unknown messages meanwhile. QtDBus may deliver them before the answer,
    /// although they have come after it.
    QVector<QDBusMessage> m_early;
    int m_lastId = 0;
};
