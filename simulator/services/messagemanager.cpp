// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "messagemanager.h"

#include "message.h"
#include "modem.h"
#include "phoneline.h"

#include <QVector>

#include <chrono>
#include <utility>

namespace {

/// (3GPP TS 23.040, 9.1.2.5.)
constexpr int mostDigits = 20;

/// From when a message is taken until it is sent.
constexpr std::chrono::milliseconds delay(200);

} // namespace

MessageManager::MessageManager(Modem &modem, PhoneLine &line)
    : QDBusAbstractAdaptor(&modem)
    , m_modem(modem)
    , m_line(line)
{
    m_delay.setSingleShot(true);
    m_delay.setInterval(delay);
    connect(&m_delay, &QTimer::timeout, this, &MessageManager::sendAll);
    connect(&line, &PhoneLine::registeredChanged, &m_delay, qOverload<>(&QTimer::start));
    connect(&modem, &Modem::interfacesChanged, this, [this] {
        if (!m_modem.has(interface()))
            removeAll();
    });
}

MessageManager::~MessageManager() = default;

QVariantMap MessageManager::GetProperties()
{
    m_modem.offers(interface());
    return {{QStringLiteral("ServiceCenterAddress"), QStringLiteral("+15550000")},
            {QStringLiteral("UseDeliveryReports"), false},
            {QStringLiteral("Bearer"), QStringLiteral("cs-preferred")},
            {QStringLiteral("Alphabet"), QStringLiteral("default")}};
}

OfonoObjects MessageManager::GetMessages()
{
    OfonoObjects messages;
    if (!m_modem.offers(interface()))
        return messages;
    for (const auto &[id, message] : m_messages)
        messages.append({QDBusObjectPath(message->path()), message->GetProperties()});
    return messages;
}

/// The message is taken at once. The modem sends it at its own pace.
QDBusObjectPath MessageManager::SendMessage(const QString &number, const QString &text)
{
    if (!m_modem.offers(interface()))
        return {};
    if (!PhoneLine::isNumber(number, mostDigits)) {
        m_modem.refuse(OfonoError::InvalidFormat);
        return {};
    }
    const int id = ++m_lastId;
    const QString path = QStringLiteral("%1/message_%2").arg(m_modem.path()).arg(id);
    auto message = std::make_unique<Message>(m_modem.bus(), path, Message::Content{number, text});
    connect(message.get(), &Message::cancelled, this, [this, id] { remove(id); });
    Q_EMIT MessageAdded(QDBusObjectPath(path), message->GetProperties());
    m_messages.emplace(id, std::move(message));
    m_delay.start();
    return QDBusObjectPath(path);
}

/// Without a network they wait. A message may be gone when its turn comes.
void MessageManager::sendAll()
{
    QVector<int> ids;
    for (const auto &[id, message] : m_messages)
        ids.append(id);
    for (const int id : std::as_const(ids))
        m_line.pace().add([this, id] { send(id); });
}

void MessageManager::send(int id)
{
    const auto found = m_messages.find(id);
    if (found == m_messages.cend() || !m_line.isRegistered())
        return;
    Message &message = *found->second;
    const bool isSent = m_line.sendMessage(message.content().number, message.content().text);
    message.setState(isSent ? QStringLiteral("sent") : QStringLiteral("failed"));
    remove(id);
}

void MessageManager::remove(int id)
{
    const auto removed = m_messages.extract(id);
    Q_EMIT MessageRemoved(QDBusObjectPath(removed.mapped()->path()));
}

void MessageManager::removeAll()
{
    while (!m_messages.empty()) {
        m_messages.begin()->second->setState(QStringLiteral("failed"));
        remove(m_messages.begin()->first);
    }
}
