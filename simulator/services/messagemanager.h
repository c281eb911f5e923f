// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include "ofonoobject.h"

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QTimer>

#include <map>
#include <memory>

class Message;
class Modem;
class PhoneLine;

/// The text messages that a modem sends, as in oFono's D-Bus API. Without a network they wait for
/// it.
class MessageManager : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.ofono.MessageManager")

public:
    static QString interface() { return QStringLiteral("org.ofono.MessageManager"); }

    /// An adaptor on the object of \a modem, which owns it. \a line must outlive it.
    MessageManager(Modem &modem, PhoneLine &line);
    ~MessageManager() override;

public Q_SLOTS:
    QVariantMap GetProperties();
    OfonoObjects GetMessages();
    QDBusObjectPath SendMessage(const QString &number, const QString &text);

Q_SIGNALS:
    void MessageAdded(const QDBusObjectPath &path, const QVariantMap &properties);
    void MessageRemoved(const QDBusObjectPath &path);

private:
    void sendAll();
    void send(int id);
    void remove(int id);
    void removeAll();

    Modem &m_modem;
    PhoneLine &m_line;
    std::map<int, std::unique_ptr<Message>> m_messages; ///< By a number of their own.
    int m_lastId = 0;
    QTimer m_delay; ///< The network takes messages after a while.
};
