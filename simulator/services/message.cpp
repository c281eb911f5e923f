// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "message.h"

#include <QDBusMessage>

#include <utility>

Message::Message(QDBusConnection bus, QString path, Content content)
    : m_bus(std::move(bus))
    , m_path(std::move(path))
    , m_content(std::move(content))
    , m_state(QStringLiteral("pending"))
{
    m_bus.registerObject(m_path, this, QDBusConnection::ExportScriptableContents);
}

Message::~Message()
{
    m_bus.unregisterObject(m_path);
}

void Message::setState(const QString &state)
{
    m_state = state;
    // QtDBus relays a signal later, and not at all if the object is gone by then.
    QDBusMessage signal = QDBusMessage::createSignal(m_path, QStringLiteral("org.ofono.Message"),
                                                     QStringLiteral("PropertyChanged"));
    signal.setArguments({QStringLiteral("State"), QVariant::fromValue(QDBusVariant(state))});
    m_bus.send(signal);
}

QVariantMap Message::GetProperties() const
{
    return {{QStringLiteral("State"), m_state}};
}

void Message::Cancel()
{
    setState(QStringLiteral("failed"));
    Q_EMIT cancelled();
}
