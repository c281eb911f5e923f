// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "fakebus.h"

#include "wireformat.h"

#include <QFile>
#include <QMutexLocker>

#include <cstring>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr auto serviceName = ":1.1";
constexpr auto clientName = ":1.2";
constexpr auto busName = "org.freedesktop.DBus";

constexpr char methodReturn = 2;
constexpr char signalMessage = 4;
constexpr char noReplyExpected = 1;

// The codes of header fields.
constexpr char pathField = 1;
constexpr char interfaceField = 2;
constexpr char memberField = 3;
constexpr char replySerialField = 5;
constexpr char senderField = 7;
constexpr char signatureField = 8;

quint32 numberAt(const QByteArray &bytes, int offset)
{
    return qFromLittleEndian<quint32>(bytes.constData() + offset);
}

WireFormat beginMessage(char type, qsizetype bodySize)
{
    WireFormat message;
    message.addByte('l');
    message.addByte(type);
    message.addByte(noReplyExpected);
    message.addByte(1); // The version of the protocol.
    message.add(static_cast<quint32>(bodySize));
    message.add(quint32(1)); // The serial of this message.
    return message;
}

/// Adds the last two fields of a header.
void addSender(WireFormat &message, const QByteArray &signature, const char *sender = serviceName)
{
    message.align(8);
    message.addByte(senderField);
    message.addSignature("s");
    message.addString(sender);
    message.align(8);
    message.addByte(signatureField);
    message.addSignature("g");
    message.addSignature(signature);
}

int padded(int size)
{
    return (size + 7) / 8 * 8;
}

/// Returns the member in the header of a valid message.
QByteArray memberOf(const QByteArray &header)
{
    int offset = 16;
    while (offset + 4 < header.size()) {
        const char field = header.at(offset);
        const char type = header.at(offset + 2);
        int size = 4;
        if (type == 'g') {
            size = header.at(offset + 4) + 2;
        } else if (type != 'u') {
            size = static_cast<int>(numberAt(header, offset + 4)) + 5;
            if (field == memberField)
                return header.mid(offset + 8, size - 5);
        }
        offset = padded(offset + 4 + size);
    }
    return {};
}

} // namespace

FakeBus::FakeBus()
    : m_listening(socket(AF_UNIX, SOCK_STREAM, 0))
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const QByteArray path = QFile::encodeName(m_folder.filePath(QStringLiteral("bus")));
    std::strncpy(address.sun_path, path.constData(), sizeof address.sun_path - 1);
    if (bind(m_listening, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0
        || listen(m_listening, 1) != 0)
        qFatal("There is no bus at %s.", path.constData());
    start();
}

FakeBus::~FakeBus()
{
    shutdown(m_listening, SHUT_RDWR);
    shutdown(m_client, SHUT_RDWR);
    wait();
    close(m_listening);
    close(m_client);
}

QByteArray FakeBus::address() const
{
    return "unix:path=" + QFile::encodeName(m_folder.filePath(QStringLiteral("bus")));
}

void FakeBus::setAnswer(const QByteArray &signature, const QByteArray &body,
                        const QByteArray &method)
{
    const QMutexLocker locker(&m_mutex);
    m_answers[method] = {signature, body};
}

void FakeBus::emitSignal(const QByteArray &path, const QByteArray &interface,
                         const QByteArray &member, const QByteArray &signature,
                         const QByteArray &body)
{
    const auto addText = [](WireFormat &message, char field, char type, const QByteArray &text) {
        message.align(8);
        message.addByte(field);
        message.addSignature(QByteArray(1, type));
        message.addString(text);
    };
    WireFormat message = beginMessage(signalMessage, body.size());
    message.addArray(8, [&] {
        addText(message, pathField, 'o', path);
        addText(message, interfaceField, 's', interface);
        addText(message, memberField, 's', member);
        addSender(message, signature);
    });
    message.align(8);
    message.append(body);
    writeMessage(message.bytes());
}

/// The client's calls are answered in another thread than that of emitSignal().
bool FakeBus::writeMessage(const QByteArray &message)
{
    const QMutexLocker locker(&m_mutex);
    return write(m_client, message.constData(), static_cast<size_t>(message.size()))
        == message.size();
}

void FakeBus::run()
{
    m_client = accept(m_listening, nullptr, nullptr);
    if (!authenticate())
        return;
    while (serve()) { }
}

bool FakeBus::read(char *data, qint64 size) const
{
    qint64 done = 0;
    while (done < size) {
        const qint64 count = ::read(m_client, data + done, static_cast<size_t>(size - done));
        if (count <= 0)
            return false;
        done += count;
    }
    return true;
}

/// Accepts every client.
bool FakeBus::authenticate()
{
    QByteArray line;
    char byte = 0;
    while (read(&byte, 1)) {
        line.append(byte);
        if (!line.endsWith("\r\n"))
            continue;
        QByteArray answer = "ERROR\r\n";
        if (line.startsWith("BEGIN"))
            return true;
        if (line.contains("AUTH EXTERNAL"))
            answer = "OK 00000000000000000000000000000000\r\n";
        if (write(m_client, answer.constData(), static_cast<size_t>(answer.size())) < 0)
            return false;
        line.clear();
    }
    return false;
}

bool FakeBus::serve()
{
    QByteArray header(16, '\0');
    if (!read(header.data(), header.size()))
        return false;
    const auto bodySize = static_cast<int>(numberAt(header, 4));
    const quint32 serial = numberAt(header, 8);
    QByteArray fields(padded(static_cast<int>(numberAt(header, 12))), '\0');
    QByteArray body(bodySize, '\0');
    if (!read(fields.data(), fields.size()) || !read(body.data(), body.size()))
        return false;
    if ((header.at(2) & noReplyExpected) != 0)
        return true;
    return writeMessage(reply(serial, memberOf(header + fields)));
}

QByteArray FakeBus::reply(quint32 serial, const QByteArray &member)
{
    QByteArray signature;
    WireFormat body;
    const QMutexLocker locker(&m_mutex);
    if (m_answers.contains(member)) {
        signature = m_answers[member].signature;
        body.append(m_answers[member].body);
    } else if (member == "Hello" || member == "GetNameOwner" || member == "Introspect") {
        signature = "s";
        body.addString(member == "Hello"            ? clientName
                           : member == "Introspect" ? "<node/>"
                                                    : serviceName);
    } else if (member == "NameHasOwner" || member == "StartServiceByName") {
        signature = member == "NameHasOwner" ? "b" : "u";
        body.add(quint32(1));
    }

    WireFormat message = beginMessage(methodReturn, body.size());
    message.addArray(8, [&] {
        message.addByte(replySerialField);
        message.addSignature("u");
        message.add(serial);
        addSender(message, signature, member == "GetNameOwner" ? busName : serviceName);
    });
    message.align(8);
    message.append(body.bytes());
    return message.bytes();
}
