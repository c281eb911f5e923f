// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "busmessage.h"

#include "valuetext.h"

namespace {

constexpr int fixedSize = 12; ///< Of the header, before its fields.

enum Field {
    Path = 1,
    Interface,
    Member,
    ErrorName,
    ReplyCookie,
    Destination,
    Sender,
    Signature,
    FileDescriptors
};

void readField(WireReader &reader, BusMessage &message)
{
    reader.align(8);
    const auto field = reader.number<quint8>();
    const QByteArray type = reader.signature();
    const QString text = type == QByteArrayLiteral("s") || type == QByteArrayLiteral("o")
        ? reader.string()
        : QString();
    const quint32 number = type == QByteArrayLiteral("u") ? reader.number<quint32>() : 0;
    const QByteArray signature = type == QByteArrayLiteral("g") ? reader.signature() : QByteArray();

    switch (field) {
    case Path:
        message.path = text;
        break;
    case Interface:
        message.interface = text;
        break;
    case Member:
        message.member = text;
        break;
    case ErrorName:
        message.errorName = text;
        break;
    case ReplyCookie:
        message.replyCookie = number;
        break;
    case Destination:
        message.destination = text;
        break;
    case Sender:
        message.sender = text;
        break;
    case Signature:
        message.signature = signature;
        break;
    default:
        break;
    }
}

} // namespace

std::optional<BusMessage> BusMessage::parse(const QByteArray &bytes, qint64 time)
{
    if (bytes.size() < fixedSize)
        return {};
    const int type = static_cast<uchar>(bytes.at(1));
    if (type < static_cast<int>(Type::Call) || type > static_cast<int>(Type::Signal))
        return {};

    BusMessage message;
    message.type = static_cast<Type>(type);
    message.time = time;
    message.wantsReply = (bytes.at(2) & 1) == 0;
    message.order =
        bytes.at(0) == 'B' ? WireReader::Order::BigEndian : WireReader::Order::LittleEndian;

    WireReader reader(bytes, message.order);
    reader.number<quint64>(); // what is read above, and the length of the body
    message.cookie = reader.number<quint32>();
    const auto length = reader.number<quint32>();
    const qint64 end = qint64(reader.position()) + length;
    while (reader.isOk() && reader.position() < end)
        readField(reader, message);
    reader.align(8);
    if (!reader.isOk())
        return {};
    message.body = bytes.mid(reader.position());
    return message;
}

QString BusMessage::values() const
{
    return ValueText::of(signature, WireReader(body, order));
}

QStringList BusMessage::strings() const
{
    QStringList strings;
    WireReader reader(body, order);
    for (int i = 0; i < signature.size() && signature.at(i) == 's'; ++i) {
        const QString string = reader.string();
        if (!reader.isOk())
            break;
        strings.append(string);
    }
    return strings;
}
