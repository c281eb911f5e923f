// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "message.h"

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
    Q_EMIT PropertyChanged(QStringLiteral("State"), QDBusVariant(state));
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
