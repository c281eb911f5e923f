// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "messages.h"

#include "phonenumber.h"

#include <QDBusMessage>
#include <QPointer>

#include <algorithm>
#include <utility>

namespace {

const QLatin1String managerInterface("org.ofono.MessageManager");
const QLatin1String messageInterface("org.ofono.Message");
const QLatin1String messageRemoved("MessageRemoved");

/// A message has 255 parts at most, of 153 characters each.
constexpr int longestText = 255 * 153;

} // namespace

Messages::Messages(QObject *parent)
    : QAbstractListModel(parent)
{
    m_ofono.follow(managerInterface, messageRemoved, QStringLiteral("o"));
    m_ofono.follow(messageInterface, QStringLiteral("PropertyChanged"), QStringLiteral("sv"));
    connect(&m_ofono, &Ofono::statusChanged, this, &Messages::statusChanged);
    connect(&m_ofono, &Ofono::modemChanged, this, &Messages::followModem);
    connect(&m_ofono, &Ofono::received, this, &Messages::receive);
}

int Messages::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_messages.size());
}

QVariant Messages::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    return valueOf(m_messages.at(index.row()), role);
}

QHash<int, QByteArray> Messages::roleNames() const
{
    return {{Id, "messageId"},
            {Number, "number"},
            {Text, "text"},
            {Modem, "modem"},
            {State, "messageState"}};
}

QVariant Messages::valueOf(const Message &message, int role)
{
    switch (role) {
    case Id:
        return message.id;
    case Number:
        return message.number;
    case Text:
        return message.text;
    case Modem:
        return message.modem;
    case State:
        return message.path.isEmpty() ? QStringLiteral("sending") : QStringLiteral("pending");
    default:
        return {};
    }
}

QVariantMap Messages::valuesOf(const Message &message) const
{
    QVariantMap values;
    const QHash<int, QByteArray> names = roleNames();
    for (auto it = names.cbegin(); it != names.cend(); ++it)
        values.insert(QString::fromLatin1(it.value()), valueOf(message, it.key()));
    return values;
}

int Messages::send(const QString &number, const QString &text, const QString &modem)
{
    const Message message{++m_lastId, PhoneNumber::withoutSeparators(number), text, modem, {}};
    m_ofono.whenKnown([this, message] { accept(message); });
    return message.id;
}

void Messages::accept(Message message)
{
    const QString modem = m_ofono.modemFor(message.modem, managerInterface);
    if (m_ofono.status() == Telephony::NoService || m_ofono.status() == Telephony::NoBus) {
        fail(message, Telephony::NoStack);
    } else if (!PhoneNumber::isAddress(message.number) || message.text.size() > longestText) {
        fail(message, Telephony::InvalidFormat);
    } else if (modem.isEmpty()) {
        fail(message,
             m_ofono.status() == Telephony::Hung ? Telephony::NoAnswer : Telephony::NoModem);
    } else if (m_messages.size() >= mostBusObjects) {
        fail(message, Telephony::InProgress);
    } else {
        message.modem = modem;
        const QPointer<Messages> self(this);
        const int row = rowCount();
        beginInsertRows({}, row, row);
        m_messages.append(message);
        endInsertRows();
        if (!self)
            return;
        sendNext();
        Q_EMIT countChanged();
    }
}

/// The stack gets one message at a time. It answers when it has queued the message.
void Messages::sendNext()
{
    const auto next = std::find_if(m_messages.cbegin(), m_messages.cend(),
                                   [](const Message &message) { return message.path.isEmpty(); });
    if (m_isSending || next == m_messages.cend())
        return;
    m_isSending = true;
    m_ofono.command(
        {next->modem, managerInterface, QStringLiteral("SendMessage"), {next->number, next->text}},
        m_ofono.patience().command, this,
        [this, id = next->id](const QDBusMessage &answer) { readPath(id, answer); });
}

void Messages::readPath(int id, const QDBusMessage &answer)
{
    m_isSending = false;
    const int row = rowOf(id);
    const bool isPath =
        answer.type() == QDBusMessage::ReplyMessage && answer.signature() == QLatin1String("o");
    const QPointer<Messages> self(this);
    const QVector<QDBusMessage> early = std::exchange(m_early, {});
    if (row >= 0 && isPath) {
        m_messages[row].path = busPath(answer);
        Q_EMIT dataChanged(index(row), index(row), {State});
    } else if (row >= 0) {
        failRow(row, Telephony::errorOf(answer));
    }
    for (const QDBusMessage &message : early) {
        if (self)
            receive(message);
    }
    if (self)
        sendNext();
}

void Messages::receive(const QDBusMessage &message)
{
    const bool isRemoved = message.member() == messageRemoved;
    const int row = rowOf(isRemoved ? busPath(message) : message.path());
    if (row >= 0 && isRemoved)
        failRow(row, Telephony::Canceled);
    else if (row >= 0)
        change(row, busProperty(message));
    else if (m_isSending && m_early.size() < mostBusObjects)
        m_early.append(message);
}

void Messages::change(int row, const BusProperty &property)
{
    if (property.name != QLatin1String("State"))
        return;
    const Message message = m_messages.at(row);
    if (property.value == QLatin1String("failed"))
        failRow(row, Telephony::Failed);
    else if (property.value == QLatin1String("sent") && removeRow(row))
        Q_EMIT sent(valuesOf(message));
}

void Messages::followModem(const QString &modem)
{
    if (m_ofono.has(modem, managerInterface))
        return;
    const QPointer<Messages> self(this);
    while (self) {
        const auto found =
            std::find_if(m_messages.cbegin(), m_messages.cend(),
                         [&](const Message &message) { return message.modem == modem; });
        if (found == m_messages.cend())
            break;
        failRow(static_cast<int>(found - m_messages.cbegin()), Telephony::NotAvailable);
    }
}

int Messages::rowOf(int id) const
{
    const auto found = std::find_if(m_messages.cbegin(), m_messages.cend(),
                                    [id](const Message &message) { return message.id == id; });
    return found == m_messages.cend() ? -1 : static_cast<int>(found - m_messages.cbegin());
}

int Messages::rowOf(const QString &path) const
{
    const auto found = std::find_if(m_messages.cbegin(), m_messages.cend(),
                                    [&](const Message &message) { return message.path == path; });
    return found == m_messages.cend() ? -1 : static_cast<int>(found - m_messages.cbegin());
}

bool Messages::removeRow(int row)
{
    const QPointer<Messages> self(this);
    beginRemoveRows({}, row, row);
    m_messages.remove(row);
    endRemoveRows();
    if (self)
        Q_EMIT countChanged();
    return self;
}

void Messages::failRow(int row, Telephony::Error error)
{
    const Message message = m_messages.at(row);
    if (removeRow(row))
        fail(message, error);
}

void Messages::fail(const Message &message, Telephony::Error error)
{
    Q_EMIT failed(valuesOf(message), error, Telephony::explanationOf(error));
}
